import win32com.client

BACK = 8


class Enough:
    def __init__(self, handle):
        self.api = win32com.client.Dispatch("ProcessExecutive.ProcessExecutiveApi")

    def Execute(self):
        self.api.setActiveHandle(6 if self.holds() else BACK)

    def holds(self):
        return True
