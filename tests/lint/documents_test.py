#!/usr/bin/env python3
"""The checker of the documents finds each kind of fault in a small tree that has them all."""

import pathlib
import subprocess
import sys
import tempfile

DECISIONS = """# Decisions

## Contents

- [D-words-1](#d-words-1) Names
- [D-words-3](#d-words-3) Order
- [D-words-2](#d-words-2) Gone astray
- [D-words-9](#d-words-9) Deleted

## Words

### D-words-1

**Names.** They are short.

### D-words-2

**Gone
astray.** It is found.

### D-words-3

**Order.** It counts.

### D-words-1

**Names.** They are long.

### D-other-1

No title.

### Old style

**Old style.** A heading without an id.

## Good

### D-good-1

**Lacking.** It is in no list.

## Stray

A section of its own.
"""

PAGE = """# A page

[good](page.md#a-page) [bad](page.md#a-leaf) [none](none.md) [far](https://example.org/)

See D-words-2 and D-words-4. Run `ctest --preset release -R good`, `ctest -R '^goo$'` and the test `bad`.

    [code](code.md)

[after code](gone.md)

| fault | test |
|---|---|
| one | `good`, `worse` |

| test | fault |
|---|---|
| `worst` | `none` |
"""

BUILD = "add_test(good true)\n"

EXPECTED = """docs/decisions.md: D-other-1 has no title
docs/decisions.md: "Old style" is not an id
docs/decisions.md: D-words-1 is given more than once
docs/decisions.md: "Words" has ids of 2 forms
docs/decisions.md: "Stray" is a section without an entry
docs/decisions.md: the contents lack D-other-1 
docs/decisions.md: the contents lack Old style Old style
docs/decisions.md: the contents lack D-good-1 Lacking
docs/decisions.md: there is no entry D-words-9 Deleted
docs/decisions.md: the contents have another order than the entries
docs/decisions.md: there is no decision D-words-9
docs/page.md: there is no decision D-words-4
source.cpp: there is no decision D-words-5
docs/decisions.md: the page has no heading #d-words-9
docs/page.md: page.md has no heading #a-leaf
docs/page.md: there is no none.md
docs/page.md: there is no gone.md
docs/page.md: no test fits ^goo$
docs/page.md: there is no test bad
docs/page.md: there is no test worse
docs/page.md: there is no test worst
"""


def main():
    checker = pathlib.Path(__file__).parent / "documents.py"
    with tempfile.TemporaryDirectory() as name:
        root, build = pathlib.Path(name) / "tree", pathlib.Path(name) / "build"
        (root / "docs").mkdir(parents=True)
        build.mkdir()
        (root / "docs/decisions.md").write_text(DECISIONS)
        (root / "docs/page.md").write_text(PAGE)
        (root / "source.cpp").write_text("// As D-words-5 says.\n")
        (build / "CTestTestfile.cmake").write_text(BUILD)
        run = subprocess.run([checker, root, build], capture_output=True, text=True, check=False)
    if (run.returncode, run.stdout) != (1, EXPECTED):
        sys.exit(f"status {run.returncode}, expected 1; found:\n{run.stdout}{run.stderr}\n"
                 f"expected:\n{EXPECTED}")


if __name__ == "__main__":
    main()
