#!/usr/bin/python3
"""Runs every sample of the documentation.

A sample is a fenced block of README.md, CONTRIBUTING.md or docs/*.md. Its language says what becomes of it:

    cpp      compiled and run; what stands in an `output` block right behind it is what it has to print
    sh       run by bash; every command has to succeed
    console  lines that begin with "$ " are run, what stands below one is what it has to print. Lines with a prompt
             such as "beam.xml> " below a "$ flowmere shell" are what is typed at it
    python   stored as the file that it is told to be, and compiled
    xml      stored as the file that it is told to be, and read by the program
    csv      stored as the file that it is told to be
    cmake    the CMakeLists.txt of the cpp sample that it is told to build: a program is built by it against an
             installed package
    usage    its commands and options are held against what the program says of itself

What is compared is taken with "#" for every time in milliseconds. A line "..." stands for any number of lines, and
" ..." at the end of a line for any rest of it.

The samples of one file run one after the other, in a folder of its own that begins as a copy of examples/, in its
folder beam. Comments in front of a block tell what the reader sees from the text around it:

    <!-- file: NAME -->   the file as which the block is stored, from the present folder
    <!-- read: COMMAND -->  what reads an xml block that is no process
    <!-- frame: NAME -->  tests/docs/frames/NAME holds what stands around the block
    <!-- sh: COMMAND -->  what has happened before; $TEST_DATA, $EXAMPLES and $FRAMES are folders

There are no other blocks, and no indented ones. Those that cannot be run are in NOT_RUN. Links to files are followed,
too, and docs/program.md has to tell of every command.

    samples.py list               the programs among the samples, for CMake
    samples.py run OPTIONS...     runs all of them
    samples.py refresh OPTIONS... the same, and puts what was printed into the documents where it differs
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time
import xml.etree.ElementTree as ET

TOP = pathlib.Path(__file__).resolve().parents[2]
FRAMES = pathlib.Path(__file__).resolve().parent / "frames"
# Blocks that have to fail.
WRONG = FRAMES / "wrong.md"

# File and first line, without comment, of each block that is not run, and why.
BUILDS = "it builds and tests the checkout that this test belongs to"
NOT_RUN = {
    ("README.md", "./demo"): BUILDS,
    ("README.md", "cmake --preset dev"): BUILDS,
    ("CONTRIBUTING.md", "cmake --preset dev && cmake --build --preset dev && ctest --preset dev"): BUILDS,
}
# Blocks of these languages in these files have tests of their own, beside this one.
ELSEWHERE = {("docs/formats.md", "xml"), ("docs/formats.md", "json")}

LANGUAGES = {"cpp", "output", "sh", "console", "python", "xml", "csv", "cmake", "usage"}
LANGUAGES |= {language for _, language in ELSEWHERE}
TIME = re.compile(r" +[0-9]+\.[0-9] ms\b")
PROMPT = re.compile(r"^(?:[\w.-]+)?> ?")


class Wrong(Exception):
    """A sample that does not hold."""


class Block:
    def __init__(self, source, line, language, lines, directives):
        self.source, self.line, self.language, self.lines = source, line, language, lines
        self.directives = directives

    def text(self):
        return "\n".join(self.lines) + "\n"

    def place(self):
        return "{}:{}".format(self.source, self.line)

    def of(self, key):
        return [value for name, value in self.directives if name == key]

    def only(self, key):
        values = self.of(key)
        if len(values) > 1:
            raise Wrong("several <!-- {}: --> in front of one block".format(key))
        return values[0] if values else None

    def key(self):
        return (self.source, re.sub(r"\s+#.*", "", self.lines[0]) if self.lines else "")


def documents():
    return [TOP / "README.md", TOP / "CONTRIBUTING.md"] + sorted((TOP / "docs").glob("*.md"))


def blocks_of(path):
    """The blocks of a document in order; Wrong for what is no block of a known form."""
    source = path.relative_to(TOP).as_posix()
    blocks, directives, fence, is_list = [], [], None, False
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if fence is not None:
            if line.strip() == "```":
                blocks.append(Block(source, fence[0], fence[1], fence[2], directives))
                fence, directives = None, []
            else:
                fence[2].append(line)
            continue
        comment = re.fullmatch(r"<!-- (\w+): (.*) -->", line)
        if comment and comment[1] in ("file", "frame", "read", "sh"):
            directives.append((comment[1], comment[2]))
            continue
        if line.startswith("```"):
            language = (line[3:].split() or [""])[0]
            if language not in LANGUAGES:
                raise Wrong("{}:{}: a block of \"{}\"; name one of {}".format(source, number, language,
                                                                            ", ".join(sorted(LANGUAGES))))
            fence = (number, language, [])
            continue
        if line.strip() and directives:
            raise Wrong("{}:{}: a comment for a block, and no block behind it".format(source, number))
        is_list = line.startswith(("- ", "1. ")) or re.match(r"[0-9]+\. ", line) is not None or \
            (is_list and (line.startswith(" ") or not line.strip()))
        if line.startswith(("    ", "\t")) and not is_list:
            raise Wrong("{}:{}: an indented block: fence it, and say what it is".format(source, number))
    if fence is not None:
        raise Wrong("{}:{}: a block without an end".format(source, fence[0]))
    if directives:
        raise Wrong("{}: a comment for a block at the end".format(source))
    return blocks


def framed(block, text):
    frame = block.only("frame")
    if frame is None:
        return text
    path = FRAMES / frame
    if not path.is_file():
        raise Wrong("there is no frame " + frame)
    whole = path.read_text(encoding="utf-8")
    if whole.count("@sample@") != 1:
        raise Wrong("the frame {} has no single @sample@".format(frame))
    return whole.replace("@sample@\n", text)


def program_name(block):
    return re.sub(r"\W+", "_", block.source.removesuffix(".md")).lower() + "_" + str(block.number)


def numbered(path):
    """The blocks of a document, the programs among them with a number."""
    blocks, number = blocks_of(path), 0
    for block in blocks:
        if block.language == "cpp":
            number += 1
            block.number = number
    return blocks


def list_programs(folder):
    """Writes each program where CMake builds it, and leaves alone what has not changed."""
    folder.mkdir(parents=True, exist_ok=True)
    written = set()
    for path in documents():
        try:
            blocks = [block for block in numbered(path) if block.language == "cpp"]
        except Wrong:
            continue  # whoever runs them is told
        for block in blocks:
            file = folder / (program_name(block) + ".cpp")
            text = "// Out of {}.\n".format(block.source) + framed(block, block.text())
            if not file.exists() or file.read_text(encoding="utf-8") != text:
                file.write_text(text, encoding="utf-8")
            written.add(file.name)
            print(file)
    for file in folder.glob("*.cpp"):
        if file.name not in written:
            file.unlink()


def plain(line):
    return TIME.sub("  # ms", line.rstrip())


def line_fits(shown, printed):
    shown, printed = plain(shown), plain(printed)
    if shown.endswith(" ...") and shown.strip() != "...":
        return printed.startswith(shown[:-4].rstrip())
    return shown == printed


def fits(shown, printed):
    """Whether the lines are what a document shows of them."""
    if not shown:
        return not printed
    if shown[0].strip() == "...":
        return any(fits(shown[1:], printed[skip:]) for skip in range(len(printed) + 1))
    return bool(printed) and line_fits(shown[0], printed[0]) and fits(shown[1:], printed[1:])


def has_gaps(shown):
    return any(line.strip() == "..." or line.endswith(" ...") for line in shown)


def difference(shown, printed):
    return "shown:\n{}\nprinted:\n{}".format("\n".join("    " + line for line in shown),
                                            "\n".join("    " + line for line in printed))


class Bash:
    """One bash for all samples of a document, so that folders and variables stay."""

    END = "--- end of a sample ---"

    def __init__(self, folder, environment):
        # Each command reads standard input from descriptor 9's file; bash itself reads the commands.
        self.process = subprocess.Popen(["/bin/bash", "--norc", "--noprofile"], cwd=folder, env=environment,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def run(self, command, typed=None):
        """Exit code and lines of output, standard error among them."""
        source = "</dev/null"
        if typed is not None:
            source = "<<'--- end of what is typed ---'\n" + "\n".join(typed) + "\n--- end of what is typed ---"
        text = "{{ {}\n}} {}\n__code=$?; printf '\\n{} %d\\n' $__code; (exit $__code)\n".format(
            command, source, self.END)
        try:
            self.process.stdin.write(text.encode())
            self.process.stdin.flush()
        except BrokenPipeError:
            raise Wrong("the shell has ended before: " + command) from None
        lines = []
        while True:
            line = self.process.stdout.readline()
            if not line:
                raise Wrong("the shell has ended in: " + command)
            line = line.decode(errors="replace").rstrip("\n")
            if line.startswith(self.END):
                # The blank line in front of the mark is there when the output ended its last line itself.
                if lines and lines[-1] == "":
                    lines.pop()
                return int(line[len(self.END):]), lines
            lines.append(line)

    def close(self):
        self.process.stdin.close()
        self.process.stdout.close()
        self.process.wait(timeout=10)


def commands_of(block):
    """The commands of a console block: first line, last line of the command, what is typed, what is shown."""
    result, index = [], 0
    lines = block.lines
    if not lines or not lines[0].startswith("$ "):
        raise Wrong("begins with no command")
    while index < len(lines):
        first = index
        command = lines[index][2:]
        while command.endswith("\\"):
            index += 1
            command += "\n" + lines[index]
        index += 1
        begin = index
        while index < len(lines) and not lines[index].startswith("$ "):
            index += 1
        below = lines[begin:index]
        typed = None
        if command.startswith("flowmere shell") and any(PROMPT.match(line) for line in below):
            typed = [PROMPT.sub("", line, count=1) for line in below if PROMPT.match(line)]
        result.append((first, begin, command, typed, below))
    return result


class Run:
    def __init__(self, options):
        self.options = options
        self.program = pathlib.Path(options.program).resolve()
        self.cases = []
        self.changes = {}
        self.not_run = set()
        self.words = None
        self.used = {}

    def environment(self, home):
        environment = {"HOME": str(home), "PATH": "{}:/usr/bin:/bin".format(self.program.parent), "LC_ALL": "C.UTF-8",
                       "TEST_DATA": str(TOP / "tests/data"), "EXAMPLES": str(TOP / "examples"), "FRAMES": str(FRAMES)}
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "PYTHONMALLOC"):
            if name in os.environ:
                environment[name] = os.environ[name]
        return environment

    def document(self, path):
        source = path.relative_to(TOP).as_posix()
        scratch = pathlib.Path(self.options.scratch).resolve() / source.replace("/", "_")
        shutil.rmtree(scratch, ignore_errors=True)
        scratch.mkdir(parents=True)
        (scratch / "home").mkdir()
        shutil.copytree(TOP / "examples", scratch / "examples")
        try:
            blocks = numbered(path)
        except Wrong as wrong:
            self.report(source, source, 0, str(wrong))
            return
        if path != WRONG:
            self.links(source, path)
        if not blocks:
            return
        bash = Bash(scratch / "examples/beam", self.environment(scratch / "home"))
        printed = None
        for block in blocks:
            begin = time.monotonic()
            name = "{}_{}_line_{}".format(source, block.language, block.line)
            if block.key() in NOT_RUN:
                self.not_run.add(block.key())
                continue
            if (source, block.language) in ELSEWHERE:
                continue
            fault = None
            try:
                for command in block.of("sh"):
                    self.succeed(bash, command)
                if block.language == "output" and printed is None:
                    raise Wrong("there is no program in front of it")
                printed = getattr(self, "run_" + block.language)(bash, block, printed)
            except Wrong as wrong:
                fault = str(wrong)
                printed = None
            if path == WRONG:
                fault = None if fault else "holds, and should not"
            self.report(source, name, time.monotonic() - begin, fault and block.place() + ": " + fault)
        bash.close()
        if source == "docs/program.md":
            try:
                self.expect_all_commands(source)
                self.report(source, source + "_commands", 0, None)
            except Wrong as wrong:
                self.report(source, source + "_commands", 0, source + ": " + str(wrong))

    def links(self, source, path):
        """Links and pictures inside the documentation lead to files that are there."""
        targets = re.findall(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)", path.read_text(encoding="utf-8"))
        missing = sorted({target for target in targets if not (path.parent / target).exists()})
        self.report(source, source + "_links", 0,
                    "{}: there is no {}".format(source, ", ".join(missing)) if missing else None)

    def report(self, source, name, seconds, fault):
        self.cases.append((source, name, seconds, fault))
        if fault:
            print(fault + "\n", file=sys.stderr)

    @staticmethod
    def succeed(bash, command):
        code, lines = bash.run(command)
        if code != 0:
            raise Wrong("exit code {} of: {}\n{}".format(code, command, "\n".join(lines)))
        return lines

    def run_sh(self, bash, block, _):
        self.succeed(bash, "( set -euo pipefail\n" + block.text() + ")")

    def run_console(self, bash, block, _):
        faults = []
        for first, begin, command, typed, below in commands_of(block):
            shown = below if typed is None else [line for line in below if not PROMPT.match(line)]
            _, lines = bash.run(command, typed)
            if fits(shown, lines):
                continue
            if typed is None and not has_gaps(shown):
                self.change(block, begin, len(below), lines)
            faults.append("line {}: $ {}\n{}".format(block.line + 1 + first, command, difference(shown, lines)))
        if faults:
            raise Wrong("\n".join(faults))

    def run_cpp(self, bash, block, _):
        program = pathlib.Path(self.options.samples).resolve() / ("doc_" + program_name(block))
        if not program.is_file():
            raise Wrong("is not built: {} is missing".format(program.name))
        if block.of("file"):
            self.store(bash, block)
        return self.succeed(bash, "'{}'".format(program))

    def run_output(self, _, block, printed):
        if not fits(block.lines, printed):
            if not has_gaps(block.lines):
                self.change(block, 0, len(block.lines), printed)
            raise Wrong("another output\n" + difference(block.lines, printed))

    def store(self, bash, block):
        name = block.only("file")
        if name is None:
            raise Wrong("has no <!-- file: --> to be stored as")
        folder = pathlib.Path(self.succeed(bash, "pwd -P")[0])
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_text(framed(block, block.text()), encoding="utf-8")
        return name

    def run_python(self, bash, block, _):
        name = self.store(bash, block)
        self.succeed(bash, "/usr/bin/python3 -c 'import sys; compile(open(sys.argv[1]).read(), sys.argv[1], \"exec\")' "
                     "'{}'".format(name))

    def run_csv(self, bash, block, _):
        self.store(bash, block)

    def run_xml(self, bash, block, _):
        name = self.store(bash, block)
        command = block.only("read") or "flowmere show '{}'".format(name)
        lines = self.succeed(bash, command + " >/dev/null")
        if lines:
            raise Wrong("is not read without a word: " + "\n".join(lines))

    def run_cmake(self, bash, block, _):
        """A package in a prefix of its own, and a program that the block builds against it."""
        name = self.store(bash, block)
        prefix = pathlib.Path(self.options.scratch).resolve() / "prefix"
        if not prefix.exists():
            for component in ("library", "development"):
                self.succeed(bash, "cmake --install '{}' --prefix '{}' --component {} >/dev/null".format(
                    pathlib.Path(self.options.build).resolve(), prefix, component))
        folder = pathlib.Path(name).parent
        self.succeed(bash, "CXX='{}' CXXFLAGS='{}' cmake -S '{}' -B '{}' -G Ninja -DCMAKE_PREFIX_PATH='{}' >/dev/null"
                     .format(self.options.compiler, self.options.flags, folder, folder / "build", prefix))
        self.succeed(bash, "cmake --build '{}' >/dev/null".format(folder / "build"))

    def run_usage(self, bash, block, _):
        if self.words is None:
            import json
            self.words = json.loads("\n".join(self.succeed(bash, "flowmere man --json")))
        options = {}
        commands = []
        for line in block.lines:
            # A description stands behind two blanks.
            words = re.split(r" {2,}", line.strip())[0]
            if line.startswith("flowmere "):
                commands = self.commands_named(words.split()[1:])
            if not commands:
                raise Wrong("begins with no command")
            names = set(re.findall(r"(?<![\w-])--?[A-Za-z][\w-]*", words))
            for command in commands:
                options.setdefault(command["command"], set()).update(names)
        self.used.setdefault(block.source, set()).update(options)
        for entry in self.entries(self.words):
            used = options.get(entry["command"])
            if used is None:
                continue
            known = [set(option["names"]) for option in entry["options"]]
            for name in used:
                if not any(name in names for names in known):
                    raise Wrong("{} has no option {}".format(entry["command"], name))
            missing = [sorted(names)[0] for names in known if not names & used and "--help" not in names]
            # A line without options names the command alone.
            if used and missing:
                raise Wrong("{} has {}, too".format(entry["command"], ", ".join(missing)))

    def commands_named(self, words):
        """The commands that the words begin with; "a|b" stands for two."""
        commands = [self.words]
        for word in words:
            if not commands[0].get("commands"):
                break
            found = [inner for command in commands for inner in command["commands"]
                     if inner["command"].split()[-1] in word.split("|")]
            if len(found) != len(word.split("|")):
                raise Wrong("not all of {} are commands".format(word))
            commands = found
        return commands

    def expect_all_commands(self, source):
        """The reference of the program tells of each command that does something."""
        if self.words is None:
            raise Wrong("has no usage")
        for entry in self.entries(self.words):
            if not entry.get("commands") and entry["command"] not in self.used.get(source, set()):
                raise Wrong("{} stands in no usage block".format(entry["command"]))

    def entries(self, entry):
        yield entry
        for inner in entry.get("commands", []):
            yield from self.entries(inner)

    def change(self, block, begin, count, lines):
        self.changes.setdefault(block.source, []).append((block.line + begin, count, lines))

    def refresh(self):
        for source, changes in self.changes.items():
            if TOP / source == WRONG:
                continue
            path = TOP / source
            text = path.read_text(encoding="utf-8").splitlines()
            for at, count, lines in sorted(changes, reverse=True):
                text[at:at + count] = [line.rstrip() for line in lines]
            path.write_text("\n".join(text) + "\n", encoding="utf-8")
            print("{}: {} written anew".format(source, len(changes)))

    def all(self):
        for path in documents() + [WRONG]:
            self.document(path)
        for source, line in sorted(set(NOT_RUN) - self.not_run):
            self.report(source, source + "_list", 0,
                        "NOT_RUN names a block that is not there: {}: {}".format(source, line))

    def write_report(self):
        """The cases in the form of a GoogleTest report, for those who count them."""
        where = os.environ.get("GTEST_OUTPUT", "")
        if not where.startswith("xml:"):
            return
        root = ET.Element("testsuites")
        suite = ET.SubElement(root, "testsuite", name="Samples")
        for source, name, seconds, fault in self.cases:
            case = ET.SubElement(suite, "testcase", name=name, classname=source, status="run", result="completed",
                                 time="{:.3f}".format(seconds))
            if fault:
                ET.SubElement(case, "failure", message=fault)
        ET.ElementTree(root).write(where[4:] + "test_guides.xml" if where.endswith("/") else where[4:])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("what", choices=("list", "run", "refresh"))
    parser.add_argument("--samples", required=True, help="the folder of the programs' sources, or of the programs")
    parser.add_argument("--program")
    parser.add_argument("--scratch")
    parser.add_argument("--build")
    parser.add_argument("--compiler", default="g++")
    parser.add_argument("--flags", default="")
    parser.add_argument("--only", help="one document")
    options = parser.parse_args()
    if options.what == "list":
        list_programs(pathlib.Path(options.samples))
        return
    begin = time.monotonic()
    run = Run(options)
    if options.only:
        run.document(TOP / options.only)
    else:
        run.all()
    if options.what == "refresh":
        run.refresh()
    run.write_report()
    failed = [case for case in run.cases if case[3]]
    print("{} samples, {} failed, {:.1f} s".format(len(run.cases), len(failed), time.monotonic() - begin))
    sys.exit(1 if failed or not run.cases else 0)


if __name__ == "__main__":
    main()
