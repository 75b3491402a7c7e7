# SPDX-License-Identifier: Apache-2.0
"""Prepares a page in Markdown for Doxygen, which reads what this prints; lines stay where they are.

Pages are written for who reads them in the repository: links lead to files, headings have the anchors that GitHub gives them.
Here pages and headings get names, and links lead to those.
"""

import posixpath
import re
import sys

# In the order in which they stand beside the text.
GUIDES = [
    "first-program", "fetch-trips", "errors", "cancelling", "threads", "coroutines", "loops", "testing", "signing-in", "privacy",
    "own-foundation", "phones",
]
PAGES = [
    "docs/calling.md", "docs/runtime.md", "docs/operations.md", "docs/cli.md", "docs/sandbox.md", "docs/performance.md",
    "docs/reliability.md", "docs/compatibility.md", "packaging/README.md", "docs/architecture.md", "CONTRIBUTING.md", "SECURITY.md",
    "CHANGELOG.md",
]
MAIN = "README.md"

FENCE = re.compile(r"^(\s*)(```+)(\w*)")
HEADING = re.compile(r"^(#{1,6}) (.*)$")
LINK = re.compile(r"(?<!!)\[((?:[^\[\]`]|`[^`]*`)*)\]\(([^)\s]+)\)")
CODE = re.compile(r"`[^`]*`")
EDGE = re.compile(r"^\s*(\w+) (-->|-\.->) (\w+)$")


def all_pages():
    return [MAIN, *(f"docs/guides/{name}.md" for name in GUIDES), *PAGES]


def name_of(path):
    """What Doxygen calls a page."""
    if path == MAIN:
        return "index"
    stem = posixpath.basename(path)[:-3].lower().replace("-", "_")
    return f"guide_{stem}" if path.startswith("docs/guides/") else f"page_{stem}"


def title_of(path):
    with open(path, encoding="utf-8") as file:
        return file.readline().removeprefix("# ").strip()


def plain(heading):
    """A heading without its markup."""
    return re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "").replace("*", "")


class Anchors:
    """The anchors that GitHub gives the headings of a page."""

    def __init__(self):
        self.seen = {}

    def of(self, heading):
        slug = re.sub(r"[^\w\- ]", "", plain(heading).strip().lower()).replace(" ", "-")
        number = self.seen.get(slug, 0)
        self.seen[slug] = number + 1
        return f"{slug}-{number}" if number else slug


def anchors_in(path):
    """The anchors of a page, as (line, anchor)."""
    anchors, inside = Anchors(), False
    found = {}
    with open(path, encoding="utf-8") as file:
        for number, line in enumerate(file, 1):
            if FENCE.match(line):
                inside = not inside
            elif not inside and (heading := HEADING.match(line)):
                found[anchors.of(heading[2])] = number
    return found


def reference(page, anchor):
    return f"{name_of(page)}_{re.sub('[^a-z0-9]', '_', anchor)}" if anchor else name_of(page)


def target_of(page, target):
    """Where a link of a page leads on the site."""
    if re.match(r"[a-z]+:", target):
        return target
    path, _, anchor = target.partition("#")
    path = posixpath.normpath(posixpath.join(posixpath.dirname(page), path)) if path else page
    if path in all_pages():
        return f"@ref {reference(path, anchor)}"
    if path == "examples":
        return "examples.html"
    if path.startswith("examples/"):
        return posixpath.basename(path).replace(".", "_8") + "-example.html"
    return posixpath.basename(path)


def link(page, text, target):
    """A link as it stands on the site, where a page goes by its title and not by its file."""
    leads_to = target_of(page, target)
    if text.endswith(".md") and leads_to.startswith("@ref "):
        text = title_of(posixpath.normpath(posixpath.join(posixpath.dirname(page), target.partition("#")[0])))
    return f"[{text}]({leads_to})"


def prepared_text(page, line):
    """A line outside code: links, and what Doxygen would take for a command or a reference."""
    line = LINK.sub(lambda match: link(page, match[1], match[2]), line)
    parts, last = [], 0
    for code in CODE.finditer(line):
        parts += [escaped(line[last:code.start()]), code[0]]
        last = code.end()
    return "".join([*parts, escaped(line[last:])])


def escaped(text):
    text = re.sub(r"@(?!ref )", r"\\@", text)
    return re.sub(r"(?<![\w(/])#(?=\w)", r"\\#", text)


def prepared(page):
    with open(page, encoding="utf-8") as file:
        lines = file.read().split("\n")
    anchors = Anchors()
    inside, is_drawing, is_titled = False, False, False
    for line in lines:
        if fence := FENCE.match(line):
            inside = not inside
            if fence[3] == "mermaid":
                is_drawing = True
                yield '@dot "" '
            elif is_drawing:
                is_drawing = False
                yield "}\n@enddot"
            else:
                language = {"cpp": "{.cpp}", "json": "{.js}", "cmake": "{.unparsed}", "sh": "{.unparsed}"}.get(fence[3], "")
                yield f"{fence[1]}{fence[2]}{language}"
            continue
        if is_drawing:
            yield drawn(line)
        elif inside:
            yield line
        elif heading := HEADING.match(line):
            anchor = anchors.of(heading[2])
            name = reference(page, "" if not is_titled else anchor)
            is_titled = True
            yield f"{heading[1]} {escaped(heading[2])} {{#{'mainpage' if name == 'index' else name}}}"
        else:
            yield prepared_text(page, line)


def drawn(line):
    """A line of a Mermaid drawing for Graphviz."""
    if line.startswith("graph"):
        return ('digraph layers { bgcolor="transparent"; node [shape=box, style="rounded", fontname="Helvetica", color="#7f8ea3", '
                'fontcolor="#7f8ea3"]; edge [color="#7f8ea3"];')
    edge = EDGE.match(line)
    if edge is None:
        sys.exit(f"a drawing says what tools/docs/page.py can't read: {line}")
    dashed = " [style=dashed]" if edge[2] == "-.->" else ""
    return f"{edge[1]} -> {edge[3]}{dashed};"
