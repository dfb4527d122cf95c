class Stress:
    def __init__(self, handle):
        self.handle = handle

    def Execute(self):
        pass
