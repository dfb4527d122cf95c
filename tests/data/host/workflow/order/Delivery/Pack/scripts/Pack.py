def pack():
    pass
