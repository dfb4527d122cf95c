"""Runs the methods of blocks under Python's debugger."""

import contextlib
import importlib
import io
import pdb
import select
import sys

import _flowmere
import _flowmere_setup


@contextlib.contextmanager
def _without_readline():
    """Line editing comes with a library of its own, which does not bear the one that the program holds."""
    known = sys.modules.get("readline")
    sys.modules["readline"] = None
    try:
        yield
    finally:
        if known is None:
            del sys.modules["readline"]
        else:
            sys.modules["readline"] = known


# Name of the module that the library's own statements run in.
_PROGRAM = "_flowmere_program"
# The line of these statements that calls the method.
_CALL = 3


class _NoInput:
    """Standard input of a program that has none."""

    def readline(self):
        return ""

    def isatty(self):
        return False


class _Typed:
    """Standard input on a terminal. A mere read would miss a Ctrl-C that comes in the moment before it, and go on to
    wait for what nobody types."""

    # Seconds after which a Ctrl-C from that moment is taken.
    _MOMENT = 0.2

    def __init__(self, stream):
        self._stream = stream

    def readline(self):
        while not select.select([self._stream], [], [], self._MOMENT)[0]:
            pass
        return self._stream.readline()

    def isatty(self):
        return True


def _input():
    stream = sys.__stdin__
    if stream is None or stream.closed:
        return _NoInput()
    return _Typed(stream) if stream.isatty() else stream


class BlockDebugger(pdb.Pdb):
    """One for a whole run, so that the user's own breakpoints last from block to block."""

    def __init__(self):
        output = io.TextIOWrapper(io.FileIO(1, "w", closefd=False), "utf-8", "backslashreplace", write_through=True)
        with _without_readline():
            super().__init__(
                stdin=_input(), stdout=output, skip=["_flowmere*"], nosigint=True, readrc=False
            )
        self._script = ""
        # Method that is to stop, until it has done so.
        self._awaited = ""
        # There are no commands left.
        self._is_done = False
        self._after_failure = False
        # Of the calls that talk to the user, one within the other.
        self._depth = 0
        self.has_quit = False

    # What the blocks of the host call

    def prepare(self, script, method):
        """True when the library shall call `run`."""
        if self._is_done:
            return False
        self._script = script
        self._awaited = method
        self.reset()
        if "." in script[1:]:
            return True
        # The library hands scripts without a package to no debugger: the plain run is watched instead.
        sys.settrace(self.trace_dispatch)
        return False

    def run(self, code):
        """The library's statements for the block, which make an object of the script's class and call the method."""
        self._load()
        sys.settrace(self.trace_dispatch)
        try:
            exec(code, {"__name__": _PROGRAM})
        finally:
            sys.settrace(None)

    def finish(self):
        sys.settrace(None)
        self._awaited = ""

    def block_failed(self, value, trace):
        """Opens at the place of an error that a block has left uncaught."""
        if trace is None or self._is_done or self.has_quit:
            return
        stack, _ = self.get_stack(None, trace)
        if _flowmere_setup.users_place([frame.f_code.co_filename for frame, _ in stack]) < 0:
            return
        self.reset()
        self._after_failure = True
        try:
            self.message("block {} has failed".format(_flowmere.executing_path()))
            self.interaction(None, trace)
        finally:
            self._after_failure = False

    def take_quit(self):
        """True once after the user has quit."""
        result, self.has_quit = self.has_quit, False
        return result

    # Where it stops

    def _load(self):
        """As a plain run does: the companion of the script, then the script, each with its current text."""
        companion = self._script + "Block"
        try:
            importlib.reload(importlib.import_module(companion))
        except ModuleNotFoundError as error:
            if error.name != companion:
                raise
        importlib.reload(importlib.import_module(self._script))

    def _is_awaited(self, frame):
        caller = frame.f_back
        if caller is None:
            return frame.f_code.co_name == self._awaited
        return caller.f_globals.get("__name__") == _PROGRAM and caller.f_lineno == _CALL

    def stop_here(self, frame):
        if self._awaited:
            return self._is_awaited(frame)
        return super().stop_here(frame)

    def user_call(self, frame, arguments):
        if not self._awaited:
            super().user_call(frame, arguments)

    def user_line(self, frame):
        if self._awaited and self._is_awaited(frame):
            self.message("block {} stops in {}".format(_flowmere.executing_path(), self._awaited))
            self._awaited = ""
        super().user_line(frame)

    def get_stack(self, frame, trace):
        """Without the frames of the program itself, which are the outermost."""
        stack, index = super().get_stack(frame, trace)
        own = 0
        while own < len(stack) - 1 and stack[own][0].f_globals.get("__name__") in (__name__, _PROGRAM):
            own += 1
        return stack[own:], max(index - own, 0)

    def setup(self, frame, trace):
        result = super().setup(frame, trace)
        if trace is not None and self._after_failure:
            place = _flowmere_setup.users_place([frame.f_code.co_filename for frame, _ in self.stack])
            self.curindex = max(place, 0)
            self.curframe = self.stack[self.curindex][0]
            self.curframe_locals = self.curframe.f_locals
        return result

    # The talk

    @contextlib.contextmanager
    def _aside(self):
        """What is printed within is no output of the block."""
        if self._depth == 0:
            _flowmere.pause_output()
        self._depth += 1
        try:
            yield
        finally:
            self._depth -= 1
            if self._depth == 0:
                _flowmere.resume_output()

    def message(self, text):
        if not self._is_done:
            with self._aside():
                super().message(text)

    def interaction(self, *arguments):
        if not self._is_done:
            with self._aside():
                super().interaction(*arguments)

    def _cmdloop(self):
        try:
            self.cmdloop()
        except KeyboardInterrupt:
            self.message("")
            self.do_quit("")

    def do_quit(self, _):
        """q(uit)
        Quit from the debugger. The run is interrupted."""
        self.has_quit = not self._after_failure
        self.set_quit()
        return 1

    do_q = do_exit = do_quit

    def do_EOF(self, argument):
        """EOF
        On a terminal, quit. Elsewhere the run goes on without a further stop."""
        self.message("")
        if self.stdin.isatty():
            return self.do_quit(argument)
        self._is_done = True
        self.clear_all_breaks()
        self.set_continue()
        return 1

    def do_interact(self, argument):
        with _without_readline():
            super().do_interact(argument)

    do_interact.__doc__ = pdb.Pdb.do_interact.__doc__

    def do_run(self, _):
        """run
        A block cannot be started anew from within."""
        self.error("a block cannot be started anew from within")

    do_restart = do_run
