#!/usr/bin/python3
"""The Debian packages are complete, and the archive runs wherever it is unpacked: package_test.py CPACK BUILD

dpkg installs the packages into an empty root with a database of its own, and removes them. Skips what needs tools that
are missing.
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

    def dpkg(self, *words):
        """With the root "root", as if it were the whole system. ldconfig would change this one."""
        for folder in ("root/var/lib/dpkg/info", "root/var/lib/dpkg/updates", "bin"):
            (self.folder / folder).mkdir(parents=True, exist_ok=True)
        (self.folder / "root/var/lib/dpkg/status").touch()
        (self.folder / "bin/ldconfig").write_text("#!/bin/sh\n", encoding="utf-8")
        (self.folder / "bin/ldconfig").chmod(0o755)
        return run("fakeroot", "dpkg", f"--root={self.folder / 'root'}", "--log=/dev/null", "--force-script-chrootless", "--force-depends", "--force-not-root",
                   *words, env={"PATH": f"{self.folder / 'bin'}:{os.environ['PATH']}:/usr/sbin:/sbin"})

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
        self.dpkg("-i", *packages.values())
        self.assertEqual(self.dpkg("--audit"), "")
        for name in packages:
            self.assertTrue((root / "usr/share/doc" / name / "copyright").is_file())
        program = root / "usr/bin/corvanta"
        for binary in [program, *root.glob("usr/lib/**/*.so*")]:
            self.assertNotIn("RUNPATH", run("readelf", "-d", binary))
        env = {"LD_LIBRARY_PATH": str(root / "usr/lib")}
        run(program, "run", root / "usr/share/corvanta/examples/main.graph", "--out-dir", self.folder / "out", env=env)
        self.assertTrue((self.folder / "out/elements.xlsx").is_file())
        self.assertTrue((root / "usr/include/corvanta/run.h").is_file())
        # Where programs of Debian look for them; the folder of zsh is its own.
        for name in ("man/man1/corvanta.1.gz", "man/man7/corvanta-readCSV.7.gz", "zsh/vendor-completions/_corvanta",
                     "bash-completion/completions/corvanta", "fish/vendor_completions.d/corvanta.fish"):
            self.assertTrue((root / "usr/share" / name).is_file(), name)
        self.assertEqual(list(root.glob("usr/share/man/**/*.[157]")), [])
        self.dpkg("--purge", *packages)
        self.assertEqual(os.listdir(root), ["var"])
        if shutil.which("lintian"):
            run("lintian", "--fail-on", "error", "--allow-root", *packages.values())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
