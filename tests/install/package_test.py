#!/usr/bin/python3
"""The Debian packages are complete, and the archive runs wherever it is unpacked: package_test.py CPACK BUILD

Packing is tested without installing anything: the packages are unpacked into an empty root. Skips what needs tools
that are missing.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

CPACK, BUILD = sys.argv[1], pathlib.Path(sys.argv[2])
MISSING = [tool for tool in ("dpkg-deb", "dpkg-shlibdeps", "fakeroot", "file") if not shutil.which(tool)]


def run(*words, env=None):
    done = subprocess.run([str(word) for word in words], capture_output=True, text=True, check=False,
                          env={**os.environ, "LC_ALL": "C.UTF-8", "SOURCE_DATE_EPOCH": "1700000000", **(env or {})})
    if done.returncode != 0:
        raise AssertionError(f"{words}: {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


class Packages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.temporary.name)
        generators = "TGZ" if MISSING else "DEB;TGZ"
        run(CPACK, "--config", BUILD / "CPackConfig.cmake", "-G", generators, "-B", cls.folder, "-D", "CPACK_DEBIAN_COMPRESSION_TYPE=gzip")

    @classmethod
    def tearDownClass(cls):
        cls.temporary.cleanup()

    def test_archive_runs_where_it_is_unpacked(self):
        [archive] = self.folder.glob("*.tar.gz")
        target = self.folder / "any where"
        target.mkdir()
        run("tar", "xzf", archive, "-C", target)
        [top] = target.iterdir()
        self.assertIn(f"{top}/lib/corvanta/plugins/CorvantaPluginWriteReport.so", run(top / "bin/corvanta", "plugins"))

    @unittest.skipIf(MISSING, f"no {', '.join(MISSING)}")
    def test_packages_in_an_empty_root(self):
        packages = {re.sub("_.*", "", path.name): path for path in self.folder.glob("*.deb")}
        self.assertEqual(sorted(packages), ["corvanta", "corvanta-dev", "corvanta-doc"])
        depends = run("dpkg-deb", "-f", packages["corvanta"], "Depends")
        for library in ("libqt6widgets6 ", "libreadstat1 ", "libarchive13 "):
            self.assertIn(library, depends)
        self.assertRegex(run("dpkg-deb", "-f", packages["corvanta-dev"], "Depends"), r"corvanta \(= [0-9.]+\), qt6-base-dev")
        root = self.folder / "root"
        for name, package in packages.items():
            run("dpkg-deb", "-x", package, root)
            self.assertTrue((root / "usr/share/doc" / name / "copyright").is_file())
        program = root / "usr/bin/corvanta"
        for binary in [program, *root.glob("usr/lib/**/*.so*")]:
            self.assertNotIn("RUNPATH", run("readelf", "-d", binary))
        env = {"LD_LIBRARY_PATH": str(root / "usr/lib")}
        run(program, "run", root / "usr/share/corvanta/examples/main.graph", "--out-dir", self.folder / "out", env=env)
        self.assertTrue((self.folder / "out/elements.xlsx").is_file())
        self.assertTrue((root / "usr/include/corvanta/run.h").is_file())
        if shutil.which("lintian"):
            run("lintian", "--fail-on", "error", "--allow-root", *packages.values())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
