#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks what a compiler does not: which layer includes which, and the forms every source file keeps.

Usage: check_sources.py [root]. Prints one line per finding and exits with 1 when there are any.
"""

import pathlib
import re
import subprocess
import sys

# Layer: the layers that it may include, which bring theirs along. docs/architecture.md draws the same picture.
LAYERS = {
    "Platform": [],
    "Coding": ["Platform"],
    "Models": ["Coding"],
    "Common": ["Platform"],
    "Core": ["Common", "Coding"],
    "Services": ["Core", "Models"],
    "Runtime": ["Core", "Common", "Platform"],
    "Testing": ["Core", "Common", "Platform"],
}

# Umbrella: the layers whose public headers it includes, all of them.
UMBRELLAS = {
    "Orvane/Orvane.h": ["Platform", "Coding", "Models", "Common", "Core", "Services"],
    "Orvane/Runtime.h": ["Runtime"],
    "Orvane/Testing.h": ["Testing"],
}

# Where a library from outside may be included, by the beginning of its headers' names.
LIBRARY_HOMES = {
    "simdjson": ["Platform", "Coding"],
    "unicode/": ["Platform"],
    "absl/": ["Platform"],
    "boost/": ["Platform"],
    "curl/": ["Runtime"],
    "openssl/": ["Runtime"],
}

# Headers for who has a library from outside anyway, by the beginnings of that library's headers' names. Nothing includes them.
ADAPTERS = {
    "Orvane/Asio.h": ("boost/asio/", "asio/"),
    "Orvane/GoogleTest.h": ("gtest/",),
}

# Files that stand above the layers' folders and belong to a layer all the same.
TOP_FILES = {"Orvane/Version.h": "Platform", "Orvane/Version.cpp": "Platform"}

# The public headers that may define macros, besides those of exports.
MACRO_HEADERS = {"Orvane/Version.h"}

# The macro by which a layer exports, where it is not the first library's. A DLL that used another's would take its symbols for
# its own.
EXPORT_MACROS = {"Runtime": "ORVANE_RUNTIME_EXPORT", "Testing": "ORVANE_TESTING_EXPORT"}

# The files of the library that may write to the standard streams.
WRITERS = {
    "Orvane/Platform/Fatal.cpp",
    "Orvane/Common/Logger.cpp",
    "Orvane/Services/WedgeFirmware/WedgeFirmwareService.cpp",
}

PRIVATE_MARK = "// Private header: not installed."
SPDX = "SPDX-License-Identifier: Apache-2.0"

INCLUDE = re.compile(r'^\s*#\s*include\s*(<[^>]+>|"[^"]+")')
STANDARD_HEADER = re.compile(r"^[a-z0-9_]+$")
COMMENT_OR_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', re.DOTALL)
STREAM = re.compile(r"\b(?:printf|fprintf|puts|fputs|putchar|cout|cerr|clog)\b")
SLEEP = re.compile(r"\b(?:sleep_for|sleep_until|usleep|nanosleep|sleep)\s*\(")
NAMESPACE_BEGIN = re.compile(r"^namespace(?: ([\w:]+))? {")
NAMESPACE_END = re.compile(r"^}  // namespace\b")
TYPE_DEFINITION = re.compile(r"^(?:struct|class)(?: \[\[.*?\]\]| ORVANE_(?:RUNTIME_|TESTING_)?EXPORT)* (\w+)(?: final)?(?: : .*)?(?: {|$)")
EXPORT_MACRO = re.compile(r"\bORVANE_\w*EXPORT\b")
TEST = re.compile(r"^TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", re.MULTILINE)
NAMED_TEST = re.compile(r"`(\w+Test\.\w+)`")
CODED = re.compile(r"\bhasCoding<([\w:]+)> = true")
FUZZED = re.compile(r"^ {4}\w+<([\w:]+)>,$", re.MULTILINE)
UNFINISHED = re.compile(r"\b(?:TODO|FIXME|XXX|HACK)\b")


# What makes markup or code of a text, in the pages that show what came over the wire. Styles and listeners in markup are refused
# by their content security policy as well.
PAGES = "tools/sandbox/inspector/"
MARKUP = re.compile(r"innerHTML|outerHTML|insertAdjacentHTML|document\.write|createContextualFragment|DOMParser|\beval\(|new Function|"
                    r"setHTMLUnsafe|javascript:|<[^>]*\s(?:style|on\w+)=|<style|<script(?! (?:type=\"module\" )?src=\"/inspector/)|https?://(?!www\.w3\.org/)")


class Source:
    """One C++ file: its text, its layer, and what it includes as (line number, spelling, path)."""

    def __init__(self, root, path):
        self.path = path
        self.text = (root / path).read_text(encoding="utf-8")
        self.lines = self.text.splitlines()
        parts = pathlib.PurePath(path).parts
        self.in_library = parts[0] == "Orvane"
        self.layer = parts[1] if self.in_library and parts[1] in LAYERS else TOP_FILES.get(path)
        self.is_header = path.endswith(".h")
        self.is_private = self.is_header and any(PRIVATE_MARK in line for line in self.lines[:10])
        self.is_public = self.in_library and self.is_header and not self.is_private
        self.includes = [
            (number, match[1], match[1][1:-1])
            for number, line in enumerate(self.lines, 1)
            if (match := INCLUDE.match(line))
        ]

    def code(self):
        """The text without comments and string literals, its lines where they were."""
        return COMMENT_OR_TEXT.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), self.text)

    def types(self):
        """The types defined in named namespaces, as (line number, qualified name)."""
        scopes = []
        for number, line in enumerate(self.lines, 1):
            if match := NAMESPACE_BEGIN.match(line):
                scopes.append(match[1])
            elif NAMESPACE_END.match(line) and scopes:
                scopes.pop()
            elif (match := TYPE_DEFINITION.match(line)) and None not in scopes:
                yield number, "::".join([*scopes, match[1]])


class Checker:
    def __init__(self, root):
        self.root = root
        self.findings = []
        listed = subprocess.run(
            ["git", "ls-files", "--cached", "--others", "--exclude-standard"],
            cwd=root, check=True, capture_output=True, text=True,
        ).stdout.splitlines()
        self.files = sorted({path for path in listed if (root / path).is_file()})
        self.sources = {
            path: Source(root, path) for path in self.files if path.endswith((".h", ".cpp"))
        }

    def report(self, path, line, message):
        self.findings.append(f"{path}:{line}: {message}")

    def run(self):
        for source in self.sources.values():
            self.check_form(source)
            self.check_words(source)
            self.check_test(source)
            for number, spelling, target in source.includes:
                self.check_include(source, number, spelling, target)
        for umbrella, layers in UMBRELLAS.items():
            self.check_umbrella(umbrella, layers)
        self.check_one_definition()
        self.check_promises()
        self.check_licences()
        self.check_pages()
        return self.findings

    def check_form(self, source):
        if source.is_header and "#pragma once" not in source.lines:
            self.report(source.path, 1, "a header needs #pragma once")
        if source.in_library and source.layer is None and source.path not in UMBRELLAS | ADAPTERS:
            self.report(source.path, 1, "stands in none of the layers")
        if source.is_public and not source.path.endswith("/Export.h") and source.path not in MACRO_HEADERS:
            for number, line in enumerate(source.lines, 1):
                if re.match(r"\s*#\s*define\b", line):
                    self.report(source.path, number, "a public header defines no macro")

        if source.in_library and not source.path.endswith("/Export.h"):
            own = EXPORT_MACROS.get(source.layer, "ORVANE_EXPORT")
            for number, line in enumerate(source.code().splitlines(), 1):
                if (match := EXPORT_MACRO.search(line)) and match[0] != own:
                    self.report(source.path, number, f"exports with {match[0]}, which is another library's; here it is {own}")

    def check_words(self, source):
        for number, line in enumerate(source.lines, 1):
            if UNFINISHED.search(line):
                self.report(source.path, number, "unfinished work belongs in the issue tracker")
        for number, line in enumerate(source.code().splitlines(), 1):
            if source.in_library and source.path not in WRITERS and STREAM.search(line):
                self.report(source.path, number, "the library writes to no standard stream: log instead")
            if source.path.startswith("tests/") and SLEEP.search(line):
                self.report(source.path, number, "a test waits for an event or moves its clock; it never sleeps")

    def check_test(self, source):
        """How a test takes GoogleTest; the sandbox's tests have no dates to print."""
        if not source.path.startswith("tests/") or source.path.startswith("tests/sandbox/"):
            return
        targets = {target for _, _, target in source.includes}
        for number, _, target in source.includes:
            if target == "gtest/gtest.h" or (target == "gmock/gmock.h" and "Orvane/GoogleTest.h" not in targets):
                self.report(source.path, number, "include <Orvane/GoogleTest.h>: every file of a program has to print dates in the same way")

    def check_include(self, source, number, spelling, target):
        if not target.startswith("Orvane/"):
            self.check_outside_include(source, number, spelling, target)
            return
        included = self.sources.get(target)
        if included is None:
            self.report(source.path, number, f"{target} does not exist")
            return
        if spelling[0] == '"':
            self.report(source.path, number, "the project's headers are included with angle brackets")
        if source.is_public and included.is_private:
            self.report(source.path, number, f"a public header includes the private {target}")
        if source.path.startswith("examples/") and included.is_private:
            self.report(source.path, number, f"an application cannot include the private {target}")
        if source.path.startswith("tools/sandbox/"):
            self.report(source.path, number, "the sandbox checks the library and takes nothing from it")
        if source.in_library:
            self.check_layer(source, number, target, included)

    def check_layer(self, source, number, target, included):
        if target in UMBRELLAS | ADAPTERS:
            self.report(source.path, number, "umbrella headers are for users, not for the library")
            return
        umbrellas = UMBRELLAS | dict.fromkeys(ADAPTERS, ["Common", "Platform"])
        allowed = umbrellas[source.path] if source.path in umbrellas else reachable(source.layer)
        if included.layer not in allowed:
            self.report(source.path, number, f"{source.layer or 'this umbrella'} may not include {target}")

    def check_outside_include(self, source, number, spelling, target):
        if not source.in_library:
            return
        if spelling[0] == '"':
            self.report(source.path, number, f"include {target} from the repository's root, in angle brackets")
            return
        if STANDARD_HEADER.match(target) or target.startswith(tuple(ADAPTERS.get(source.path, ()))):
            return
        if source.is_public:
            self.report(source.path, number, f"a public header includes {target} from outside")
        for beginning, layers in LIBRARY_HOMES.items():
            if target.startswith(beginning) and source.layer not in layers:
                self.report(source.path, number, f"{target} is used in {' and '.join(layers)} only")

    def check_umbrella(self, umbrella, layers):
        if umbrella not in self.sources:
            return
        seen, pending = set(), [umbrella]
        while pending:
            path = pending.pop()
            if path in self.sources and path not in seen:
                seen.add(path)
                pending += [target for _, _, target in self.sources[path].includes]
        for source in self.sources.values():
            if source.is_public and source.layer in layers and source.path not in seen:
                self.report(umbrella, 1, f"{source.path} is public and not included")

    def check_one_definition(self):
        """Two types of one name in one program break it in ways that no compiler tells."""
        programs = {"tools/cli", "tools/sandbox"}
        programs |= {"/".join(path.split("/")[:2]) for path in self.sources if path.startswith("tests/")}
        programs -= {"tests/support", "tests/consumer"}
        reported = set()
        for program in sorted(programs):
            folders = ("Orvane/", "tests/support/", program + "/")
            if program in ("tests/cli", "tests/sandbox"):
                folders += (program.replace("tests/", "tools/", 1) + "/",)
            first = {}
            for source in self.sources.values():
                if not source.path.startswith(folders):
                    continue
                for number, name in source.types():
                    other = first.setdefault(name, source.path)
                    if other != source.path and (source.path, name) not in reported:
                        reported.add((source.path, name))
                        self.report(source.path, number, f"{name} is defined in {other}, too")

    def check_promises(self):
        """The tests that documents name, and a fuzz target's row for every record."""
        tests = {f"{suite}.{name}" for source in self.sources.values() for suite, name in TEST.findall(source.text)}
        for path in self.files:
            if not path.endswith(".md"):
                continue
            with open(self.root / path, encoding="utf-8") as file:
                for number, line in enumerate(file, 1):
                    for name in NAMED_TEST.findall(line):
                        if name not in tests:
                            self.report(path, number, f"there is no test {name}")
        rows = set(FUZZED.findall(self.sources["fuzz/records.cpp"].text)) if "fuzz/records.cpp" in self.sources else set()
        for source in self.sources.values():
            for record in CODED.findall(source.text) if source.layer == "Models" else []:
                if record not in rows:
                    self.report("fuzz/records.cpp", 1, f"{record} has no row")

    def check_licences(self):
        for path in self.files:
            name = pathlib.PurePath(path).name
            scripted = path in ("dev", ".ci/run") or name.endswith((".h", ".cpp", ".py", ".sh", ".cmake", ".js", ".mjs", ".css", ".html", ".svg"))
            if not (scripted or name == "CMakeLists.txt"):
                continue
            with open(self.root / path, encoding="utf-8") as file:
                head = [file.readline() for _ in range(3)]
            if not any(SPDX in line for line in head):
                self.report(path, 1, f"the licence line is missing ({SPDX})")

    def check_pages(self):
        for path in self.files:
            if not path.startswith(PAGES) or not path.endswith((".js", ".html", ".css")):
                continue
            with open(self.root / path, encoding="utf-8") as file:
                for number, line in enumerate(file, 1):
                    if match := MARKUP.search(line):
                        self.report(path, number, f"a page makes no markup or code of texts, and asks nobody else: {match[0]}")


def reachable(layer):
    """The layer and everything below it."""
    found, pending = set(), [layer]
    while pending:
        current = pending.pop()
        if current is not None and current not in found:
            found.add(current)
            pending += LAYERS[current]
    return found


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
    findings = Checker(root).run()
    print("\n".join(findings), end="\n" if findings else "")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
