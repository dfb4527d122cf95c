class Other:
    pass
