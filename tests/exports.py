#!/usr/bin/env python3
"""Holds what a built library exports against the native methods of a jar's classes, in both directions: python3
tests/exports.py LIBRARY JAR PACKAGE. The methods are those of the package, or with "-PACKAGE" all others."""

import itertools
import re
import subprocess
import sys
import zipfile


def mangled(name):
    """A dotted name as the Java Native Interface writes it."""
    return re.sub(r"[_$;[]", lambda found: {"_": "_1", "$": "_00024", ";": "_2", "[": "_3"}[found[0]], name).replace(".", "_")


def native_methods(jar):
    with zipfile.ZipFile(jar) as archive:
        classes = [name[:-6].replace("/", ".") for name in archive.namelist() if name.endswith(".class")]
    listing = subprocess.run(["javap", "-p", "-s", "-cp", jar, *classes], check=True, capture_output=True,
                             text=True).stdout
    methods = {}  # the arguments of each overload, by name
    for line, below in itertools.pairwise(listing.splitlines()):
        if declared := re.match(r"\S.*?\b(?:class|interface|enum) ([\w.$]+)", line):
            owner = declared[1]
        elif method := re.match(r"  .*\bnative .* (\w+)\(", line):
            arguments = re.match(r"    descriptor: \((.*)\)", below)[1].replace("/", ".")
            methods.setdefault(f"Java_{mangled(owner)}_{mangled(method[1])}", []).append(mangled(arguments))
    return {name if len(overloads) == 1 else f"{name}__{overload}"
            for name, overloads in methods.items() for overload in overloads}


def exported_names(library):
    listing = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    return {line.split()[-1] for line in listing.splitlines()}


def main(library, jar, package):
    start = f"Java_{mangled(package.removeprefix('-'))}_"
    methods = {name for name in native_methods(jar) if name.startswith(start) != package.startswith("-")}
    exported = exported_names(library)
    wrong = [f"not exported: {name}" for name in methods - exported]
    wrong += [f"no native method: {name}" for name in exported - methods]
    print(*sorted(wrong), f"{len(methods & exported)} passed, {len(wrong)} failed", sep="\n")
    return 1 if wrong or not methods else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
