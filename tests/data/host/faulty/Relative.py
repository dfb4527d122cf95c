from . RelativeBlock import RelativeBlock


class Relative(RelativeBlock):
    pass
