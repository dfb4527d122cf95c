import beam


class Measure:
    def __init__(self, number):
        pass

    def Execute(self):
        beam.volume = 0.2 * 0.3 * 5.0
