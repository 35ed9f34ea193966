#!/usr/bin/env python3
"""Holds the documents of the tree against the tree.

docs/decisions.md: each entry has an id of its section's form that no other has, and the contents list
every entry, in order and with its title. Every id that a file of the tree cites is there. Every file
that a document links to is there, and so is every heading. Every test that a document names, behind
"ctest ... -R", behind the words "the test" or in a table's column "test", is one of the build. Prints
one line a fault; ends with 1 when there are any.

Usage: documents.py ROOT BUILD
"""

import pathlib
import re
import subprocess
import sys

DECISIONS = "docs/decisions.md"
ID = re.compile(r"\bD-[a-z]+-\d+\b")
ENTRY = re.compile(r"^### ([^\n]*)\n\n(?:\*\*(.*?)\.\*\*)?", re.M | re.S)
LISTED = re.compile(r"^- \[(.*?)\]\(#(.*?)\) (.*)$", re.M)
LINK = re.compile(r"\]\(([^)\s]+)\)")
NAMED_TEST = re.compile(r"ctest [^`\n]*-R '?([^\s'`]+)|[Tt]he test `(\w+)`")
CODE = re.compile(r"^```.*?^```$|^    [^\n]*$", re.M | re.S)


def tracked(root):
    """The text files of the tree, as git knows them."""
    listed = subprocess.run(["git", "-C", root, "ls-files", "-z"], capture_output=True, text=True,
                            check=False)
    names = listed.stdout.split("\0")[:-1] if listed.returncode == 0 else [
        str(path.relative_to(root)) for path in root.rglob("*")]
    for name in sorted(names):
        path = root / name
        if path.is_file() and not path.is_symlink() and path.suffix not in (".png", ".xpm"):
            yield name, path.read_text(encoding="utf-8", errors="replace")


def decision_faults(text):
    entries = [(name, " ".join((title or "").split())) for name, title in ENTRY.findall(text)]
    names = [name for name, _ in entries]
    for name, title in entries:
        if not ID.fullmatch(name):
            yield f"{DECISIONS}: \"{name}\" is not an id"
        if not title:
            yield f"{DECISIONS}: {name} has no title"
    for name in sorted({name for name in names if names.count(name) > 1}):
        yield f"{DECISIONS}: {name} is given more than once"
    for section in re.split(r"^## ", text, flags=re.M)[1:]:
        found = re.findall(r"^### (D-[a-z]+)-\d+$", section, re.M)
        heading = section.splitlines()[0]
        if len(set(found)) > 1:
            yield f"{DECISIONS}: \"{heading}\" has ids of {len(set(found))} forms"
        if not found and heading != "Contents":
            yield f"{DECISIONS}: \"{heading}\" is a section without an entry"
    listed = [(name, title) for name, anchor, title in LISTED.findall(text) if anchor == name.lower()]
    for name, title in entries:
        if (name, title) not in listed:
            yield f"{DECISIONS}: the contents lack {name} {title}"
    for name, title in listed:
        if (name, title) not in entries:
            yield f"{DECISIONS}: there is no entry {name} {title}"
    if [entry for entry in listed if entry in entries] != [e for e in entries if e in listed]:
        yield f"{DECISIONS}: the contents have another order than the entries"


def citation_faults(files, text):
    known = set(re.findall(r"^### (.*)$", text, re.M))
    for name, content in files.items():
        for cited in sorted(set(ID.findall(content)) - known):
            if not name.startswith("tests/lint/"):
                yield f"{name}: there is no decision {cited}"


def anchors(text):
    headings = re.findall(r"^#+ (.*)$", CODE.sub("", text), re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def link_faults(root, files):
    for name in (name for name in files if name.endswith(".md")):
        for target in LINK.findall(CODE.sub("", files[name])):
            if "://" in target:
                continue
            place, _, anchor = target.partition("#")
            path = root / pathlib.Path(name).parent / place if place else root / name
            if not path.exists():
                yield f"{name}: there is no {place}"
            elif anchor and anchor not in anchors(path.read_text(encoding="utf-8")):
                yield f"{name}: {place or 'the page'} has no heading #{anchor}"


def column_of_tests(text):
    """The cells of the columns headed "test"."""
    column = None
    for line in text.splitlines():
        cells = [cell.strip() for cell in line.split("|")[1:-1]] if line.startswith("|") else []
        if not cells:
            column = None
        elif column is None:
            column = cells.index("test") if "test" in cells else -1
        elif column >= 0 and len(cells) > column:
            yield from re.findall(r"`([^`]+)`", cells[column])


def tests_of(build):
    shown = subprocess.run(["ctest", "--test-dir", build, "-N"], capture_output=True, text=True,
                           check=True)
    return re.findall(r"^ +Test +#\d+: (.*)$", shown.stdout, re.M)


def test_faults(files, tests):
    for name in (name for name in files if name.endswith(".md")):
        found = NAMED_TEST.findall(files[name])
        for pattern in (pattern for pattern, _ in found if pattern and "NAME" not in pattern.upper()):
            if not any(re.search(pattern, test) for test in tests):
                yield f"{name}: no test fits {pattern}"
        for cited in [*(named for _, named in found if named), *column_of_tests(files[name])]:
            if cited not in tests:
                yield f"{name}: there is no test {cited}"


def main():
    root, build = pathlib.Path(sys.argv[1]), sys.argv[2]
    files = dict(tracked(root))
    decisions, tests = files.get(DECISIONS, ""), tests_of(build)
    if "\n### " not in decisions or not tests:
        sys.exit("documents.py: the decisions or the tests cannot be read any more")
    faults = [*decision_faults(decisions), *citation_faults(files, decisions),
              *link_faults(root, files), *test_faults(files, tests)]
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
