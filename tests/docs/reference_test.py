#!/usr/bin/python3
"""The generated documentation is complete and has no dead links: reference_test.py CORVANTA SHARE"""
import html.parser
import importlib.util
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

CORVANTA, SHARE = str(pathlib.Path(sys.argv.pop(1)).resolve()), pathlib.Path(sys.argv.pop(1)).resolve()
ROOT = pathlib.Path(__file__).resolve().parents[2]
HTML = SHARE / "doc/corvanta/html"
BASH, ZSH, FISH = (SHARE / name for name in ("bash-completion/completions/corvanta", "zsh/site-functions/_corvanta",
                                             "fish/vendor_completions.d/corvanta.fish"))

# Types a line and a tab in a terminal of zsh, and prints what appears.
ZPTY = r"""
zmodload zsh/zpty; zpty z zsh -f -i
zpty -w z "PS1=; unsetopt prompt_sp prompt_cr zle_bracketed_paste; bindkey '^I' list-choices; fpath=($1 \$fpath); autoload -U compinit; compinit -D; print rea''dy"
zpty -r -m z out '*ready*'
zpty -w -n z "$2"$'\t'
for i in {1..20}; do
    sleep .05
    while zpty -r -t z more; do out+=$more; done
done
print -r -- "$out"; zpty -d z
"""


def corvanta(*words):
    return subprocess.run([CORVANTA, *words], check=True, capture_output=True, text=True).stdout


COMMANDS = json.loads(corvanta("help", "--json"))["commands"]
ACTIONS = [json.loads(corvanta("describe", action["type"], "--json")) for action in json.loads(corvanta("actions", "--json"))]


def options(command):
    names = [name for group in command["optionGroups"] for option in group["options"] for name in option["names"]]
    return [name for name in names if re.fullmatch("-[a-z]|--[a-z-]+", name)]


def names_of(infos, path=""):
    for info in infos:
        yield path + info["name"]
        yield from names_of(info.get("members", []), f"{path}{info['name']}.")


class Page(html.parser.HTMLParser):
    def __init__(self, file):
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(file.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        self.anchors.add(attributes.get("id"))
        self.links += [attributes[name] for name in ("href", "src") if name in attributes]


@unittest.skipUnless(importlib.util.find_spec("markdown"), "no python3-markdown, so there is no HTML")
class Site(unittest.TestCase):
    def test_links_lead_somewhere(self):
        pages = {file: Page(file) for file in HTML.rglob("*.html")}
        self.assertGreater(len(pages), 60)
        dead = []
        for file, page in pages.items():
            for link in page.links:
                name, _, anchor = link.partition("#")
                target = pathlib.Path(os.path.normpath(file.parent / name)) if name else file
                if ":" not in link and not (target.is_file() and (not anchor or anchor in pages[target].anchors)):
                    dead.append(f"{file.relative_to(HTML)}: {link}")
        self.assertEqual(dead, [])
        # Each page can be reached from the first one.
        seen, todo = set(), [HTML / "index.html"]
        while todo:
            file = todo.pop()
            if file in seen or file not in pages:
                continue
            seen.add(file)
            todo += [pathlib.Path(os.path.normpath(file.parent / link.partition("#")[0])) for link in pages[file].links]
        help_pages = {f"{action['helpPage']}.html" for action in ACTIONS}
        self.assertEqual([file for file in pages if file not in seen and file.name not in help_pages], [])

    def test_pages_of_actions_are_complete(self):
        for action in ACTIONS:
            page = Page(HTML / f"reference/actions/{action['type']}.html")
            self.assertEqual([name for name in names_of(action["parameters"]) if name not in page.anchors], [], action["type"])
            if action["helpPage"]:
                self.assertTrue((HTML / f"reference/actions/{action['helpPage']}.html").exists(), action["type"])
            text = (HTML / f"reference/actions/{action['type']}.html").read_text(encoding="utf-8")
            self.assertIn("<dt><code>", text.partition('id="messages"')[2], action["type"])
            self.assertEqual(text.count("<pre>"), text.count("<pre><code"), action["type"])


class Manual(unittest.TestCase):
    def test_pages_are_complete(self):
        for command in COMMANDS:
            page = (SHARE / f"man/man1/corvanta-{command['name']}.1").read_text(encoding="utf-8").replace("\\-", "-")
            self.assertEqual([name for name in options(command) if not re.search(rf"{name}\b", page)], [], command["name"])
        for action in ACTIONS:
            page = (SHARE / f"man/man7/corvanta-{action['type']}.7").read_text(encoding="utf-8")
            self.assertEqual([name for name in names_of(action["parameters"]) if f".SS {name.replace('.', '/')}\n" not in page], [], action["type"])

    def test_editor_has_a_page(self):
        editor = pathlib.Path(CORVANTA).parent / "corvanta-studio"
        if not editor.exists():
            self.skipTest("no editor")
        page = (SHARE / "man/man1/corvanta-studio.1").read_text(encoding="utf-8").replace("\\-", "-")
        text = subprocess.run([editor, "--help"], check=True, capture_output=True, text=True).stdout
        self.assertEqual([name for name in re.findall(r"(?<!\S)--?[a-z]+", text) if name not in page], [])

    @unittest.skipUnless(shutil.which("groff"), "no groff")
    def test_pages_are_valid(self):
        files = sorted(str(file) for file in (SHARE / "man").rglob("*.[157]"))
        self.assertGreater(len(files), 30)
        done = subprocess.run(["groff", "-man", "-ww", "-Tutf8", "-z", *files], capture_output=True, text=True, check=False)
        self.assertEqual(done.stderr, "")


class Log(unittest.TestCase):
    def test_page_lists_all_members(self):
        def members(value):
            for name, inner in value.items() if isinstance(value, dict) else ():
                yield name
                for item in inner if isinstance(inner, list) else [inner]:
                    yield from members(item)

        page = (ROOT / "docs/reference/log.md").read_text(encoding="utf-8")
        with tempfile.TemporaryDirectory() as folder:
            done = subprocess.run([CORVANTA, "run", ROOT / "examples/main.graph", "--out-dir", folder, "--log-format", "json", "--progress", "lines"],
                                  capture_output=True, text=True, check=True)
        found = {name for line in done.stderr.splitlines() for name in members(json.loads(line))}
        self.assertGreater(len(found), 12)
        self.assertEqual([name for name in sorted(found) if f"`{name}`" not in page], [])


WITH_PROGRAM = {**os.environ, "PATH": f"{pathlib.Path(CORVANTA).parent}:{os.environ['PATH']}"}
# The names of the columns of a file that completions open.
ELEMENTS = (ROOT / "examples/elements.csv").read_text(encoding="utf-8").splitlines()[0].split(",")


class Completions(unittest.TestCase):
    def bash(self, line, folder=ROOT / "examples"):
        script = f'source "{BASH}"; COMP_LINE=$1 COMP_POINT=${{#1}}; _corvanta; printf "%s\\n" "${{COMPREPLY[@]}}"'
        done = subprocess.run(["bash", "-c", script, "bash", line], cwd=folder, capture_output=True, text=True, check=True,
                              env=WITH_PROGRAM)
        self.assertEqual(done.stderr, "")
        return done.stdout.split()

    def test_bash(self):
        names = [command["name"] for command in COMMANDS]
        self.assertEqual(self.bash("corvanta "), [*names, "help", "--version", "--help"])
        for command in COMMANDS:
            self.assertEqual(self.bash(f"corvanta {command['name']} -"), [*options(command), "--help"])
        self.assertEqual(self.bash("corvanta run m"), ["main.graph"])
        self.assertEqual(self.bash("corvanta convert elem"), ["elements.csv"])
        self.assertEqual(self.bash("corvanta describe writeDoc"), ["writeDoc", "writeDocTable"])
        self.assertEqual(self.bash("corvanta run main.graph --log-format "), ["text", "json"])
        self.assertEqual(self.bash("corvanta run main.graph --log-format=j"), ["json"])
        self.assertEqual(self.bash("corvanta convert elements.csv out.xlsx --writer sheetN"), ["sheetName="])
        self.assertEqual(self.bash("corvanta convert elements.csv.gz out.xlsx --reader nullV"), ["nullValues="])
        self.assertEqual(self.bash("corvanta convert elements.csv out --to parq"), ["parquet"])
        self.assertEqual(self.bash("corvanta run main.graph --out-dir doc"), ["documents"])
        self.assertEqual(self.bash("corvanta run main.graph --inputs elem"), ["elements.csv"])
        self.assertEqual(self.bash("corvanta frobnicate x"), [])
        self.assertEqual(self.bash("corvanta convert elements.csv out.xlsx --select "), ELEMENTS)
        self.assertEqual(self.bash(f"corvanta convert elements.csv out.xlsx --sort {ELEMENTS[0]},-{ELEMENTS[1][:3]}"), [f"{ELEMENTS[0]},-{ELEMENTS[1]}"])
        self.assertEqual(self.bash("corvanta convert none.csv out.xlsx --select "), [])

    def test_all_options_in_the_other_shells(self):
        zsh, fish = ZSH.read_text(encoding="utf-8"), FISH.read_text(encoding="utf-8")
        for command in COMMANDS:
            part = zsh.partition(f"    {command['name']})\n")[2].partition(";;")[0]
            self.assertEqual([name for name in options(command) if not re.search(rf"['*)]{name}[=\[]", part)], [], command["name"])
            lines = [line for line in fish.splitlines() if f"from {command['name']}'" in line]
            found = {f"--{name}" for line in lines for name in re.findall(r" -l ([\w-]+)", line)}
            found |= {f"-{name}" for line in lines for name in re.findall(r" -s (\w)", line)}
            self.assertEqual(set(options(command)), found, command["name"])
        for action in ACTIONS:
            self.assertIn(action["type"], zsh)
            self.assertIn(action["type"], fish)

    @unittest.skipUnless(shutil.which("zsh"), "no zsh")
    def test_zsh(self):
        for line, offered in (("corvanta con", "convert"), ("corvanta convert elements.csv out.xlsx --writer sheetN", "sheetName"),
                              ("corvanta run m", "main.graph"), ("corvanta describe writeE", "writeExcel"),
                              (f"corvanta convert elements.csv out.xlsx --select {ELEMENTS[1][:3]}", ELEMENTS[1])):
            done = subprocess.run(["zsh", "-f", "-c", ZPTY, "zsh", str(ZSH.parent), line], cwd=ROOT / "examples", capture_output=True, text=True,
                                  check=True, timeout=60, env=WITH_PROGRAM)
            self.assertIn(offered, done.stdout.rpartition(line[-9:] + "\t")[2] or done.stdout, line)

    @unittest.skipUnless(shutil.which("fish"), "no fish")
    def test_fish(self):
        for line, first in (("corvanta conv", "convert"), ("corvanta describe writeE", "writeExcel"), ("corvanta run m", "main.graph"),
                            ("corvanta convert elements.csv out.xlsx --writer sheetN", "sheetName="),
                            ("corvanta convert elements.csv out.xlsx --select x,num", "x,number")):
            with tempfile.TemporaryDirectory() as home:
                environment = {**WITH_PROGRAM, "HOME": home}
                done = subprocess.run(["fish", "--no-config", "-c", f"source {FISH}; complete -C '{line}'"], cwd=ROOT / "examples", env=environment,
                                      capture_output=True, text=True, check=True)
            self.assertEqual(done.stdout.partition("\t")[0].split()[:1], [first], line)


class Dependencies(unittest.TestCase):
    def setUp(self):
        self.listed = json.loads((ROOT / "docs/dependencies.json").read_text(encoding="utf-8"))

    def test_programs_load_listed_libraries(self):
        known = tuple(name + "." for entry in self.listed for name in entry["libraries"]) + tuple(
            name + "-" for entry in self.listed for name in entry["libraries"])
        build = pathlib.Path(CORVANTA).parents[1]
        files = [CORVANTA, *build.glob("bin/corvanta-studio"), *build.glob("lib/*.so"), *build.glob("lib/corvanta/plugins/*.so")]
        text = "".join(subprocess.run(["readelf", "-d", str(file)], capture_output=True, text=True, check=True).stdout for file in files)
        needed = set(re.findall(r"NEEDED.*\[(.*)\]", text))
        self.assertGreater(len(needed), 10)
        self.assertEqual([name for name in needed if not name.startswith((*known, "libCorvanta", "libasan", "libubsan", "libtsan"))], [])

    def test_list_agrees_with_the_build(self):
        files = [ROOT / "CMakeLists.txt", *(file for folder in ("base", "codecs", "host", "io", "panels", "actions", "plugin", "cli", "studio")
                                            for file in (ROOT / folder).rglob("CMakeLists.txt"))]
        text = "".join(file.read_text(encoding="utf-8") for file in files)
        found = set(re.findall(r"find_package\((\w+)", text)) | set(re.findall(r"find_library\((\w+?)_(?:\w+_)?LIBRARY", text))
        found |= set(re.findall(r"pkg_check_modules\((\w+)", text))
        only_tests = {"GTest", "EXPAT", "PkgConfig"}
        self.assertEqual(found - only_tests, {name for entry in self.listed for name in entry["cmake"]})
        packages = set(re.search(r"build_packages=\(([^)]*)\)", (ROOT / "dev").read_text(encoding="utf-8")).group(1).split())
        tools = {"cmake", "ninja-build", "ccache", "pkg-config", "qt6-l10n-tools"}
        self.assertEqual(packages - tools, {name for entry in self.listed for name in entry["packages"]})

    def test_bill_of_materials(self):
        document = json.loads((SHARE / "doc/corvanta/corvanta.spdx.json").read_text(encoding="utf-8"))
        self.assertEqual(document["spdxVersion"], "SPDX-2.3")
        ids = [package["SPDXID"] for package in document["packages"]]
        self.assertEqual(len(ids), len(set(ids)))
        self.assertEqual(len(ids), len(self.listed) + 1)
        for name in ids:
            self.assertRegex(name, r"^SPDXRef-[A-Za-z0-9.-]+$")
        related = {relation["relatedSpdxElement"] for relation in document["relationships"]}
        self.assertEqual(related, set(ids))
        notices = (SHARE / "doc/corvanta/THIRD-PARTY.md").read_text(encoding="utf-8")
        self.assertEqual([entry["name"] for entry in self.listed if entry["name"] not in notices], [])


if __name__ == "__main__":
    unittest.main()
