#!/usr/bin/env python3
"""Holds the map of the tree against the tree.

Compares the source lists of src/CMakeLists.txt with the tables of docs/ARCHITECTURE.md and with the
files of src/, and the #include lines with the layers: a module of the core includes neither the
toolkit nor a module that has windows, no module includes one of a later list, and none includes
itself through others, but for a window and its handlers (X, XFct). Looks for headers of one name in two directories, and for
types of one name that two files define: programs and tests link several of the libraries. Looks for
files whose names differ in capitals only, and for sources of the programs beside KPXadmin that are
not in their namespace. Looks for functions of the headers whose result can tell a failure and that
lack [[nodiscard]]: the compilers then find the calls that drop it. Looks for colours that a window
names itself, which another theme than ours may make unreadable, and for what ends the program without EndProgram.
Prints one line a fault; ends with 1 when there are any.

Usage: structure.py ROOT
"""

import pathlib
import re
import sys

COLOUR = re.compile(r'"[^"\n]*(#[0-9A-Fa-f]{3}\b|#[0-9A-Fa-f]{6}\b|\brgba?\()|GdkRGBA|gtk_widget_override_')
TOOLKIT = re.compile(r"<(gtk|gdk|gdk-pixbuf|glib|gio|pango|cairo|atk|X11)[/.-]|<(glib-unix|gmodule)\.h>")
EXIT = re.compile(r"\bexit\(")
INCLUDE = re.compile(r'^\s*#\s*include\s+(<[^>]+>|"[^"]+")')
PROGRAMS = ("src", "filter", "ctl", "transport", "spooler", "pixmaps", "tests")
# Holds what it includes, and is included by most.
STATE = ("globals",)
# Includes of a module of a later list, and why.
UPWARD = {
    ("debug", "textencoding"): "the log is written like all of standard error",
    ("optionstate", "cprintqueue"): "it lends what the queue's record holds",
    ("pixmapnames", "cprintqueue"): "a picture is that of the queue's printer model",
    ("PropertiesWindowFct", "PropTabTextOptions"): "OK reads the page of the print tool's fonts",
}
# What these define is in namespace kpx::<directory>; a file with main() uses it.
NAMESPACED = ("filter", "ctl", "transport", "spooler", "pixmaps")
SCOPE = re.compile(r"^(namespace(?: [\w:]+)?) \{|^\}  // namespace")
TYPE = re.compile(r"^(?:class|struct|union|enum(?: class| struct)?)(?: \[\[\w+\]\])? (\w+)\b(?!.*;$|.*\()|"
                  r"^(?:class|struct|union|enum(?: class| struct)?)(?: \[\[\w+\]\])? (\w+)\b[^;(]*\{")

# Results that can tell a failure. An int of a member function is a value in this tree.
TELLING = re.compile(r"^( *)(?:(?:static|inline|constexpr|virtual) )*"
                     r"(bool|int|std::optional<.*>|std::variant<.*>|Owned<\w+>) (\w+)\((?!\*)")
# Functions of such types whose result may be dropped, and why.
DROPPABLE = {
    r"f\w+_Class_ID_Function": "a constant",
    r"fDelete_\w+_Function|DeleteAs": "nothing is left that could be done",
    r"BuildPafFromPpd|BuildRange|fFillAllFromDef_Function|G_FillInstallableCLists|"
    r"G_SetStringWithConstrain|RemoveInexistentSystemVQueues": "always 1",
    r"ListAppend|AddOptionRows": "the number of a row",
    r"operator": "an expression",
}


def subsystem_lists(text):
    """{subsystem number: modules} and {list variable: modules} of src/CMakeLists.txt."""
    numbers, variables = {}, {}
    current = []
    for comment, variable, files, program in re.findall(
            r"^(#.*)$|^set\((KPX_\w+)\s*([^)]*)\)|^add_executable\(\w+ ([^)]*)\)", text, re.M):
        if comment:
            current = [int(n) for n in re.findall(r"(?:^# |, )(\d+) [A-Z]", comment)]
            continue
        modules = [pathlib.Path(f).stem for f in (files or program).split() if f.endswith(".cpp")]
        if variable:
            variables[variable] = modules
        for number in current[:1]:
            numbers.setdefault(number, set()).update(modules)
    return numbers, variables


def documented_modules(text):
    """{subsystem number: modules} of the tables of docs/ARCHITECTURE.md."""
    numbers = {}
    for section in re.split(r"^### ", text, flags=re.M)[1:]:
        heading = re.match(r"(\d+) ", section)
        if heading is None:
            continue
        names = set()
        for cell in re.findall(r"^\| (`[^|]*) \|", section, re.M):
            names.update(re.findall(r"`(\w+)`", cell))
        numbers[int(heading.group(1))] = names
    return numbers


def library_modules(text, variables, library):
    """The modules that a library of src/CMakeLists.txt is made of."""
    listed = re.search(r"add_library\(%s STATIC ([^)]*)\)" % library, text).group(1)
    return {m for name in re.findall(r"\$\{(KPX_\w+)\}", listed) for m in variables[name]}


def includes(path):
    found = (INCLUDE.match(line) for line in path.read_text(encoding="utf-8").splitlines())
    return [match.group(1) for match in found if match]


def map_faults(numbers, documented):
    for number in sorted(numbers.keys() | documented.keys()):
        listed, shown = numbers.get(number, set()), documented.get(number, set())
        for module in sorted(listed - shown):
            yield f"docs/ARCHITECTURE.md: subsystem {number} does not show {module}"
        for module in sorted(shown - listed):
            yield f"src/CMakeLists.txt: subsystem {number} does not list {module}"


def file_faults(src, numbers):
    listed = [module for modules in numbers.values() for module in modules]
    for module in sorted(set(listed)):
        if listed.count(module) > 1:
            yield f"src/CMakeLists.txt: {module} is in {listed.count(module)} subsystems"
        if not (src / f"{module}.cpp").exists():
            yield f"src/CMakeLists.txt: there is no src/{module}.cpp"
    for source in sorted(src.glob("*.cpp")):
        if source.stem not in listed:
            yield f"src/CMakeLists.txt: {source.name} is in no list"


def layer_faults(src, core, gui):
    for module in sorted(core):
        for path in (src / f"{module}.cpp", src / f"{module}.h"):
            for included in includes(path) if path.exists() else []:
                name = included.strip('<>"')
                if TOOLKIT.match(included):
                    yield f"src/{path.name}: the core includes the toolkit's {name}"
                if pathlib.Path(name).stem in gui and included.startswith('"'):
                    yield f"src/{path.name}: the core includes {name}, a module with windows"


def included_modules(src, modules):
    """{module: the other modules that its two files include}."""
    found = {}
    for module in modules:
        paths = [p for p in (src / f"{module}.cpp", src / f"{module}.h") if p.exists()]
        names = {pathlib.Path(i.strip('"')).stem for p in paths for i in includes(p) if i[0] == '"'}
        found[module] = (names & set(modules)) - {module}
    return found


def colour_faults(src, gui):
    for module in sorted(gui):
        path = src / f"{module}.cpp"
        if path.exists() and COLOUR.search(path.read_text()):
            yield f"src/{path.name}: names a colour; take the theme's"


def exit_faults(src):
    for path in sorted(src.glob("*.cpp")):
        if path.stem != "endprogram" and EXIT.search(path.read_text(encoding="utf-8")):
            yield f"src/{path.name}: calls exit; EndProgram waits for what is at work"


def order_faults(variables, included):
    """Includes of modules of a later list. The lists stand in layer order."""
    place = {m: number for number, ms in enumerate(variables.values()) for m in ms}
    for module, others in included.items():
        for other in sorted(others):
            if place[other] > place[module] and (module, other) not in UPWARD and module not in STATE:
                yield f"src/{module}.cpp: includes {other}.h, whose list is a later one"


def circle_faults(included):
    """Modules that include each other, directly or through others."""
    def window(module):
        return module.removesuffix("Fct")

    graph = {}
    for module, others in included.items():
        graph.setdefault(window(module), set()).update(window(o) for o in others if o not in STATE)
    for start in sorted(graph):
        reached, rest = set(), [o for o in graph[start] if o != start]
        while rest:
            module = rest.pop()
            if module not in reached:
                reached.add(module)
                rest.extend(graph.get(module, ()))
        if start in reached:
            yield f"src/{start}.cpp: includes itself through other modules"


def defined_types(text):
    """The types that a file defines outside of functions and of namespaces without a name."""
    scopes = []
    for line in text.splitlines():
        scope, found = SCOPE.match(line), TYPE.match(line)
        if scope and scope.group(1):
            scopes.append(scope.group(1)[len("namespace"):].strip())
        elif scope:
            scopes = scopes[:-1]
        elif found and "" not in scopes:
            yield "::".join([*scopes, found.group(1) or found.group(2)])


def name_faults(root):
    headers, types = {}, {}
    sources = (path for name in PROGRAMS for path in sorted((root / name).rglob("*"))
               if path.suffix in (".h", ".cpp"))
    for path in sources:
        place = str(path.relative_to(root))
        if path.suffix == ".h":
            headers.setdefault(path.name, []).append(place)
        for name in set(defined_types(path.read_text(encoding="utf-8"))):
            types.setdefault(name, []).append(place)
    for kind, names in (("header", headers), ("type", types)):
        for name, places in sorted(names.items()):
            if len(places) > 1:
                yield f"{', '.join(places)}: more than one {kind} {name}"


def case_faults(root):
    """Files that are one file where the file system does not tell capitals from small letters."""
    found = {}
    for path in (p for name in PROGRAMS for p in sorted((root / name).rglob("*")) if p.is_file()):
        place = str(path.relative_to(root))
        found.setdefault(place.lower(), []).append(place)
    for places in found.values():
        if len(places) > 1:
            yield f"{', '.join(places)}: the names differ in capitals only"


def namespace_faults(root):
    for name in NAMESPACED:
        for path in (p for kind in ("*.cpp", "*.h") for p in sorted((root / name).glob(kind))):
            text = path.read_text(encoding="utf-8")
            if f"\nnamespace kpx::{name} {{\n" not in text and "\nint main(" not in text:
                yield f"{path.relative_to(root)}: its names are not in kpx::{name}"


def dropped_failure_faults(root):
    droppable = re.compile("|".join(DROPPABLE))
    for path in (path for name in PROGRAMS[:5] for path in sorted((root / name).glob("*.h"))):
        for line in path.read_text(encoding="utf-8").splitlines():
            indent, result, name = match.groups() if (match := TELLING.match(line)) else ("", "", "")
            if name and not droppable.fullmatch(name) and not (indent and result == "int"):
                yield f"{path.relative_to(root)}: {name} can tell a failure and lacks [[nodiscard]]"


def main():
    root = pathlib.Path(sys.argv[1])
    src = root / "src"
    lists = (src / "CMakeLists.txt").read_text(encoding="utf-8")
    numbers, variables = subsystem_lists(lists)
    documented = documented_modules((root / "docs/ARCHITECTURE.md").read_text(encoding="utf-8"))
    core = library_modules(lists, variables, "kpx_core")
    gui = library_modules(lists, variables, "kpx_gui")
    if not core or not gui or len(documented) < 12:
        sys.exit("structure.py: the lists or the map cannot be read any more")
    included = included_modules(src, {m for modules in variables.values() for m in modules})
    faults = [*map_faults(numbers, documented), *file_faults(src, numbers),
              *layer_faults(src, core, gui), *colour_faults(src, gui), *exit_faults(src),
              *order_faults(variables, included),
              *circle_faults(included), *name_faults(root),
              *case_faults(root), *namespace_faults(root), *dropped_failure_faults(root)]
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
