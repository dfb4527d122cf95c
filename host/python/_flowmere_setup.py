"""Sets the interpreter of the program up, and looks after it while blocks run."""

import importlib
import importlib.machinery
import io
import signal
import sys
import traceback

import _flowmere

_script_roots = []
_no_bytecode = ""
_last_reported = None


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
    global _no_bytecode
    _no_bytecode = module_folder + "/no-bytecode"
    sys.dont_write_bytecode = True
    sys.path_hooks.insert(0, _ScriptFinder)
    sys.argv = ["flowmere"]
    for stream in (sys.stdout, sys.stderr):
        if stream is not None:
            stream.reconfigure(line_buffering=True, write_through=True)
    signal.signal(signal.SIGINT, signal.default_int_handler)
    sys.excepthook = report


class _WatchedStream(io.TextIOWrapper):
    """Tells the program before something is printed, so that it can take its own line away."""

    def write(self, text):
        _flowmere.output_begins()
        return super().write(text)


def watch_output():
    for name in ("stdout", "stderr"):
        stream = getattr(sys, name)
        if stream is not None and not isinstance(stream, _WatchedStream):
            encoding, errors = stream.encoding, stream.errors
            watched = _WatchedStream(stream.detach(), encoding, errors, line_buffering=True, write_through=True)
            setattr(sys, name, watched)
            setattr(sys, "__" + name + "__", watched)


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


def _text_of(value):
    try:
        text = str(value)
    except Exception:
        text = "(an exception that has no text)"
    return text.encode("utf-8", "replace").decode("utf-8")


def report(kind, value, trace):
    """The hook for errors that no script has caught; SystemExit comes here too."""
    global _last_reported
    _last_reported = value
    interrupt = issubclass(kind, KeyboardInterrupt)
    lines = "".join(traceback.format_exception(kind, value, trace)).encode("utf-8", "replace").decode("utf-8")
    if not interrupt:
        _write("block {}: {}".format(_flowmere.executing_path(), lines))
    _flowmere.report_error(kind.__name__, _text_of(value), lines, interrupt)


def _write(text):
    for stream in (sys.stderr, sys.__stderr__):
        try:
            stream.write(text)
            stream.flush()
            return
        except Exception:
            continue


def finish_tick(script_name):
    """After each run of a block."""
    global _last_reported
    sys.excepthook = report
    value = getattr(sys, "last_value", None)
    if isinstance(value, BaseException) and value is not _last_reported:
        report(type(value), value, value.__traceback__)
    elif value is None and not _is_callable(script_name):
        error = TypeError("{} is no class".format(script_name.rpartition(".")[2]))
        report(TypeError, error, None)
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


def _is_callable(script_name):
    module = sys.modules.get(script_name)
    if not script_name or module is None:
        return True
    return callable(getattr(module, script_name.rpartition(".")[2], None))
