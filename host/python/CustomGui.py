"""Dialogs of the desktop application. Without it there is nothing to show: every call does nothing."""


class _Nothing:
    """Takes every call and every attribute."""

    def __call__(self, *_args, **_kwargs):
        return None

    def __getattr__(self, name):
        if name.startswith("__"):
            raise AttributeError(name)
        return self


def __getattr__(name):
    if name.startswith("__"):
        raise AttributeError(name)
    return _Nothing()
