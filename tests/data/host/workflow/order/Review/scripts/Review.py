def announce():
    pass
