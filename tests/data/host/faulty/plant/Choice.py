class Choice:
    def Execute(self):
        if self.ready():
            self.api.setActiveHandle(4)
        else:
            self.api.setActiveHandle(8)
        self.api.setActiveHandle(12)
