def tell():
    pass
