"""The value classes of process variables: objects, points and matrices.

Each is made from the text that a variable holds, and its `str` is that text again. `<Type>List(text)` gives the number
of values and their list; `Get<Type>Identifier(value)` and `Get<Type>ListIdentifier(count, values)` give the text.
"""

import re

_NUMBER = re.compile(r"[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?")


def _numbers(text):
    if _NUMBER.sub("", text).strip(" \t,;|()[]'\""):
        raise ValueError("'{}' holds something that is no number".format(text))
    return [float(number) for number in _NUMBER.findall(text)]


def _joined(numbers):
    return ",".join(repr(number) for number in numbers)


class TarnObject:
    """An object of the application, known by its identifier."""

    def __init__(self, text=""):
        self.identifier = str(text).strip().strip("'\"").strip()

    def __str__(self):
        return self.identifier

    def __repr__(self):
        return "TarnObject({!r})".format(self.identifier)

    def __eq__(self, other):
        if isinstance(other, (TarnObject, str)):
            return self.identifier == str(other)
        return NotImplemented

    def __hash__(self):
        return hash(self.identifier)

    def __bool__(self):
        return bool(self.identifier)


class _Point:
    """A point of so many coordinates: from a text, from numbers, or from a sequence of numbers."""

    _names = ()

    def __init__(self, *values):
        size = len(self._names)
        if len(values) == 1:
            value = values[0]
            values = _numbers(value) if isinstance(value, str) else list(value)
        if not values:
            values = [0.0] * size
        if len(values) != size:
            raise ValueError("a {} has {} coordinates, not {}".format(type(self).__name__, size, len(values)))
        for name, value in zip(self._names, values):
            setattr(self, name, float(value))

    def __iter__(self):
        return (getattr(self, name) for name in self._names)

    def __len__(self):
        return len(self._names)

    def __getitem__(self, index):
        return list(self)[index]

    def __str__(self):
        return _joined(self)

    def __repr__(self):
        return "{}({})".format(type(self).__name__, ", ".join(repr(value) for value in self))

    def __eq__(self, other):
        if isinstance(other, str):
            try:
                other = type(self)(other)
            except ValueError:
                return False
        if type(other) is type(self):
            return list(self) == list(other)
        return NotImplemented

    def __hash__(self):
        return hash(tuple(self))

    def __add__(self, other):
        return type(self)([left + right for left, right in zip(self, type(self)(other))])

    def __sub__(self, other):
        return type(self)([left - right for left, right in zip(self, type(self)(other))])

    def __mul__(self, factor):
        return type(self)([value * factor for value in self])

    __rmul__ = __mul__


class Point2(_Point):
    _names = ("x", "y")


class Point3(_Point):
    _names = ("x", "y", "z")


class Matrix:
    """Rows of numbers: from "1,0;0,1", from "[[1,0],[0,1]]", or from a sequence of rows."""

    def __init__(self, rows=""):
        if isinstance(rows, str):
            text = rows.strip().strip("'\"").strip()
            parts = re.split(r"\]\s*,\s*\[", text) if "[" in text else text.split(";")
            rows = [_numbers(part) for part in parts]
            rows = [row for row in rows if row]
        self.rows = [[float(value) for value in row] for row in rows]
        if any(len(row) != len(self.rows[0]) for row in self.rows):
            raise ValueError("the rows of a matrix have one length")

    def __iter__(self):
        return iter(self.rows)

    def __len__(self):
        return len(self.rows)

    def __getitem__(self, index):
        return self.rows[index]

    def __str__(self):
        return ";".join(_joined(row) for row in self.rows)

    def __repr__(self):
        return "Matrix({!r})".format(self.rows)

    def __eq__(self, other):
        if isinstance(other, str):
            try:
                other = Matrix(other)
            except ValueError:
                return False
        if isinstance(other, Matrix):
            return self.rows == other.rows
        return NotImplemented

    def __hash__(self):
        return hash(str(self))


def _objects_of(text):
    parts = str(text).strip().strip("[]()").split(",")
    objects = [TarnObject(part) for part in parts]
    return [item for item in objects if item]


def _points_of(kind):
    def read(text):
        numbers = _numbers(str(text))
        size = len(kind._names)
        if len(numbers) % size:
            raise ValueError("'{}' ends within a {}".format(text, kind.__name__))
        return [kind(numbers[index : index + size]) for index in range(0, len(numbers), size)]

    return read


def _matrices_of(text):
    return [Matrix(part) for part in str(text).split("|") if part.strip(" '\"")]


def _list_reader(read):
    def list_of(text):
        values = read(text)
        return len(values), values

    return list_of


def _identifier(kind):
    def identifier_of(value):
        return str(value if isinstance(value, kind) else kind(value))

    return identifier_of


def _list_identifier(kind, form, separator):
    def identifier_of(count, values):
        chosen = list(values)[:count]
        return separator.join(form.format(value if isinstance(value, kind) else kind(value)) for value in chosen)

    return identifier_of


TarnObjectList = TarnObjectArrayList = _list_reader(_objects_of)
Point2List = Point2ArrayList = _list_reader(_points_of(Point2))
Point3List = Point3ArrayList = _list_reader(_points_of(Point3))
MatrixList = _list_reader(_matrices_of)

GetTarnObjectIdentifier = _identifier(TarnObject)
GetPoint2Identifier = _identifier(Point2)
GetPoint3Identifier = _identifier(Point3)
GetMatrixIdentifier = _identifier(Matrix)

GetTarnObjectListIdentifier = GetTarnObjectArrayListIdentifier = _list_identifier(TarnObject, "{}", ",")
GetPoint2ListIdentifier = GetPoint2ArrayListIdentifier = _list_identifier(Point2, "({})", ",")
GetPoint3ListIdentifier = GetPoint3ArrayListIdentifier = _list_identifier(Point3, "({})", ",")
GetMatrixListIdentifier = _list_identifier(Matrix, "{}", " | ")


def KelsoInitializeScriptEng():
    """There is no engine to start."""
