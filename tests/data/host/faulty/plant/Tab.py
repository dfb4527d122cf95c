class Tab:
    def Execute(self):
        x = 1
	y = 2
