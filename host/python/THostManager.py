"""The history of a run: a log that scripts write and the program shows."""

import _flowmere


def WriteHistory(text):
    _flowmere.write_history(str(text))
