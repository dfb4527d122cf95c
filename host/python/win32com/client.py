"""Objects of the COM classes "ProcessExecutive.Variables" and "ProcessExecutive.ProcessExecutiveApi"."""

import ast
import math
import re

import _flowmere


class com_error(Exception):
    """A COM class that does not exist here."""


def Dispatch(name, *_):
    """A new object of the class."""
    if name not in _CLASSES:
        known = " and ".join(sorted(_CLASSES))
        raise com_error("there is no COM class '{}'; there are {}".format(name, known))
    return _CLASSES[name]()


class _ProcessExecutiveApi:
    def getExecutionType(self):
        """0 when the block executes, 1 when it is undone."""
        return _flowmere.execution_type()

    def setActiveHandle(self, grip):
        """The grip, 1 to 8, along whose connector the flow leaves the executing block."""
        _flowmere.set_active_handle(int(grip))

    def getActiveHandle(self):
        return _flowmere.active_handle()


def _refuse(name, text, kind):
    raise ValueError("variable '{}' holds '{}', which is no {}".format(name, text, kind))


def _to_int(name, text):
    text = text.strip()
    if not text:
        return 0
    try:
        return int(text)
    except ValueError:
        pass
    try:
        return int(float(text))
    except (ValueError, OverflowError):
        _refuse(name, text, "Int")


def _to_float(name, text):
    text = text.strip()
    if not text:
        return 0.0
    try:
        return float(text)
    except ValueError:
        _refuse(name, text, "number")


def _to_text(_name, text):
    return text


def _from_int(value):
    if isinstance(value, str):
        value = float(value)
    if not math.isfinite(value):
        raise ValueError("{} is no Int".format(value))
    return str(int(value))


def _from_float(value):
    return repr(float(value))


# For each element type: value from text, and text from value.
_ELEMENTS = {
    "Int": (_to_int, _from_int),
    "Float": (_to_float, _from_float),
    "Double": (_to_float, _from_float),
    "String": (_to_text, str),
    "File": (_to_text, str),
    "Directory": (_to_text, str),
}
# Objects travel as the text of their identifier, lists of them too.
_OBJECTS = ("TarnObject", "Point2", "Point3", "Matrix", "TarnObjectArray", "Point2Array", "Point3Array")


def _to_list(name, text, kind):
    """A list out of "[1, 2]" or "1, 2"."""
    to_value = _ELEMENTS[kind][0]
    text = text.strip()
    listed = text if text.startswith("[") else "[" + text + "]"
    try:
        values = ast.literal_eval(listed)
    except (ValueError, SyntaxError, MemoryError, RecursionError):
        values = [part.strip() for part in listed.strip("[]").split(",")]
        values = [part for part in values if part]
    return [to_value(name, value if isinstance(value, str) else repr(value)) for value in values]


def _from_list(values, kind):
    if isinstance(values, str):
        values = _to_list("", values, kind)
    from_value = _ELEMENTS[kind][1]
    if kind in ("Int", "Float", "Double"):
        return "[" + ", ".join(from_value(value) for value in values) + "]"
    return "[" + ", ".join(repr(from_value(value)) for value in values) + "]"


_OPERATION = re.compile(
    "(get|set)({})VarValue(s?)".format(
        "|".join([kind + suffix for kind in _ELEMENTS for suffix in ("Array", "")] + sorted(_OBJECTS, reverse=True))
    )
)


class _Variables:
    """The variables that the executing block, or else the process, knows by name; links are followed."""

    def checkProcessVariable(self, name):
        """0 when the name is known, else 1."""
        return 0 if _flowmere.knows(name) else 1

    def __getattr__(self, attribute):
        """get<Type>VarValue(name), set<Type>VarValue(name, value) and the plural forms, for each data type."""
        match = _OPERATION.fullmatch(attribute)
        if match is None:
            raise AttributeError("'ProcessExecutive.Variables' has no '{}'".format(attribute))
        direction, kind, plural = match.groups()
        if kind in _OBJECTS:
            return _read_object if direction == "get" else _write_object
        is_list = bool(plural)
        if kind.endswith("Array"):
            kind, is_list = kind[: -len("Array")], True
        if direction == "get":
            return lambda name: _read(name, kind, is_list)
        return lambda name, value: _write(name, value, kind, is_list)


def _read(name, kind, is_list):
    _, _, text = _flowmere.read_variable(name)
    return _to_list(name, text, kind) if is_list else _ELEMENTS[kind][0](name, text)


def _write(name, value, kind, is_list):
    _flowmere.write_variable(name, _from_list(value, kind) if is_list else _ELEMENTS[kind][1](value))


def _read_object(name):
    return _flowmere.read_variable(name)[2]


def _write_object(name, value):
    _flowmere.write_variable(name, str(value))


_CLASSES = {
    "ProcessExecutive.Variables": _Variables,
    "ProcessExecutive.ProcessExecutiveApi": _ProcessExecutiveApi,
}
