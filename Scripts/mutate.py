"""Mutants of the library against its tests; started by Scripts/mutants, which says what for."""

import collections
import hashlib
import json
import math
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

BUS = ["BazaarServerTest", "BazaarClientTest", "BazaarLimitsTest", "BazaarContextTest", "BazaarInsideTest",
       "BazaarProcessTest", "BazaarElectionTest"]

# What covers a source, the tests that need not be compiled anew first. Others than these are shown to the bus's.
TESTS = {
    "AccessChecks.cpp": ["AccessRealityTest", "AccessChecksTest"],
    "Bazaar/PacketReader.cpp": ["PacketReaderTest"] + BUS,
    "DaemonSettings.cpp": ["DaemonSettingsTest"],
    "DiskList.cpp": ["DiskListTest"],
    "Firewall.cpp": ["FirewallTest"],
    "FormatText.cpp": ["FormatTextTest"],
    "IOUtils.cpp": ["IOUtilsTest", "BazaarContextTest"],
    "Platform/ToolOutput.cpp": ["ToolOutputTest", "DiskListTest", "FirewallTest"],
    "PathHelpers.cpp": ["PathHelpersTest", "PathSafetyTest"],
    "PathSafety.cpp": ["PathSafetyTest"],
    "Printable.cpp": ["PrintableTest"],
    "RAMCleaner.cpp": ["RAMCleanerTest"],
    "RAMInfo.cpp": ["RAMInfoTest", "RAMCleanerTest"],
    "ReadProcess.cpp": ["ReadProcessTest"],
    "RootExecutor.cpp": ["DarwinRootExecutorTest", "RootExecutorTest"],
    "Platform/ApplicationLocations.cpp": ["ApplicationLocationsTest", "RAMCleanerTest"],
    "Platform/Linux/LocalPeer.cpp": ["LocalPeerTest"] + BUS,
    "Platform/Linux/MemoryStatistics.cpp": ["RAMInfoTest", "RAMCleanerTest"],
    "Platform/Linux/PrivilegedLauncher.cpp": ["FirewallTest", "RootExecutorTest"],
    "Platform/Linux/SettingsStore.cpp": ["DaemonSettingsTest", "Faults"],
}

WANTED_SHARE = 0.9
LONGEST_TEST = 60   # s
LONGEST_RUN = 400   # s that all tests of a source take together
JOBS = 2            # compilers at a time; the tests wait more than they work
TESTS_AT_ONCE = 16

OPPOSITES = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&",
             "+": "-", "-": "+", "*": "/", "/": "*", "+=": "-=", "-=": "+=", "|": "&", "&": "|"}
OPERATOR = re.compile(r"(?<= )(==|!=|<=|>=|<|>|&&|\|\||\+=|-=|\+|-|\*|/|\||&)(?= )")
STEP = re.compile(r"\+\+|--")
NUMBER = re.compile(r"(?<![\w.\"'])\d+(?![\w.'])")
TRUTH = re.compile(r"\b(true|false)\b")
IF = re.compile(r"^(\s*(?:else )?if \()(.*)(\))$")
CALL = re.compile(r"^(\s*)(?!return\b|throw\b|delete\b|using\b|else\b)[\w:]+(?:(?:\.|->|::)\w+|\([^;]*\)|\[[^;]*\])*"
                  r"\(.*\)( << .*)?;$")
RETURN = re.compile(r"^(\s*)return (.+);$")
SKIPPED = re.compile(r"^\s*(#|//|/\*|\*|static_assert|case |default:|using |namespace|template|VLOG)|\boperator\b")

Mutant = collections.namedtuple("Mutant", "file line old new")


def mask(text):
    """The same text with blanks for comments, and for what stands between quotes."""
    def blank(match):
        return re.sub(r"[^\n]", " ", match.group(0))
    pattern = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.S)
    return pattern.sub(blank, text)


def replaced(line, match, text):
    return line[:match.start()] + text + line[match.end():]


def is_balanced(text):
    depth = 0
    for char in text:
        depth += {"(": 1, ")": -1}.get(char, 0)
        if depth < 0:
            return False
    return depth == 0


def changes_of(line, code, previous):
    for match in OPERATOR.finditer(code):
        yield replaced(line, match, OPPOSITES[match.group(0)])
    for match in STEP.finditer(code):
        yield replaced(line, match, "--" if match.group(0) == "++" else "++")
    for match in NUMBER.finditer(code):
        yield replaced(line, match, str(int(match.group(0)) + 1))
        if int(match.group(0)) > 0:
            yield replaced(line, match, str(int(match.group(0)) - 1))
    for match in TRUTH.finditer(code):
        yield replaced(line, match, "false" if match.group(0) == "true" else "true")
    match = IF.match(code)
    if match and is_balanced(match.group(2)):
        yield line[:match.end(1)] + "!(" + line[match.start(2):match.end(2)] + ")" + line[match.end(2):]
    match = CALL.match(code)
    if match and is_balanced(code):
        yield match.group(1) + ";"
    match = RETURN.match(code)
    if match and match.group(2).strip() not in ("{}", "false", "0", "QString()"):
        yield match.group(1) + "return {};"
    if line == "{" and "(" in previous and "=" not in previous:
        yield "{ return;" if previous.startswith("void ") else "{ return {};"


def mutants_of(root, name):
    text = (root / "Libs/Common" / name).read_text()
    lines = text.split("\n")
    code = mask(text).split("\n")
    found = []
    for number, line in enumerate(lines):
        if SKIPPED.search(line) or not line.strip():
            continue
        for new in changes_of(line, code[number], lines[number - 1] if number else ""):
            if new != line:
                found.append(Mutant(name, number, line, new))
    return found


class Tree:
    """A copy of the project with a build of its own."""

    def __init__(self, project):
        self.project = project
        self.root = project / "build/mutants/tree"
        self.build = project / "build/mutants/build"
        self.known = project / "build/mutants/passed.json"
        self.log = project / "build/mutants/log.txt"
        self.sound = {}

    def refresh(self):
        """Copies what has changed, and takes away what is no longer there."""
        wanted = set()
        for start in self.project.iterdir():
            if start.name in ("build", ".git"):
                continue
            wanted.update([start] if start.is_file() else [path for path in start.rglob("*") if path.is_file()])
        for source in wanted:
            copy = self.root / source.relative_to(self.project)
            if not copy.exists() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, copy)
        kept = {self.root / source.relative_to(self.project) for source in wanted}
        for copy in list(self.root.rglob("*")):
            if copy.is_file() and copy not in kept:
                copy.unlink()

    def run(self, *words):
        """Whether the command succeeded, and what it said."""
        done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                              check=False)
        return done.returncode == 0, done.stdout.decode(errors="replace")

    def configure(self):
        transcripts = self.project.parent / "shared/transcripts"
        done, said = self.run("cmake", "-S", str(self.root), "-B", str(self.build), "-G", "Ninja",
                              "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DTAVRIK_BUILD_HOSTS=OFF",
                              "-DTAVRIK_INSTALL=OFF", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
                              f"-DTAVRIK_TRANSCRIPTS={transcripts}")
        if not done:
            sys.exit(said)

    def make(self, programs):
        done, said = self.run("ninja", "-C", str(self.build), f"-j{JOBS}", "TavrikCommon", *programs)
        self.log.write_text(said)
        return done

    def object_of(self, name):
        return f"Libs/Common/CMakeFiles/TavrikCommonObjects.dir/{name}.o"

    def compiles(self, name):
        done, said = self.run("ninja", "-C", str(self.build), f"-j{JOBS}", self.object_of(name))
        self.log.write_text(said)
        return done

    def test(self, programs):
        """The first test that fails, or none. Whoever else is at work by then is not waited for."""
        with tempfile.TemporaryDirectory(prefix="m", ignore_cleanup_errors=True) as folder:
            os.chmod(folder, 0o711)  # some become another user
            done = subprocess.Popen(["ctest", "--test-dir", str(self.build), "-R", rf"^({'|'.join(programs)})\.",
                                     "-j", str(TESTS_AT_ONCE), "--timeout", str(LONGEST_TEST), "--output-on-failure",
                                     "--no-tests=error", "-FA", "Leftovers"],
                                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                                    env={**os.environ, "TMPDIR": folder, "TAVRIK_TEST_ROOT": folder},
                                    start_new_session=True, text=True, errors="replace")
            end = threading.Timer(LONGEST_RUN, os.killpg, (done.pid, signal.SIGKILL))
            end.start()
            said, failed = "", None
            for line in done.stdout:
                said += line
                failed = re.search(r"Test +#\d+: (\S+) .*\*\*\*(?!Skipped)", line)
                if failed:
                    os.killpg(done.pid, signal.SIGKILL)
                    break
            end.cancel()
            code = done.wait()
            done.stdout.close()
        if not failed and code == 0:
            return None
        self.log.write_text(said)
        return failed.group(1) if failed else said.splitlines()[-1]

    def digest(self):
        digest = hashlib.sha256()
        for path in sorted(self.root.rglob("*")):
            if path.is_file() and path.suffix in (".h", ".cpp", ".txt", ".cmake"):
                digest.update(str(path).encode() + path.read_bytes())
        return digest.hexdigest()

    def expect_sound(self, programs):
        """A test that fails without a mutant says nothing about one."""
        if not self.sound:
            self.sound = {"digest": self.digest()}
            if self.known.exists():
                known = json.loads(self.known.read_text())
                if known.get("digest") == self.sound["digest"]:
                    self.sound = known
        if all(program in self.sound for program in programs):
            return
        print(f"       {', '.join(programs)} without a mutant", flush=True)
        if not self.make(programs):
            sys.exit(f"The tests do not build:\n{self.log.read_text()[-3000:]}")
        failed = self.test(programs)
        if failed:
            sys.exit(f"{failed} fails without a mutant:\n{self.log.read_text()[-3000:]}")
        self.sound.update((program, True) for program in programs)
        self.known.write_text(json.dumps(self.sound))


def read_equivalents(project):
    """By content: file, original line, mutated line, in a block each, with a reason before them."""
    listed = {}
    reason = ""
    block = []
    for line in (project / "Tests/Mutants/equivalent.txt").read_text().split("\n") + [""]:
        if line.startswith("# "):
            reason = line[2:]
        elif line.strip():
            block.append(line.strip())
        if not line.strip() and len(block) == 3:
            listed[tuple(block)] = reason
        if not line.strip():
            block = []
    return listed


def judge(tree, mutant):
    """What noticed the mutant, or an empty text; none when it does not compile."""
    path = tree.root / "Libs/Common" / mutant.file
    sound = path.read_text()
    lines = sound.split("\n")
    lines[mutant.line] = mutant.new
    path.write_text("\n".join(lines))
    try:
        if not tree.compiles(mutant.file):
            return None
        programs = TESTS.get(mutant.file, BUS)
        if not tree.make(programs):
            if "FAILED: " in tree.log.read_text() and ".o\n" not in tree.log.read_text():
                return "the tests cannot even be listed"
            return None
        return tree.test(programs) or ""
    finally:
        path.write_text(sound)


def choose(root, generator, only):
    """Every mutant once, in an order that does not drown the small files in the large."""
    sources = sorted((root / "Libs/Common").glob("*.cpp"))
    for folder in ("Bazaar", "Platform", "Platform/Linux"):
        sources += sorted((root / "Libs/Common" / folder).glob("*.cpp"))
    found = {}
    for source in sources:
        name = str(source.relative_to(root / "Libs/Common"))
        mutants = mutants_of(root, name) if not only or name in only else []
        generator.shuffle(mutants)
        if mutants:
            found[name] = mutants
    weights = {name: math.sqrt(len(mutants)) for name, mutants in found.items()}
    while found:
        names = sorted(found)
        name = generator.choices(names, [weights[name] for name in names])[0]
        yield found[name].pop()
        if not found[name]:
            del found[name]


def main():
    project, count, seed = pathlib.Path(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])
    tree = Tree(project)
    tree.refresh()
    tree.configure()
    equivalents = read_equivalents(project)
    killed, survived, equal, broken = [], [], [], 0
    for mutant in choose(tree.root, random.Random(seed), set(sys.argv[4:])):
        if len(killed) + len(survived) + len(equal) == count:
            break
        if (mutant.file, mutant.old.strip(), mutant.new.strip()) in equivalents:
            equal.append(mutant)
            continue
        tree.expect_sound(TESTS.get(mutant.file, BUS))
        start = time.monotonic()
        noticed = judge(tree, mutant)
        if noticed is None:
            broken += 1
            continue
        (killed if noticed else survived).append(mutant)
        number = len(killed) + len(survived) + len(equal)
        print(f"{number:4} {mutant.file}:{mutant.line + 1}: {mutant.new.strip()}\n"
              f"       {'noticed by ' + noticed if noticed else 'NOT NOTICED'}, "
              f"{time.monotonic() - start:.0f} s", flush=True)

    share = len(killed) / max(len(killed) + len(survived), 1)
    print(f"\n{len(killed)} of {len(killed) + len(survived)} mutants noticed ({share:.0%}); {len(equal)} more change "
          f"nothing that can be seen; {broken} did not compile and were replaced")
    for mutant in survived:
        print(f"\n{mutant.file}:{mutant.line + 1}\n-{mutant.old}\n+{mutant.new}")
    if share < WANTED_SHARE:
        sys.exit(1)


main()
