"""Reads scripts for the program's check, and never runs any of their code."""

import ast
import gc
import keyword
import opcode
import os
import types
import warnings

_BRANCHES = (ast.If, ast.IfExp, ast.For, ast.While, ast.Try, ast.Match, ast.ExceptHandler, ast.BoolOp, ast.comprehension)
_FUNCTIONS = (ast.FunctionDef, ast.AsyncFunctionDef, ast.Lambda, ast.ClassDef)

# What a plain source must have somewhere for a call that sets a grip.
_GRIP_CALL = b"setActiveHandle"
_IMPORT = opcode.opmap["IMPORT_NAME"]
_CONSTANT = opcode.opmap["LOAD_CONST"]
_LONG_ARGUMENT = opcode.opmap["EXTENDED_ARG"]

# Of no interest here. For each script alone it would take its time.
warnings.filterwarnings("ignore", category=SyntaxWarning)
warnings.filterwarnings("ignore", category=DeprecationWarning, message="invalid ")


def is_identifier(name):
    return name.isidentifier() and not keyword.iskeyword(name)


def keywords():
    return list(keyword.kwlist)


class _Script:
    """What the host asks about one file."""

    def __init__(self):
        self.error_line = 0
        self.error = ""
        # The grips that constant calls of setActiveHandle name, each with its first line.
        self.grips = {}
        # Whether some call names its grip otherwise, and whether some call is on every way through its function.
        self.sets_unknown_grip = False
        self.always_sets_grip = False
        # Whether the module has its class; the relative imports as (line, level, module).
        self.has_class = True
        self.relative_imports = []


def read_script(path, class_name):
    """The script in the file. Of one that does not compile only the error is told; None when there is nothing to tell."""
    path = os.fsdecode(path)
    # Trees are many objects without a circle.
    is_collected = gc.isenabled()
    gc.disable()
    try:
        return _read(path, class_name)
    finally:
        if is_collected:
            gc.enable()


def _read(path, class_name):
    script = _Script()
    try:
        with open(path, "rb", 0) as stream:
            source = stream.read()
        if not _read_source(source, path, class_name, script):
            return None
    except SyntaxError as error:
        script.error_line = error.lineno or 0
        script.error = _printable(error.msg)
        return script
    except OSError as error:
        script.error = "cannot be read: " + _printable(error.strerror)
        return script
    except RecursionError:
        script.error = "is nested too deeply"
        return script
    except (ValueError, MemoryError, OverflowError) as error:
        script.error = _printable(error) or "is too large"
    return script


def _read_source(source, path, class_name, script):
    """False when there is nothing to tell."""
    # A tree takes about as long as all the rest, and most scripts can be told without one.
    if _is_plain(source) and _GRIP_CALL not in source:
        code = compile(source, path, "exec", dont_inherit=True)
        imports = _relative_imports(code)
        if imports is not None and _has_body(code, class_name):
            script.relative_imports = imports
            return bool(imports)
        tree = ast.parse(source, path)
        _look_at(tree, class_name, False, script)
    else:
        tree = ast.parse(source, path)
        compile(tree, path, "exec", dont_inherit=True)
        _look_at(tree, class_name, True, script)
    return True


def _has_body(code, name):
    """Whether the module has a class or a function of that name."""
    for part in code.co_consts:
        if type(part) is types.CodeType and part.co_name == name:
            return True
    return False


def _relative_imports(code):
    """Those of the module itself, as in a _Script. None where the code has a form that is not known here."""
    found = []
    raw = code.co_code
    operations = raw[::2]
    at = operations.find(_IMPORT)
    while at >= 0:
        # The level and the names, then the import, each in one operation.
        if at < 2 or operations[at - 1] != _CONSTANT or operations[at - 2] != _CONSTANT:
            return None
        if at > 2 and operations[at - 3] == _LONG_ARGUMENT:
            return None
        level = code.co_consts[raw[2 * at - 3]]
        if type(level) is not int:
            return None
        if level > 0:
            found.append((_line_at(code, 2 * at), level, code.co_names[raw[2 * at + 1]]))
        at = operations.find(_IMPORT, at + 1)
    found.sort()
    return found


def _line_at(code, offset):
    for begin, end, line in code.co_lines():
        if begin <= offset < end and line is not None:
            return line
    return 0


def _is_plain(source):
    """Whether each name stands in the source as it is, letter by letter."""
    return source.isascii() and not any(b"coding" in line for line in source.split(b"\n", 2)[:2])


def _printable(text):
    return str(text).encode("utf-8", "replace").decode("utf-8")


def _look_at(tree, class_name, may_set_grip, script):
    constants = _constants_of(tree) if may_set_grip else {}
    bound = set()
    is_open = False
    # Nodes with whether they are inside a function, and whether inside a branch of it.
    pending = [(tree, False, False)]
    while pending:
        node, in_function, in_branch = pending.pop()
        if isinstance(node, ast.Call):
            _look_at_call(node, constants, in_branch, script)
        elif isinstance(node, ast.ImportFrom):
            if node.level and not in_function:
                script.relative_imports.append((node.lineno, node.level, node.module or ""))
        if not in_function:
            is_open = _bind(node, bound) or is_open
        if isinstance(node, _FUNCTIONS):
            if not may_set_grip:
                continue
            in_function, in_branch = True, False
        elif isinstance(node, _BRANCHES):
            in_branch = True
        pending.extend((child, in_function, in_branch) for child in ast.iter_child_nodes(node))
    script.relative_imports.sort()
    script.has_class = is_open or class_name in bound


def _bind(node, bound):
    """Adds the names that the node binds; true when it may bind any name."""
    if isinstance(node, (ast.ClassDef, ast.FunctionDef, ast.AsyncFunctionDef)):
        bound.add(node.name)
        return node.name == "__getattr__"
    if isinstance(node, ast.Name) and isinstance(node.ctx, ast.Store):
        bound.add(node.id)
    elif isinstance(node, ast.Name) and node.id in ("exec", "globals", "setattr", "vars", "locals"):
        return True
    elif isinstance(node, ast.alias):
        if node.name == "*":
            return True
        bound.add(node.asname or node.name.partition(".")[0])
    return False


def _constants_of(tree):
    """Names that are given one number once, and nothing else ever."""
    values = {}
    for node in ast.walk(tree):
        if isinstance(node, ast.Name) and not isinstance(node.ctx, ast.Load):
            values.setdefault(node.id, []).append(None)
        elif isinstance(node, ast.arg):
            values.setdefault(node.arg, []).append(None)
    for node in ast.walk(tree):
        if isinstance(node, ast.Assign) and len(node.targets) == 1 and isinstance(node.targets[0], ast.Name):
            name = node.targets[0].id
            number = _number(node.value)
            if number is not None and len(values[name]) == 1:
                values[name] = [number]
    return {name: found[0] for name, found in values.items() if len(found) == 1 and found[0] is not None}


def _number(node):
    sign = 1
    while isinstance(node, ast.UnaryOp) and isinstance(node.op, ast.USub):
        sign = -sign
        node = node.operand
    if isinstance(node, ast.Constant) and type(node.value) is int:
        return sign * node.value
    return None


def _look_at_call(node, constants, in_branch, script):
    name = node.func.attr if isinstance(node.func, ast.Attribute) else getattr(node.func, "id", "")
    if name != "setActiveHandle":
        return
    if not in_branch:
        script.always_sets_grip = True
    arguments = list(node.args) + [word.value for word in node.keywords]
    if len(arguments) != 1:
        script.sets_unknown_grip = True
        return
    pending = [arguments[0]]
    while pending:
        argument = pending.pop()
        if isinstance(argument, ast.IfExp):
            pending += [argument.orelse, argument.body]
            continue
        number = _number(argument)
        if number is None and isinstance(argument, ast.Name):
            number = constants.get(argument.id)
        if number is None or abs(number) > 10**6:
            script.sets_unknown_grip = True
        else:
            script.grips[number] = min(node.lineno, script.grips.get(number, node.lineno))
