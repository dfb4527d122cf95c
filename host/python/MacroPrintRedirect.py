"""Sends what macros print to a window of the desktop application. Without it, it stays where it goes."""


def _nothing(*_args, **_kwargs):
    return None


def __getattr__(name):
    if name.startswith("__"):
        raise AttributeError(name)
    return _nothing
