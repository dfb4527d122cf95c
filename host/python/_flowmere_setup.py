"""Sets the interpreter of the program up, and looks after it while blocks run."""

import importlib
import importlib.machinery
import io
import linecache
import os
import signal
import sys
import traceback

import _flowmere

_script_roots = []
_no_bytecode = ""
_last_reported = None
# A _flowmere_debug.BlockDebugger while a run is debugged.
debugger = None
# Folders whose modules are no scripts, even where a script root holds them.
_own_homes = []
# Process in which the program runs; scripts may fork off others.
_owner = 0
_exit = os._exit
# Letters of a source line that a message shows.
_LONGEST_SOURCE = 120


class _SourceLoader(importlib.machinery.SourceFileLoader):
    """Compiles a script each time. Bytecode beside it may be older than its time stamp tells."""

    def path_stats(self, path):
        raise OSError("scripts have no bytecode")


class _ScriptFinder(importlib.machinery.FileFinder):
    """Finds modules below the script roots."""

    _loaders = (
        (importlib.machinery.ExtensionFileLoader, importlib.machinery.EXTENSION_SUFFIXES),
        (_SourceLoader, importlib.machinery.SOURCE_SUFFIXES),
    )

    def __init__(self, folder):
        if not any(_lies_in(folder, root) for root in _script_roots):
            raise ImportError("no script root", path=folder)
        super().__init__(folder, *self._loaders)

    def find_spec(self, name, target=None):
        spec = super().find_spec(name, target)
        if spec is not None and spec.origin:
            # Who runs a script removes its bytecode first, and bytecode of the user's is not ours to remove.
            spec.cached = _no_bytecode + spec.origin
        return spec


def _lies_in(place, root):
    return place == root or place.startswith(root.rstrip("/") + "/")


def set_up(module_folder):
    """Once, before anything else runs."""
    global _no_bytecode, _owner
    _owner = os.getpid()
    os._exit = _leave
    _no_bytecode = module_folder + "/no-bytecode"
    _own_homes[:] = [module_folder, os.path.dirname(os.__file__)]
    sys.dont_write_bytecode = True
    sys.path_hooks.insert(0, _ScriptFinder)
    sys.argv = ["flowmere"]
    for name in ("stdout", "stderr"):
        stream = getattr(sys, name)
        if stream is not None:
            stream = _Stream(stream, name == "stderr")
            setattr(sys, name, stream)
            setattr(sys, "__" + name + "__", stream)
    signal.signal(signal.SIGINT, signal.default_int_handler)
    sys.excepthook = report


def _leave(status):
    """Ends the process at once. A program that ends in the midst of a block has not done well, whatever the script says."""
    if os.getpid() == _owner:
        frames = [(frame.f_code.co_filename, line) for frame, line in traceback.walk_stack(sys._getframe(1))]
        frames.reverse()
        _flowmere.script_leaves(status, *_user_place(frames))
        status = status or 1
    _exit(status)


_leave.__name__ = _leave.__qualname__ = "_exit"


class _Direct(io.BufferedWriter):
    """Keeps nothing back: a script may end the program at any time."""

    def write(self, data):
        count = super().write(data)
        self.flush()
        return count


class _Stream(io.TextIOWrapper):
    """One of the two streams. Once it is watched it tells the program before something is printed."""

    is_watched = False

    def __init__(self, stream, is_error):
        encoding, errors = stream.encoding, stream.errors
        stream.flush()
        super().__init__(_Direct(stream.detach().detach()), encoding, errors, write_through=True)
        self.mode = "w"
        self._is_error = is_error

    def write(self, text):
        if _Stream.is_watched:
            _flowmere.before_print(self._is_error)
        return super().write(text)


def watch_output():
    _Stream.is_watched = True
    _flowmere.watch_programs()


def set_script_roots(roots, module_folder):
    """Scripts come from these folders, in this order; what came from earlier ones is forgotten."""
    global _script_roots
    if roots == _script_roots:
        return
    for name, module in list(sys.modules.items()):
        places = list(getattr(module, "__path__", None) or [])
        places.append(getattr(module, "__file__", None) or "")
        if any(_lies_in(place, root) for root in _script_roots for place in places):
            del sys.modules[name]
    sys.path[:] = [place for place in sys.path if place not in _script_roots and place != module_folder]
    sys.path[:0] = list(roots) + [module_folder]
    _script_roots = list(roots)
    sys.path_importer_cache.clear()
    importlib.invalidate_caches()


def lies_in_scripts(path):
    return any(_lies_in(path, root) for root in _script_roots) and not any(_lies_in(path, home) for home in _own_homes)


def _short_name(path):
    """The file below the script root that holds it, or the whole path where that could be another file too."""
    root = max((root for root in _script_roots if _lies_in(path, root)), key=len)
    name = os.path.relpath(path, root)
    others = (os.path.join(other, name) for other in _script_roots if other != root)
    return path if any(os.path.exists(other) for other in others) else name


def _source_line(path, number):
    linecache.checkcache(path)
    line = linecache.getline(path, number).strip()
    return line if len(line) <= _LONGEST_SOURCE else line[:_LONGEST_SOURCE] + "..."


def _is_companion(path):
    """Whether it is the generated base of a script that stands beside it."""
    ending = "Block.py"
    return path.endswith(ending) and os.path.exists(path[: -len(ending)] + ".py")


def users_place(paths):
    """Which of the files, the outermost first, the user has written: the place of the innermost one, or -1."""
    found = -1
    for index, path in enumerate(paths):
        if lies_in_scripts(path) and (found < 0 or not _is_companion(path) or _is_companion(paths[found])):
            found = index
    return found


def _place_of(value, trace):
    """File, line and source line of the user's script at which it went wrong."""
    if _is_fault_of_file(value):
        return _shown_place(value.filename, value.lineno)
    return _user_place([(frame.f_code.co_filename, line) for frame, line in traceback.walk_tb(trace)])


def _user_place(frames):
    """The same, out of files and lines of which the outermost comes first."""
    place = users_place([name for name, _ in frames])
    return _shown_place(*frames[place]) if place >= 0 else ("", 0, "")


def _shown_place(path, number):
    return _printable(_short_name(path)), number or 0, _printable(_source_line(path, number or 0))


def _is_fault_of_file(value):
    return isinstance(value, SyntaxError) and isinstance(value.filename, str) and lies_in_scripts(value.filename)


def _printable(text):
    return text.encode("utf-8", "replace").decode("utf-8")


def _text_of(value):
    try:
        text = str(value.msg if _is_fault_of_file(value) else value)
    except Exception:
        text = "(an exception that has no text)"
    return _printable(text)


def report(kind, value, trace):
    """The hook for errors that no script has caught; SystemExit comes here too."""
    global _last_reported
    _last_reported = value
    if debugger is not None:
        debugger.finish()
    interrupt = issubclass(kind, KeyboardInterrupt) or (debugger is not None and debugger.has_quit)
    lines = _printable("".join(traceback.format_exception(kind, value, trace)))
    if not interrupt:
        _flowmere.print_error("block {}: {}".format(_flowmere.executing_path(), lines))
    _flowmere.report_error(kind.__name__, _text_of(value), lines, interrupt, *_place_of(value, trace))
    if debugger is not None and not debugger.take_quit() and not interrupt:
        debugger.block_failed(value, trace)


def finish_tick(script_name):
    """After each run of a block."""
    global _last_reported
    if debugger is not None:
        debugger.finish()
    sys.excepthook = report
    value = getattr(sys, "last_value", None)
    if isinstance(value, BaseException) and value is not _last_reported:
        report(type(value), value, value.__traceback__)
    elif value is None and not _is_callable(script_name):
        error = TypeError("{} is no class".format(script_name.rpartition(".")[2]))
        report(TypeError, error, None)
    if debugger is not None and debugger.take_quit():
        _flowmere.report_error("BdbQuit", "", "", True, "", 0, "")
    # Tracebacks keep the variables of whole call stacks alive.
    _last_reported = None
    for name in ("last_type", "last_value", "last_traceback"):
        if hasattr(sys, name):
            delattr(sys, name)
    for stream in (sys.stdout, sys.stderr):
        try:
            stream.flush()
        except Exception:
            pass
    importlib.invalidate_caches()
    _flowmere.tick_ends()


def _is_callable(script_name):
    module = sys.modules.get(script_name)
    if not script_name or module is None:
        return True
    return callable(getattr(module, script_name.rpartition(".")[2], None))
