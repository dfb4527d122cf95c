class Report:
    def __init__(self, handle):
        self.handle = handle

    def Execute(self):
        pass
