#!/usr/bin/env python3
"""Holds the headers that stand in for the platform's against what others have written down of them.

Rust's libc and Go's x/sys describe the platform's C library, JNA its kernel statistics; Debian's common HBA library
has the HBA API's own header. Go's files are for amd64, which lays these fields out as SPARC does: both are LP64 with
natural alignment. Of Rust's, a structure that is told apart by processor is none here. What the build machine has of its
own (stat, statvfs ...) lies otherwise there: of it, the fields that the code names are compared, by width and sign.
Everything is compared twice, as compiled for the build machine and for big-endian SPARC.
"""

import collections
import functools
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
HEADERS = ROOT / "platform/replay/include"
TARGETS = [("this machine", "c++", []),
           ("SPARC", "sparc64-linux-gnu-g++", ["qemu-sparc64", "-L", "/usr/sparc64-linux-gnu"])]

# Ours, theirs, and what their fields lack of the published names.
STAND_INS = {
    "Rust": [("struct utsname", "utsname", ""), ("processor_info_t", "processor_info_t", "")],
    "Go": [("struct utsname", "Utsname", ""), ("struct ustat", "Ustat_t", "f_")],
    "JNA": [("kstat_t", "Kstat", ""), ("kstat_io_t", "KstatIO", ""), ("kstat_ctl_t", "KstatCtl", "")],
}
BUILD_MACHINE = {
    "Rust": [("struct statvfs64", "statvfs", ""), ("struct stat", "stat", ""), ("stack_t", "stack_t", "")],
    "Go": [("struct statvfs64", "Statvfs_t", "f_"), ("struct stat", "Stat_t", "st_")],
}
# What JNA has otherwise than the platform: it takes functions for numbers, and the first record for a link to it.
JNA_ALONE = {"JNA: kstat_t.ks_update size", "JNA: kstat_t.ks_snapshot size", "JNA: kstat_ctl_t.kc_chain size",
             "JNA: kstat_ctl_t.kc_kd at", "JNA: kstat_ctl_t size"}
# Constants that the code names, and that the platform must have for it to compile there.
PUBLISHED = re.compile(r"E[A-Z][A-Z0-9]+|O_[A-Z]+|_SC_\w+|SI_\w+|P_[A-Z]+|KSTAT_\w+")

Field = collections.namedtuple("Field", "at size signed")  # signed: 1, 0, or -1 of what is no number


def package_file(package, ending):
    """The one file of a Debian package whose path ends so."""
    listed = subprocess.run(["dpkg", "-L", package], check=True, capture_output=True, text=True).stdout.split("\n")
    [path] = [line for line in listed if line.endswith(ending)]
    return pathlib.Path(path)


class Source:
    """Types, structures and constants as one language's source has them; `array` takes an array's type apart."""

    def __init__(self):
        self.types, self.structures, self.constants = {}, {}, {}

    def value(self, text):
        text = text.split(" as ")[0].strip()
        return self.constants[text] if text in self.constants else int(text, 0)

    def layout(self, name):
        """The structure's fields by name, its size and its alignment."""
        fields, at, widest = {}, 0, 1
        for field, kind in self.structures[name]:
            size, alignment, signed = self.shape(kind)
            at += -at % alignment
            fields[field] = Field(at, size, signed)
            at += size
            widest = max(widest, alignment)
        return fields, at + -at % widest, widest

    def shape(self, kind):
        """Size, alignment and sign of a type."""
        kind = kind.strip().removeprefix("::")
        if kind.startswith("*"):
            return 8, 8, -1
        if number := re.fullmatch(r"(i|u|int|uint)(8|16|32|64)|([iu])size", kind):
            size = int(number[2] or 64) // 8
            return size, size, int(kind.startswith("i"))
        if kind == "byte":
            return 1, 1, 0
        if array := self.array(kind):
            element, count = array
            size, alignment, _ = self.shape(element)
            return size * self.value(count), alignment, -1
        if kind in self.structures:
            _, size, alignment = self.layout(kind)
            return size, alignment, -1
        return self.shape(self.types[kind])


class Rust(Source):
    def __init__(self):
        super().__init__()
        unix = package_file("librust-libc-dev", "/src/unix/mod.rs")
        for path in [unix, unix.parent / "solarish/mod.rs"]:
            text = path.read_text()
            for name, kind in re.findall(r"^\s*pub type (\w+) = ([^;]+);", text, re.M):
                self.types[name] = kind
            for name, value in re.findall(r"^pub const (\w+): [^=]+ = ([^;]+);", text, re.M):
                if re.fullmatch(r"-?(0x[\da-f]+|\d+)", value) or value in self.constants:
                    self.constants[name] = self.value(value)
            for name, body in re.findall(r"^    pub struct (\w+) \{\n(.*?)^    \}", text, re.M | re.S):
                if "#[cfg" not in body:
                    self.structures[name] = re.findall(r"^\s*(?:pub )?(\w+):\s*(.+?),?$", body, re.M)

    @staticmethod
    def array(kind):
        found = re.fullmatch(r"\[(.+); (.+)\]", kind)
        return found and found.groups()


class Go(Source):
    def __init__(self):
        super().__init__()
        for ending in ["/unix/ztypes_solaris_amd64.go", "/unix/zerrors_solaris_amd64.go"]:
            text = package_file("golang-golang-x-sys-dev", ending).read_text()
            for name, value in re.findall(r"^\t(\w+)\s+= (?:syscall\.\w+\()?(-?0x[\da-f]+)\)?$", text, re.M):
                self.constants[name] = int(value, 0)
            for name, body in re.findall(r"^type (\w+) struct \{\n(.*?)^\}", text, re.M | re.S):
                self.structures[name] = [(field.lower(), kind.split("/*")[0])
                                         for field, kind in re.findall(r"^\t(\w+)\s+(.+)$", body, re.M)]

    @staticmethod
    def array(kind):
        found = re.fullmatch(r"\[(\d+)\](.+)", kind)
        return found and (found[2], found[1])


class Jna(Source):
    """Laid out by JNA itself. It loads a library for it, of which it needs nothing."""

    def __init__(self, place):
        super().__init__()
        subprocess.run(["c++", "-shared", "-x", "c++", "/dev/null", "-o", place / "libkstat.so"], check=True)
        jars = "/usr/share/java/jna.jar:/usr/share/java/jna-platform.jar"
        told = subprocess.run(["java", f"-Djna.library.path={place}", "-cp", jars, pathlib.Path(__file__).parent /
                               "KstatLayouts.java"], check=True, capture_output=True, text=True).stdout
        for kind, name, *values in (line.split() for line in told.splitlines()):
            if kind == "constant":
                self.constants[name] = int(values[0])
            elif kind == "size":
                self.structures[name] = ({}, int(values[0]), None)
            else:
                self.structures[name][0][values[0]] = Field(int(values[1]), int(values[2]), -1)

    def layout(self, name):
        return self.structures[name]


def program(header, structures, constants):
    """C++ that tells of these: "STRUCTURE.FIELD OFFSET SIZE SIGNED", "STRUCTURE SIZE", "CONSTANT VALUE"."""
    lines = [f"#include <{header}>" for header in ["cstddef", "cstdio", "ctime", "type_traits", header]]
    lines.append("""
        #define TELL(T, f) [](auto *t) { using S = std::remove_pointer_t<decltype(t)>; \\
            if constexpr (requires(S s) { s.f; }) { using F = decltype(S::f); const int is = std::is_integral_v<F> ? \\
                std::is_signed_v<F> : -1; std::printf(#T ".%s %zu %zu %d\\n", #f, offsetof(S, f), sizeof(F), is); } \\
            }(static_cast<T *>(nullptr))
        int main() {""")
    for structure, fields in structures.items():
        lines += [f"TELL({structure}, {field});" for field in fields]
        lines.append(f'std::printf("{structure} %zu\\n", sizeof({structure}));')
    lines += [f'std::printf("{name} %lld\\n", static_cast<long long>({name}));' for name in constants]
    return "\n".join([*lines, "}\n"])


def facts(source, search, compiler, runner, place):
    """What the program tells. `search` says how the stand-ins are: before the system's headers, or behind them."""
    (place / "facts.cpp").write_text(source)
    build = [compiler, "-std=c++20", "-w", f"-I{ROOT}", "-idirafter", "/usr/include", search, HEADERS]
    subprocess.run([*build, place / "facts.cpp", "-o", place / "facts"], check=True)
    told = subprocess.run([*runner, place / "facts"], check=True, capture_output=True, text=True).stdout
    return {name: tuple(map(int, numbers.split()))
            for name, numbers in re.findall(r"^(.+?) ((?:-?\d+ ?)+)$", told, re.M)}


def named_by_code(*folders):
    """Every word of the code, without comments, texts, and what only Linux compiles."""
    text = "\n".join(path.read_text() for folder in folders for path in sorted((ROOT / folder).rglob("*.[ch]*")))
    return set(re.findall(r"\w+", re.sub(r'#ifdef __linux__.*?#endif|//[^\n]*|"[^"\n]*"', "", text, flags=re.S)))


def comparisons(sources, ours, hba, constants, words):
    """What, ours, theirs."""
    for language, rows in STAND_INS.items():
        for name, their_name, prefix in rows:
            fields, size, _ = sources[language].layout(their_name)
            for field, shape in fields.items():
                if field != "_":
                    at, own_size, _ = ours.get(f"{name}.{prefix}{field}", (None, None, None))
                    yield f"{language}: {name}.{prefix}{field} at", at, shape.at
                    yield f"{language}: {name}.{prefix}{field} size", own_size, shape.size
            yield f"{language}: {name} size", ours[name], (size,)
    for language, rows in BUILD_MACHINE.items():
        for name, their_name, prefix in rows:
            for field, shape in sources[language].layout(their_name)[0].items():
                if prefix + field in words:
                    _, *own = ours.get(f"{name}.{prefix}{field}", (None, None, None))
                    yield f"{language}: {name}.{prefix}{field}", own, [shape.size, shape.signed]
    for name in constants:
        for language, source in sources.items():
            if name in source.constants:
                yield f"{language}: {name}", ours[name], (source.constants[name],)
    for name in sorted(filter(PUBLISHED.fullmatch, words)):
        yield f"{name} is there", True, any(name in source.constants for source in sources.values())
    for name, numbers in hba[0].items():
        yield f"HBA API: {name}", numbers, hba[1].get(name)


def main():
    headers = {path: path.read_text() for path in sorted(HEADERS.rglob("*.h"))}
    hba = headers.pop(HEADERS / "hbaapi.h")
    text = "\n".join(headers.values())
    words = named_by_code("native", "inventory", "common", "record", "description")
    with tempfile.TemporaryDirectory() as folder:
        place = pathlib.Path(folder)
        sources = {"Rust": Rust(), "Go": Go(), "JNA": Jna(place)}
        structures = collections.defaultdict(set)
        for language, rows in [*STAND_INS.items(), *BUILD_MACHINE.items()]:
            for ours, theirs, prefix in rows:
                structures[ours] |= {prefix + field for field in sources[language].layout(theirs)[0]} - {prefix + "_"}
        defined = re.findall(r"^#define (\w+) (?!\")", text, re.M)
        constants = [name for name in defined if any(name in source.constants for source in sources.values())]
        own_program = program("platform/solaris.h", structures, constants)
        hba_structures = {alias: re.findall(r"(\w+)(?:\[\d+\])?;", body) for body, alias in
                          re.findall(r"^typedef struct \w+ \{\n(.*?)^\} (\w+),", hba, re.M | re.S)}
        hba_program = program("hbaapi.h", hba_structures, re.findall(r"^#define (HBA_\w+)", hba, re.M))

        equal, wrong = 0, []
        for target, compiler, runner in TARGETS:
            ask = functools.partial(facts, compiler=compiler, runner=runner, place=place)
            hba_facts = [ask(hba_program, "-isystem"), ask(hba_program, "-idirafter")]
            alone = set(JNA_ALONE)
            for what, ours, theirs in comparisons(sources, ask(own_program, "-isystem"), hba_facts, constants, words):
                if what in alone and ours != theirs:
                    alone.remove(what)
                elif ours == theirs:
                    equal += 1
                else:
                    wrong.append(f"{what} on {target}: {ours}, there {theirs}")
            wrong += [f"{what} on {target}: no difference any more" for what in alone]
    declared = {a or b for a, b in re.findall(r"^struct (\w+) \{|^\} (\w+);", text, re.M)}
    compared = {name.removeprefix("struct ") for name in structures} | set(constants)
    print("Nobody else tells of:", *sorted((declared | set(defined)) - compared))
    print(*wrong, f"{equal} passed, {len(wrong)} failed", sep="\n")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
