#!/usr/bin/python3
"""Check that no folder includes or links a layer above its own: layers_test.py [PROJECT]

A layer sees itself and the layers before it in LAYERS; a program sees only PROGRAM_SEES. Headers below host/src are
private to the host. The folders of CUT_LAYERS do not include each other in a cycle. base (except base/platform)
and codecs open no files and use neither rows on pins nor the log.
"""
import functools
import pathlib
import re
import sys
import tempfile
import unittest

ROOT = pathlib.Path(sys.argv.pop(1) if len(sys.argv) > 1 else __file__ + "/../..").resolve()
LAYERS = ["base", "codecs", "host", "io", "panels", "actions", "plugin"]
PROGRAMS = ["cli", "studio"]
PROGRAM_SEES = {"base", "host"}
CUT_LAYERS = {"codecs", "io", "panels", "actions", "studio"}
INCLUDE_ROOTS = [".", "host/include", "host/src"]
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(["<])([^">\n]+)[">]', re.MULTILINE)
DIRECTIVE = re.compile(r"^(?:[ \t]|/\*.*?\*/)*#[ \t]*include.*$", re.MULTILINE)
PURE_LAYERS = {"base", "codecs"}
IMPURE = re.compile(r"\b(?:QFile|QFileInfo|QDir|QSaveFile|QTemporaryFile|QWidget|ActionItem|OneRow|MainUI|GlobalParameters|fopen|fstream)\b")
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
CODE = ("*.h", "*.cpp", "*.inc", "*.hpp", "*.cc", "*.c")
MADE_LIBRARY = re.compile(r"(add_library|corvanta_module)\(\s*(\w+)")


def sources(root, *patterns):
    for layer in [*LAYERS, *PROGRAMS]:
        for pattern in patterns:
            yield from sorted((root / layer).rglob(pattern))


def layer_of(path):
    return path.parts[0]


def is_test(path):
    return path.stem.endswith("_test") or "tests" in path.parts


def allowed_layers(layer):
    return PROGRAM_SEES | {layer} if layer in PROGRAMS else set(LAYERS[:LAYERS.index(layer) + 1])


@functools.cache  # several checks ask for the same includes
def resolve(root, includer, name):
    """The project file that an include directive names, relative to the root; None for any other header."""
    for folder in [(root / includer).parent, *(root / base for base in INCLUDE_ROOTS)]:
        if (folder / name).is_file():
            path = (folder / name).resolve()
            return path.relative_to(root.resolve()) if path.is_relative_to(root.resolve()) else None
    return None


def includes(root):
    """(including file, included file or None, directive as written) for every include below the layers."""
    for source in sources(root, *CODE):
        path = source.relative_to(root)
        for quote, name in INCLUDE.findall(source.read_text(encoding="utf-8")):
            yield path, resolve(root, path, name), quote + name


def wrong_include(path, target):
    """Why `path` must not include `target`; None if it may."""
    layer, other = layer_of(path), layer_of(target)
    if other not in [*LAYERS, *PROGRAMS]:
        return None if is_test(path) else f"{other} is not a layer"
    if other not in allowed_layers(layer):
        return f"{layer} does not see {other}"
    if target.parts[:2] == ("host", "src") and layer != "host":
        return "the header is private to the host"
    return None


def wrong_includes(root):
    for path, target, directive in includes(root):
        if target is None:
            if directive.startswith('"') and not directive.endswith(".moc"):
                yield f'{path}: {directive}": there is no such file'
        elif reason := wrong_include(path, target):
            yield f"{path}: {target}: {reason}"


def unclear_includes(root):
    """Include lines that the checks above cannot read, such as #include MACRO."""
    for source in sources(root, *CODE):
        text = source.read_text(encoding="utf-8")
        for line in DIRECTIVE.findall(text):
            if not INCLUDE.match(line):
                yield f"{source.relative_to(root)}: unclear include: {line.strip()}"


def impure_code(root):
    """Code of base and codecs that names a file class, a pin, a panel or the log."""
    for source in sources(root, *CODE):
        path = source.relative_to(root)
        if layer_of(path) not in PURE_LAYERS or is_test(path) or path.parts[1] == "platform":
            continue
        names = set(IMPURE.findall(COMMENT.sub("", source.read_text(encoding="utf-8"))))
        if names:
            yield f"{path}: {layer_of(path)} must not use {', '.join(sorted(names))}"


def folder_of(path):
    """The folder whose files belong together (codecs/zip); None for a file of the layer's own folder."""
    return "/".join(path.parts[:2]) if len(path.parts) > 2 else None


def folder_links(root):
    """For each folder of CUT_LAYERS the other folders of its layer that it includes; tests do not count."""
    links = {}
    for path, target, _ in includes(root):
        if target and not is_test(path) and layer_of(path) == layer_of(target) and layer_of(path) in CUT_LAYERS:
            links.setdefault(folder_of(path), set()).add(folder_of(target))
    return {folder: others - {folder, None} for folder, others in links.items() if folder}


def cycles(root):
    """Each folder that reaches itself through the includes of its layer."""
    links = folder_links(root)
    for start in sorted(links):
        reached, waiting = set(), [start]
        while waiting:
            found = links.get(waiting.pop(), set()) - reached
            reached |= found
            waiting += found
        if start in reached:
            yield f"{start}: includes itself through {', '.join(sorted(reached - {start}))}"


def wrong_links(root):
    """Each CMake target of a layer that names a target of a layer that it does not see."""
    lists = {path.relative_to(root): path.read_text(encoding="utf-8") for path in sources(root, "CMakeLists.txt")}
    home = {}
    for path, text in lists.items():
        for maker, name in MADE_LIBRARY.findall(text):
            home[f"corvanta_{name}" if maker == "corvanta_module" else name] = layer_of(path)
    for path, text in lists.items():
        for name in sorted(set(re.findall(r"\w+", text)) & set(home)):
            if home[name] not in allowed_layers(layer_of(path)):
                yield f"{path}: {layer_of(path)} does not see {name} of {home[name]}"
    for source in [root / "CMakeLists.txt", *sorted((root / "cmake").glob("*.cmake"))]:
        for name in sorted(set(re.findall(r"\w+", source.read_text(encoding="utf-8"))) & set(home)):
            yield f"{source.relative_to(root)}: {name} belongs into the CMakeLists.txt of {home[name]}"


def wrong_order(root):
    """The root CMakeLists.txt lists the layers in their order."""
    listed = re.findall(r"^add_subdirectory\((\w+)\)", (root / "CMakeLists.txt").read_text(encoding="utf-8"), re.MULTILINE)
    listed = [name for name in listed if name in [*LAYERS, *PROGRAMS]]
    if listed != [name for name in [*LAYERS, *PROGRAMS] if name in listed]:
        yield f"CMakeLists.txt: the layers are listed as {', '.join(listed)}"


def findings(root):
    return [*wrong_includes(root), *unclear_includes(root), *impure_code(root), *cycles(root), *wrong_links(root), *wrong_order(root)]


class Layers(unittest.TestCase):
    def test_the_project_keeps_its_layers(self):
        self.assertGreater(len(list(includes(ROOT))), 500)
        found = findings(ROOT)
        self.assertFalse(found, "\n" + "\n".join(found))


GOOD = {
    "CMakeLists.txt": "add_subdirectory(base)\nadd_subdirectory(codecs)\nadd_subdirectory(host)\nadd_subdirectory(actions)\n",
    "base/cell.h": "#pragma once\n",
    "base/cell.cpp": '#include "base/cell.h"\n#include <vector>\n',
    "base/CMakeLists.txt": "corvanta_module(base SOURCES cell.cpp)\n",
    "codecs/zip/zip.h": '#include "base/cell.h"\n',
    "codecs/zip/zip_test.cpp": '#include "codecs/zip/zip.h"\n#include "tests/support/sweeps.h"\n',
    "codecs/xlsx/xlsx.h": '#include "codecs/zip/zip.h"\n',
    "codecs/zip/CMakeLists.txt": "corvanta_module(zip SOURCES zip.cpp PUBLIC corvanta_base)\n",
    "host/include/corvanta/run.h": '#include "codecs/zip/zip.h"\n',
    "host/src/engine/gate.h": '#include "corvanta/run.h"\n',
    "host/src/run.cpp": '#include "corvanta/run.h"\n#include "engine/gate.h"\n',
    "actions/shared/rows.h": "",
    "actions/write_xml/write_xml.cpp": '#include "write_xml.h"\n#include "corvanta/run.h"\n#include "actions/shared/rows.h"\n',
    "actions/write_xml/write_xml.h": '#include "codecs/xlsx/xlsx.h"\n',
    "actions/read_xml/read_xml.h": "",
    "actions/CMakeLists.txt": "corvanta_module(actions SOURCES write_xml.cpp PUBLIC corvanta_zip)\n",
    "plugin/plugin.h": '#include "actions/write_xml/write_xml.h"\n',
    "cli/main.cpp": '#include "corvanta/run.h"\n#include "base/cell.h"\n',
    "tests/support/sweeps.h": '#include "actions/write_xml/write_xml.h"\n',
}

# What is added to the good tree, and how the first finding begins.
FAULTS = [
    ({"codecs/dbf/dbf.h": '#include "actions/write_xml/write_xml.h"\n'}, "codecs/dbf/dbf.h: actions/"),
    ({"codecs/dbf/dbf.h": '# include <actions/write_xml/write_xml.h>\n'}, "codecs/dbf/dbf.h: actions/"),
    ({"codecs/dbf/dbf.h": '#include "../../actions/write_xml/write_xml.h"\n'}, "codecs/dbf/dbf.h: actions/"),
    ({"codecs/dbf/dbf_test.cpp": '#include "corvanta/run.h"\n'}, "codecs/dbf/dbf_test.cpp: host/"),
    ({"base/number.cpp": '#include "codecs/zip/zip.h"\n'}, "base/number.cpp: codecs/"),
    ({"codecs/zip/more.h": '#include "codecs/xlsx/xlsx.h"\n'}, "codecs/xlsx: includes itself through codecs/zip"),
    ({"actions/read_xml/more.h": '#include "engine/gate.h"\n'}, "actions/read_xml/more.h: host/src"),
    ({"actions/shared/more.h": '#include "actions/write_xml/write_xml.h"\n'}, "actions/shared: includes itself through"),
    ({"actions/read_xml/more.h": '#include "plugin/plugin.h"\n'}, "actions/read_xml/more.h: plugin/"),
    ({"actions/read_xml/more.h": '#include "tests/support/sweeps.h"\n'}, "actions/read_xml/more.h: tests/"),
    ({"actions/read_xml/more.h": '#include "misspelled.h"\n'}, "actions/read_xml/more.h: \"misspelled.h"),
    ({"codecs/dbf/dbf.h": "#include HEADER\n"}, "codecs/dbf/dbf.h: unclear include"),
    ({"codecs/dbf/dbf.h": '/**/ #include "actions/read_xml/read_xml.h"\n'}, "codecs/dbf/dbf.h: unclear include"),
    ({"codecs/dbf/dbf.inc": '#include "actions/read_xml/read_xml.h"\n'}, "codecs/dbf/dbf.inc: actions/"),
    ({"codecs/dbf/dbf.h": "class OneRow;\n"}, "codecs/dbf/dbf.h: codecs must not use OneRow"),
    ({"codecs/dbf/dbf.cpp": "#include <QFile>\n"}, "codecs/dbf/dbf.cpp: codecs must not use QFile"),
    ({"cli/more.cpp": '#include "codecs/zip/zip.h"\n'}, "cli/more.cpp: codecs/"),
    ({"studio/data/more.cpp": '#include "actions/shared/rows.h"\n'}, "studio/data/more.cpp: actions/"),
    ({"studio/data/more.cpp": '#include "cli/main.cpp"\n'}, "studio/data/more.cpp: cli/"),
    ({"studio/canvas/node.h": '#include "studio/shell/window.h"\n', "studio/shell/window.h": '#include "studio/canvas/node.h"\n'},
     "studio/canvas: includes itself through studio/shell"),
    ({"base/CMakeLists.txt": "corvanta_module(base SOURCES cell.cpp PRIVATE corvanta_zip)\n"}, "base/CMakeLists.txt: base does"),
    ({"CMakeLists.txt": "add_subdirectory(codecs)\nadd_subdirectory(base)\n"}, "CMakeLists.txt: the layers"),
    ({"cmake/Links.cmake": "target_link_libraries(corvanta_base PUBLIC corvanta_zip)\n"}, "cmake/Links.cmake: corvanta_base belongs"),
]


class Faults(unittest.TestCase):
    """The check fails for each kind of fault, so a clean result means something."""

    def findings_of(self, tree):
        with tempfile.TemporaryDirectory(prefix="corvanta_layers_") as name:
            root = pathlib.Path(name)
            for path, text in tree.items():
                (root / path).parent.mkdir(parents=True, exist_ok=True)
                (root / path).write_text(text)
            return findings(root)

    def test_a_tree_that_keeps_its_layers_is_clean(self):
        self.assertEqual(self.findings_of(GOOD), [])

    def test_each_fault_is_found(self):
        for fault, start in FAULTS:
            with self.subTest(start=start):
                found = self.findings_of({**GOOD, **fault})
                self.assertTrue(found and found[0].startswith(start), found)


if __name__ == "__main__":
    unittest.main()
