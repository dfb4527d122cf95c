"""What the variables of a block held before it ran, so that undoing the block can put it back.

A block in a loop runs several times: the values of each time are kept, and the last ones come back first.
"""

_before = {}


def remember(block, *names):
    values = {name: getattr(block, "get" + name)() for name in names}
    _before.setdefault(type(block).__name__, []).append(values)


def restore(block):
    for name, value in _before[type(block).__name__].pop().items():
        getattr(block, "set" + name)(value)
