import beam


class Tell:
    def __init__(self, number):
        pass

    def Execute(self):
        print("The beam has", round(beam.volume, 3), "cubic metres")
