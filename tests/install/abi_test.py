#!/usr/bin/python3
"""Compiled modules and hosts still fit to the library: abi_test.py LIBRARY

abidiff compares the types of the public headers with host/abi/N-*.abi.xz, and the exported symbols must contain those of
host/abi/N.symbols, where N is the plug-in ABI. After a change that modules notice, raise N in plugin_abi.json;
CORVANTA_UPDATE_GOLDEN=1 then writes the files of the new number. Until N is released, it may rewrite the old ones.
"""
import json
import lzma
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

LIBRARY = sys.argv[1]
ROOT = pathlib.Path(__file__).resolve().parents[2]
HEADERS = ROOT / "host/include"
NUMBER = json.loads((HEADERS / "corvanta/plugin_abi.json").read_text(encoding="utf-8"))["abi"]
UPDATES = os.environ.get("CORVANTA_UPDATE_GOLDEN") == "1"
# What modules and hosts use by value, inherit or call. The layouts of other types follow from these.
TYPES = """ActionItem ActionParameters corvanta::ActionBase corvanta::ActionEntry CorvantaPluginInterface corvanta::CataloguePlugin UpdateClassWidget OneRow RowBuffer
MetaInfo TableSchema RunControl XMLNode GlobalParameters FileFormat ParameterInfo LogSink LogScope LogMessage corvanta::ActionRegistry
corvanta::Module CorvantaGraph corvanta::Run corvanta::RunOptions corvanta::Listener corvanta::ActionProgress EngineRunner TargetFile
MyReadFile MyWriteFile corvanta::RowListener MainUI KobiFileInfo corvanta::EditHistory corvanta::input::InputSource corvanta::Occurrences""".split()


def run(*words, **more):
    return subprocess.run([str(word) for word in words], capture_output=True, text=True, check=True, **more).stdout


class Abi(unittest.TestCase):
    def test_exported_symbols_stay(self):
        file = ROOT / f"host/abi/{NUMBER}.symbols"
        names = set(re.findall(r" [TVBD] (\S+)$", run("nm", "-D", "--defined-only", LIBRARY), re.MULTILINE))
        names = sorted(name for name in names if not re.match(r"_Z(T[ISV])?N?K?St", name))  # those depend on the compiler
        names = [name for name in names if "7Private" not in name]  # of a type that no header defines
        if UPDATES:
            file.write_text("\n".join(names) + "\n", encoding="utf-8")
        missing = sorted(set(file.read_text(encoding="utf-8").split()) - set(names))
        self.assertEqual(missing, [], "symbols that modules may use are gone")

    @unittest.skipUnless(shutil.which("abidw") and shutil.which("g++"), "no abidw (abigail-tools) or g++")
    def test_types_stay(self):
        tools = f"gcc{run('g++', '-dumpversion').strip()}-qt{run('pkg-config', '--modversion', 'Qt6Core').strip()}"
        file = ROOT / f"host/abi/{NUMBER}-{tools}.abi.xz"
        if not UPDATES and not file.exists():
            self.skipTest(f"no dump for {tools}")
        with tempfile.TemporaryDirectory() as name:
            old, new, probe = (pathlib.Path(name, part) for part in ("old.abi", "new.abi", "libprobe.so"))
            source = "".join(f'#include "{header.relative_to(HEADERS)}"\n' for header in sorted(HEADERS.rglob("*.h")))
            source += f"void probe({', '.join(f'const {one} *' for one in TYPES)}) {{}}\n"
            flags = ["-std=c++20", "-fPIC", "-shared", "-g", "-O0", "-femit-class-debug-always", "-I", ROOT, "-I", HEADERS, *run("pkg-config", "--cflags", "Qt6Widgets").split()]
            run("g++", "-x", "c++", *flags, "-", "-o", probe, input=source, cwd=name)
            run("abidw", "--headers-dir", HEADERS, "--headers-dir", ROOT / "base", "--drop-private-types", "--no-corpus-path", "--no-comp-dir-path",
                "--no-show-locs", "--out-file", new, probe)
            if UPDATES:
                file.write_bytes(lzma.compress(new.read_bytes(), preset=9))
            old.write_bytes(lzma.decompress(file.read_bytes()))
            done = subprocess.run(["abidiff", "--no-added-syms", str(old), str(new)], capture_output=True, text=True, check=False)
            self.assertEqual(done.returncode, 0, f"{__doc__}\n{done.stdout[:5000]}{done.stderr}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
