"""The models of the desktop application. Without it the document itself stands for both."""

import os

import _flowmere


class Model:
    """What a script may ask of a model: its name, and the file that it belongs to."""

    def __init__(self, kind):
        self.kind = kind
        self.path = _flowmere.document_path()
        self.name = os.path.splitext(os.path.basename(self.path))[0]

    def __repr__(self):
        return "<{} model of {}>".format(self.kind, self.name)


def ApplGetCurrentPreModel():
    return Model("pre")


def GetCurrentResultModel():
    return Model("result")


ApplGetCurrentResultModel = GetCurrentResultModel
