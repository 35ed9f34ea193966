#!/usr/bin/env python3
"""The structure checker finds each kind of fault in a small tree that has them all."""

import pathlib
import subprocess
import sys
import tempfile

LISTS = """
# 1 Shell
set(KPX_SHELL log.cpp gone.cpp)
# 2 Texts
set(KPX_TEXTS words.cpp)
add_library(kpx_core STATIC ${KPX_SHELL} ${KPX_TEXTS})
# 12 Windows
set(KPX_WINDOWS Window.cpp)
add_library(kpx_gui STATIC ${KPX_WINDOWS})
# 1 Shell: the program
add_executable(program main.cpp)
"""

SOURCES = {
    "log.cpp": '#include "log.h"\n#include <gtk/gtk.h>\n'
               "namespace {\nstruct Own {};\n}  // namespace\n",
    "log.h": '#include "Window.h"\n'
             "struct Line {\n  int size;\n};\nstruct Later;\nenum class Kind { A };\n"
             "int fAddTail_Function(int value);\n[[nodiscard]] int fAddHead_Function(int value);\n"
             "int fLog_Class_ID_Function();\n",
    "words.cpp": "#include <string>\nvoid EndChild() { _exit(0); }\n",
    "Window.cpp": '#include <gtk/gtk.h>\n#include "log.h"\nconst char kStyle[] = "label { color: #A00000; }";\n',
    "main.cpp": '#include "Window.h"\nint main() { std::exit(1); }\n',
    "endprogram.cpp": "void EndProgram(int status) { std::exit(status); }\n",
    "stray.cpp": "",
}

FILTER = {
    "log.h": "enum class [[nodiscard]] Kind {\n  B\n};\nstruct Later {};\n"
             "class Source {\n  bool Fill();\n  int Size() const;\n  [[nodiscard]] bool Rest();\n};\n"
             "std::optional<std::map<int, int>> ReadMap(\n    int size);\n"
             "namespace job {\nstruct Line {};\n}  // namespace job\n",
    "Log.H": "",
    "line.cpp": "struct Own {};\nstruct Line FirstLine();\nclass Line : public Base {\n};\n",
    "main.cpp": "\nint main() {}\n",
    "good.h": "// Good.\n\nnamespace kpx::filter {\n\nstruct Line {};\n\n}  // namespace kpx::filter\n",
}

EXPECTED = """docs/ARCHITECTURE.md: subsystem 1 does not show gone
docs/ARCHITECTURE.md: subsystem 1 does not show log
src/CMakeLists.txt: subsystem 2 does not list letters
src/CMakeLists.txt: there is no src/gone.cpp
src/CMakeLists.txt: endprogram.cpp is in no list
src/CMakeLists.txt: stray.cpp is in no list
src/log.cpp: the core includes the toolkit's gtk/gtk.h
src/log.h: the core includes Window.h, a module with windows
src/Window.cpp: names a colour; take the theme's
src/main.cpp: calls exit; EndProgram waits for what is at work
src/log.cpp: includes Window.h, whose list is a later one
src/Window.cpp: includes itself through other modules
src/log.cpp: includes itself through other modules
src/log.h, filter/log.h: more than one header log.h
src/log.h, filter/log.h: more than one type Kind
src/log.h, filter/line.cpp: more than one type Line
filter/Log.H, filter/log.h: the names differ in capitals only
filter/line.cpp: its names are not in kpx::filter
filter/log.h: its names are not in kpx::filter
src/log.h: fAddTail_Function can tell a failure and lacks [[nodiscard]]
filter/log.h: Fill can tell a failure and lacks [[nodiscard]]
filter/log.h: ReadMap can tell a failure and lacks [[nodiscard]]
"""


def main():
    checker = pathlib.Path(__file__).parent / "structure.py"
    modules = {1: "main", 2: "words`, `letters", 12: "Window"}
    with tempfile.TemporaryDirectory() as name:
        root = pathlib.Path(name)
        (root / "src").mkdir()
        (root / "filter").mkdir()
        (root / "docs").mkdir()
        (root / "src/CMakeLists.txt").write_text(LISTS)
        (root / "docs/ARCHITECTURE.md").write_text("\n".join(
            f"### {n} Part\n\n| `{modules[n]}` | text |\n" if n in modules else f"### {n} Part\n"
            for n in range(1, 13)))
        for directory, files in (("src", SOURCES), ("filter", FILTER)):
            for file, text in files.items():
                (root / directory / file).write_text(text)
        run = subprocess.run([checker, root], capture_output=True, text=True, check=False)
    if (run.returncode, run.stdout) != (1, EXPECTED):
        sys.exit(f"status {run.returncode}, expected 1; found:\n{run.stdout}{run.stderr}\n"
                 f"expected:\n{EXPECTED}")


if __name__ == "__main__":
    main()
