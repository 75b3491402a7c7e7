#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Builds the site of the project's pages and of the reference in build/docs/html; opened from a file, it asks nobody for anything.

What Doxygen's versions write differently (its page's frame, what stands beside the text) is taken from the one that is there.
Everything that Doxygen complains about is an error, and so is a public name without documentation.

Usage: build.py, from the repository's root
"""

import pathlib
import re
import shutil
import subprocess
import sys

import check_links
import header
import page

THEME = pathlib.Path("/usr/share/doxygen-awesome-css")
SCRIPTS = ["darkmode-toggle", "fragment-copy-button", "paragraph-link"]
MADE = pathlib.Path("build/docs/made")
PREPARED = MADE / "sources"
HTML = pathlib.Path("build/docs/html")
PRIVATE = "// Private header: not installed."


def doxygen(*arguments, **options):
    return subprocess.run(["doxygen", *arguments], check=True, text=True, **options)


def version():
    return tuple(int(part) for part in re.findall(r"\d+", doxygen("--version", capture_output=True).stdout)[:3])


def prepare():
    """What Doxygen reads: pages and public headers, but for those that only mark what is exported."""
    for path in map(pathlib.Path, page.all_pages()):
        write(path, "\n".join(page.prepared(str(path))))
    for path in sorted(pathlib.Path("Orvane").rglob("*.h")):
        if path.name != "Export.h" and path.read_text("utf-8").split("\n")[1] != PRIVATE:
            write(path, header.Header(path).prepared())


def write(path, text):
    target = PREPARED / path
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_text(text, "utf-8")


def check_pages():
    """Every page is listed, so that none is missing beside the text."""
    there = {str(path) for path in pathlib.Path("docs").rglob("*.md")}
    listed = {path for path in page.all_pages() if path.startswith("docs/")}
    if there != listed:
        sys.exit(f"docs: tools/docs/page.py lists what isn't there, or not what is: {', '.join(sorted(there ^ listed))}")


def entry(kind, title, inside="", **attributes):
    rest = "".join(f' {name}="{value}"' for name, value in attributes.items())
    return f'<tab type="{kind}" visible="yes" title="{title}"{rest}' + (f">{inside}</tab>" if inside else "/>")


def entries_of(paths):
    return "".join(entry("user", page.title_of(path).split(":")[0], url=f"@ref {page.name_of(path)}") for path in paths)


def layout(topics):
    """Doxygen's own layout with other entries beside the text."""
    doxygen("-l", str(MADE / "layout.xml"))
    guides = [f"docs/guides/{name}.md" for name in page.GUIDES]
    entries = [
        entry("mainpage", "Overview"),
        entry("usergroup", "Guides", entries_of(guides), url="[none]"),
        entry("usergroup", "In depth", entries_of(page.PAGES), url="[none]"),
        entry(topics, "Reference by topic", intro="The reference, by what a reader looks for."),
        entry("classes", "All types", entry("classlist", "All types", intro="Every type of the library.") +
              entry("classindex", "By letter") + entry("hierarchy", "By base", intro="Every type, below what it is derived from.")),
        entry("files", "Headers", entry("filelist", "Headers", intro="Every public header; Orvane/Orvane.h includes them, but for "
                                        "those of the Runtime, of Testing and for Asio.")),
        entry("examples", "Examples", intro="Whole programs; ./dev build makes them, and tests run them."),
    ]
    text = (MADE / "layout.xml").read_text("utf-8")
    text = re.sub(r"<navindex>.*</navindex>", lambda _: f"<navindex>{''.join(entries)}</navindex>", text, flags=re.DOTALL)
    (MADE / "layout.xml").write_text(text, "utf-8")


def frame():
    """Doxygen's own head and foot of a page, with the theme's scripts and without what leads elsewhere."""
    doxygen("-w", "html", str(MADE / "header.html"), str(MADE / "footer.html"), str(MADE / "unused.css"))
    head = (MADE / "header.html").read_text("utf-8")
    scripts = "".join(f'<script type="text/javascript" src="$relpath^doxygen-awesome-{name}.js"></script>\n' for name in SCRIPTS)
    scripts += '<script type="text/javascript" src="$relpath^site.js"></script>\n'
    (MADE / "header.html").write_text(head.replace("</head>", scripts + "</head>"), "utf-8")
    foot = (MADE / "footer.html").read_text("utf-8")
    foot = re.sub(r'<li class="footer">.*?</li>', '<li class="footer"><a href="$relpath^LICENSE">Apache 2.0</a></li>', foot, flags=re.DOTALL)
    foot = re.sub(r"<!--BEGIN !GENERATE_TREEVIEW-->.*?<!--END !GENERATE_TREEVIEW-->\n", "", foot, flags=re.DOTALL)
    (MADE / "footer.html").write_text(foot, "utf-8")


def examples():
    """A page for each example; what it is for, its first lines say."""
    paths = sorted(pathlib.Path("examples").glob("*.cpp")) + sorted(pathlib.Path("examples").glob("*.h"))
    (MADE / "examples.dox").write_text("".join(f"/** @example {path.name} */\n" for path in paths), "utf-8")


def settings(found):
    theme = [THEME / "doxygen-awesome.css", THEME / "doxygen-awesome-sidebar-only.css",
             THEME / "doxygen-awesome-sidebar-only-darkmode-toggle.css", pathlib.Path("docs/site/site.css")]
    files = [*(THEME / f"doxygen-awesome-{name}.js" for name in SCRIPTS), pathlib.Path("docs/site/site.js"), pathlib.Path("LICENSE")]
    lines = [
        pathlib.Path("docs/Doxyfile").read_text("utf-8"),
        f"PROJECT_NUMBER = {library_version()}",
        f"HTML_EXTRA_STYLESHEET = {' '.join(map(str, theme))}",
        f"HTML_EXTRA_FILES = {' '.join(map(str, files))}",
    ]
    if found >= (1, 9, 5):
        lines.append("HTML_COLORSTYLE = LIGHT")  # the theme has a switch of its own
    return "\n".join(lines) + "\n"


def mend():
    """What Doxygen gets wrong: beside a header's page, functions of a topic lead to an anchor that only the topic's page has."""
    topics = {anchor: path.name for path in HTML.glob("group__*.html") for anchor in re.findall(r'id="(g?ga[0-9a-f]+)"', path.read_text("utf-8"))}
    for path in HTML.glob("*_8h.js"):
        text = path.read_text("utf-8")
        path.write_text(re.sub(r"\w+\.html#(g?ga[0-9a-f]+)", lambda match: f"{topics[match[1]]}#{match[1]}", text), "utf-8")
    (HTML / "doxygen.svg").unlink(missing_ok=True)  # the foot of a page that is not there


def library_version():
    text = pathlib.Path("Orvane/Version.h").read_text("utf-8")
    return ".".join(re.search(rf"ORVANE_VERSION_{part} (\d+)", text)[1] for part in ("MAJOR", "MINOR", "PATCH"))


def main():
    check_pages()
    if not THEME.is_dir():
        sys.exit(f"docs: {THEME} is missing, the theme (doxygen-awesome-css in Debian)")
    shutil.rmtree("build/docs", ignore_errors=True)
    MADE.mkdir(parents=True)
    found = version()
    layout("topics" if found >= (1, 9, 8) else "modules")
    frame()
    examples()
    prepare()
    ran = doxygen("-", input=settings(found), stderr=subprocess.PIPE)
    said = ran.stderr.replace(f"{PREPARED.resolve()}/", "").replace(f"{PREPARED}/", "")
    complaints = [line for line in said.split("\n") if line.strip()]
    if complaints:
        print("\n".join(complaints), file=sys.stderr)
        sys.exit(f"docs: {sum('warning:' in line or 'error:' in line for line in complaints)} complaints")
    mend()
    findings = check_links.findings_of_site(HTML)
    if findings:
        print("\n".join(findings), file=sys.stderr)
        sys.exit(f"docs: {len(findings)} links lead nowhere")
    print(f"docs: see {HTML}/index.html")


if __name__ == "__main__":
    main()
