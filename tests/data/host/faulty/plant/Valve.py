class Valve:
    def Execute(self):
        return (1
