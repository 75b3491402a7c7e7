#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Looks for links that lead nowhere: of the pages in the repository, or of the site that was built of them.

Usage: check_links.py            the pages: files and headings that links name, and JSON that is none
       check_links.py <folder>   the site: files and anchors, in what stands beside the text and in the search, too; and whatever a
                                 page would ask another machine for
Prints one line per finding and exits with 1 when there are any.
"""

import json
import pathlib
import posixpath
import re
import subprocess
import sys
import urllib.parse

import page

TARGET = re.compile(r"\[(?:[^\[\]`]|`[^`]*`|!\[[^\]]*\]\([^)]*\))*\]\(<?([^)\s>]+)>?[^)]*\)")
DEFINED = re.compile(r"^\[[^\]]+\]: (\S+)")
SCHEME = re.compile(r"[a-zA-Z][a-zA-Z0-9+.-]*:")

TAG = re.compile(r"<(\w+)\b([^>]*)>")
ATTRIBUTE = re.compile(r"([\w:-]+)\s*=\s*(?:\"([^\"]*)\"|'([^']*)')")
ASKING = {("link", "href"), ("script", "src"), ("img", "src"), ("iframe", "src"), ("object", "data"), ("source", "src"), ("image", "href")}
BESIDE = re.compile(r"""["']((?:\.\./)?[\w./-]+\.html(?:#[^"']*)?)["']""")
SCRIPTS = {"jquery.js", "search/search.js"}  # make links of what the others hold
STYLED = re.compile(r"url\(\s*['\"]?([^'\")]+)|@import\s+['\"]([^'\"]+)")


def repository_findings():
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "--", "*.md"], check=True, capture_output=True,
                            text=True).stdout.split()
    pages = [path for path in listed if pathlib.Path(path).is_file()]
    anchors = {path: page.anchors_in(path) for path in pages}
    for path in pages:
        yield from links_of(path, anchors)


def links_of(path, anchors):
    inside, began, block = None, 0, []
    for number, line in enumerate(pathlib.Path(path).read_text("utf-8").split("\n"), 1):
        if fence := page.FENCE.match(line):
            if inside == "json" and (wrong := not_json("\n".join(block))):
                yield f"{path}:{began}: {wrong}"
            inside, began, block = (fence[3] or "text" if inside is None else None), number, []
            continue
        if inside is not None:
            block.append(line)
            continue
        bare = re.sub(r"(?<!\[)`[^`]*`(?!\])", "", line)
        for target in TARGET.findall(bare) + DEFINED.findall(bare):
            if not SCHEME.match(target) and (wrong := wrong_target(path, target, anchors)):
                yield f"{path}:{number}: {wrong}"


def not_json(text):
    try:
        json.loads(text.replace("…", ""))
    except ValueError as error:
        return f"no JSON: {error}"
    return None


def wrong_target(path, target, anchors):
    file, _, anchor = target.partition("#")
    file = posixpath.normpath(posixpath.join(posixpath.dirname(path), urllib.parse.unquote(file))) if file else path
    if not pathlib.Path(file).exists():
        return f"{target} leads to no file"
    if anchor and (file not in anchors or anchor not in anchors[file]):
        return f"{target} leads to no heading"
    return None


class Site:
    def __init__(self, folder):
        self.folder = folder
        self.files = {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file()}
        self.texts = {path: (folder / path).read_text("utf-8") for path in sorted(self.files) if path.endswith((".html", ".svg"))}
        self.anchors = {path: {match for match in re.findall(r'\b(?:id|name)="([^"]+)"', text)} for path, text in self.texts.items()}

    def findings(self):
        for path, text in self.texts.items():
            for tag in TAG.finditer(re.sub(r"<!--.*?-->", "", text, flags=re.DOTALL)):
                for name, double, single in ATTRIBUTE.findall(tag[2]):
                    if name.split(":")[-1] in ("href", "src", "data"):
                        yield from self.look_at(path, double or single, (tag[1], name.split(":")[-1]) in ASKING)
        for path in sorted(self.files):
            if path.endswith(".css"):
                for first, second in STYLED.findall((self.folder / path).read_text("utf-8")):
                    yield from self.look_at(path, first or second, True)
            elif path.endswith(".js"):
                # What navtreeindex*.js holds are no links, but where a page stands in the tree.
                if path not in SCRIPTS and not path.startswith("navtreeindex"):
                    for target in BESIDE.findall((self.folder / path).read_text("utf-8")):
                        yield from self.look_at(path, target, False)

    def look_at(self, path, target, is_asked_for):
        target = target.strip().replace("&amp;", "&")
        if not target or target.startswith(("data:", "javascript:", "#%23")):
            return
        if SCHEME.match(target) or target.startswith("//"):
            if is_asked_for:
                yield f"{path}: asks another machine for {target}"
            return
        file, _, anchor = target.partition("#")
        file = urllib.parse.unquote(file.partition("?")[0])
        file = posixpath.normpath(posixpath.join(posixpath.dirname(path), file)) if file else path
        if file not in self.files:
            yield f"{path}: {target} leads to no file"
        elif anchor and file in self.anchors and urllib.parse.unquote(anchor) not in self.anchors[file]:
            yield f"{path}: {target} leads to no anchor"


def findings_of_site(folder):
    return sorted(set(Site(pathlib.Path(folder)).findings()))


def main():
    if len(sys.argv) > 2:
        sys.exit("usage: check_links.py [folder]")
    findings = findings_of_site(sys.argv[1]) if len(sys.argv) == 2 else list(repository_findings())
    print("\n".join(findings), end="\n" if findings else "")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
