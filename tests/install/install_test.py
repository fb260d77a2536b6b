#!/usr/bin/python3
"""What "cmake --install" installs works after it was moved: install_test.py CMAKE BUILD

Programs, modules and templates find each other, the examples for developers build and run against the installed tree,
and each public header compiles by itself.
"""
import concurrent.futures
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD = sys.argv[1], pathlib.Path(sys.argv[2])
SELECTED = sys.argv[3:]
SOURCE = pathlib.Path(__file__).resolve().parents[2]


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.temporary.name)
        first = cls.folder / "first"
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", first], check=True, stdout=subprocess.DEVNULL)
        cls.prefix = first.rename(cls.folder / "moved tree")
        cls.env = {**os.environ, "XDG_DATA_HOME": str(cls.folder / "data"), "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen"}
        cls.env.pop("CORVANTA_PLUGIN_PATH", None)

    @classmethod
    def tearDownClass(cls):
        cls.temporary.cleanup()

    def run_program(self, *words, status=0, **more):
        done = subprocess.run([str(word) for word in words], capture_output=True, text=True, check=False, **{"env": self.env, "cwd": self.folder, **more})
        self.assertEqual(done.returncode, status, f"{words}\n{done.stdout}{done.stderr}")
        return done.stdout + done.stderr

    def corvanta(self, *words, **more):
        return self.run_program(self.prefix / "bin/corvanta", *words, **more)


class Runtime(Installed):
    def test_modules_and_templates_are_found_in_the_moved_tree(self):
        modules = json.loads(self.corvanta("plugins", "--json"))
        self.assertEqual([module["name"] for module in modules], ["CorvantaPluginWriteReport", "CorvantaPluginTables"])
        for module in modules:
            self.assertEqual(pathlib.Path(module["file"]).parent, self.prefix / "lib/corvanta/plugins")
        for binary in [self.prefix / "bin/corvanta", *(self.prefix / "lib").rglob("*.so")]:
            found = self.run_program("ldd", binary)
            self.assertNotIn("not found", found)
            self.assertNotIn(str(BUILD), found)
            if "libCorvantaCore" not in binary.name:
                self.assertIn(f"{self.prefix}", found)
        self.corvanta("check", "--template", ">bar.xlsx")
        self.corvanta("run", self.prefix / "share/corvanta/examples/main.graph", "--out-dir", self.folder / "out")
        self.assertTrue((self.folder / "out/elements.xlsx").is_file())

    def test_descriptions_for_desktops(self):
        self.assertIn("*.graph", (self.prefix / "share/mime/packages/corvanta-graph.xml").read_text(encoding="utf-8"))
        self.assertTrue((self.prefix / "share/icons/hicolor/scalable/apps/corvanta.svg").is_file())
        if (self.prefix / "bin/corvanta-studio").exists():
            entry = self.prefix / "share/applications/corvanta-studio.desktop"
            self.assertIn("\nExec=corvanta-studio %F\n", entry.read_text(encoding="utf-8"))
            if shutil.which("desktop-file-validate"):
                self.run_program("desktop-file-validate", entry)

    def test_modules_export_only_their_entry_points(self):
        for module in (self.prefix / "lib/corvanta/plugins").glob("*.so"):
            names = set(re.findall(r" \w (\S+)$", self.run_program("nm", "-D", "--defined-only", module), re.MULTILINE))
            self.assertLessEqual(names, {"qt_plugin_instance", "qt_plugin_query_metadata_v2", "qt_plugin_query_verification_data"})


class Development(Installed):
    def build(self, example):
        """Build an example as docs/sdk.md describes it; returns the folder with the result."""
        folder = self.folder / example
        shutil.copytree(self.prefix / "share/corvanta/examples" / example, folder)
        self.run_program(CMAKE, "-S", folder, "-B", folder / "build", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={self.prefix}",
                         "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Werror")
        self.run_program(CMAKE, "--build", folder / "build")
        return folder / "build"

    def test_example_module(self):
        module = self.build("plugin") / "Pairs.so"
        example, path = module.parents[1], f"--plugin-path={module.parent}"
        self.assertIn("Pairs", self.corvanta("plugins", path))
        description = self.corvanta("describe", "readPairs", path)
        self.assertIn("1 output pin", description)
        self.assertIn("Example: <readPairs fileName='settings.pairs' separator=': '/>", description)
        self.corvanta("run", path, example / "copy.graph", "--out-dir", self.folder / "o")
        self.assertEqual((self.folder / "o/copy.pairs").read_text(encoding="utf-8"), "colour: blue\nsize: 12\nnote: a=b\n")
        self.corvanta("convert", path, example / "settings.pairs", "c.csv")
        self.assertEqual((self.folder / "c.csv").read_text(encoding="utf-8"), "name,value\ncolour,blue\nsize,12\nnote,a=b\n")
        self.corvanta("convert", path, "c.csv", "c.pairs")
        self.assertEqual((self.folder / "c.pairs").read_text(encoding="utf-8"), (example / "settings.pairs").read_text(encoding="utf-8"))
        (self.folder / "d.pairs").write_text("a\nb=1\nc\n", encoding="utf-8")
        self.assertIn("d.pairs' has a line without a separator: a\n", self.corvanta("convert", path, "d.pairs", "c.csv", status=1))
        # The editor lists its actions, and shows its panel and its help.
        if (BUILD / "bin/shell_test").exists():
            shown = self.run_program(BUILD / "bin/shell_test", "--gtest_filter=*OtherModules", env={**self.env, "CORVANTA_PLUGIN_PATH": str(module.parent)})
            self.assertNotIn("SKIPPED", shown)
        # In the user's folder the module needs no option.
        plugins = self.folder / "data/corvanta/plugins"
        plugins.mkdir(parents=True)
        shutil.copy(module, plugins)
        self.assertIn("readPairs", self.corvanta("actions"))
        shutil.rmtree(plugins)
        self.corvanta("check", example / "copy.graph", status=2)

    def test_example_host(self):
        host = self.build("host") / "host"
        examples = self.prefix / "share/corvanta/examples"
        shutil.copy(examples / "main.graph", self.folder)
        shutil.copy(examples / "elements.csv", self.folder)
        self.assertIn(": 118 rows\n", self.run_program(host, "main.graph"))
        self.assertIn("cannot read the graph file", self.run_program(host, "missing.graph", status=2))
        # The templates of the installation, for a program that is elsewhere.
        shutil.copytree(examples / "charts", self.folder / "charts")
        self.run_program(host, "charts/workbook.graph")
        self.assertTrue((self.folder / "charts/sales.xlsx").is_file())
        # The same with pkg-config.
        env = {**self.env, "PKG_CONFIG_PATH": str(self.prefix / "lib/pkgconfig")}
        flags = self.run_program("pkg-config", "--cflags", "--libs", "corvanta", env=env).split("\n")[0]
        self.run_program("sh", "-c", f"c++ -fPIC -o host2 '{examples}/host/main.cpp' {flags}")
        self.run_program(self.folder / "host2", "main.graph", env={**self.env, "LD_LIBRARY_PATH": str(self.prefix / "lib")})

    def test_wrong_version_is_refused(self):
        (self.folder / "v").mkdir()
        (self.folder / "v/CMakeLists.txt").write_text("cmake_minimum_required(VERSION 3.25)\nproject(V LANGUAGES CXX)\nfind_package(Corvanta 5 CONFIG)\n"
                                                      "message(STATUS \"found ${Corvanta_FOUND}, ${Corvanta_CONSIDERED_VERSIONS}\")\n", encoding="utf-8")
        self.assertIn("found 0, 4.", self.run_program(CMAKE, "-S", "v", "-B", "v/b", f"-DCMAKE_PREFIX_PATH={self.prefix}"))


class Headers(Installed):
    def included(self, header):
        """The names of all that a header includes, also through other headers of ours."""
        path = self.prefix / "include" / header
        direct = set(re.findall(r'#include [<"](.+)[>"]', path.read_text(encoding="utf-8"))) if path.exists() else set()
        return direct.union(*map(self.included, direct))

    def chains(self, headers):
        """Lists of headers, each of which includes all that is included by those before it: one compilation checks each of them alone."""
        chains = []
        for header in sorted(map(str, headers), key=lambda header: len(self.included(header))):
            names = self.included(header) | {header}
            fitting = [chain for chain in chains if self.included(chain[-1]) | {chain[-1]} <= names]
            if fitting:
                max(fitting, key=lambda chain: len(self.included(chain[-1]))).append(header)
            else:
                chains.append([header])
        return chains

    def compile_chain(self, chain, flags):
        name = self.folder / (chain[0].replace("/", "_") + ".cpp")
        name.write_text("".join(f"#include <{header}>\n" for header in chain), encoding="utf-8")
        # A chain that includes QString anyway may begin with it as a precompiled header.
        first = ["-Winvalid-pch", "-include", "../first.h"] if "QString" in self.included(chain[0]) else []
        done = subprocess.run(["c++", "-fsyntax-only", *first, "-Iinclude", *flags, f"../{name.name}"],
                              cwd=self.prefix, env=self.env, capture_output=True, text=True, check=False)
        return done.stderr

    def test_each_compiles_by_itself(self):
        flags = ["-std=c++20", "-fPIC", "-Wall", "-Wextra", "-Wpedantic", "-Werror",
                 *self.run_program("pkg-config", "--cflags", "Qt6Core", "Qt6Gui", "Qt6Widgets").split()]
        (self.folder / "first.h").write_text("#include <QString>\n", encoding="utf-8")
        self.run_program("c++", "-x", "c++-header", *flags, "first.h")
        headers = sorted(path.relative_to(self.prefix / "include") for path in (self.prefix / "include").rglob("*.h"))
        self.assertGreater(len(headers), 40)
        for header in headers:
            self.assertNotIn('#include "base/', (self.prefix / "include" / header).read_text(encoding="utf-8"))
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            faults = list(pool.map(lambda chain: self.compile_chain(chain, flags), self.chains(headers)))
        self.assertFalse(any(faults), "\n".join(faults))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *SELECTED])
