#!/usr/bin/python3
"""Two builds of the same sources give the same bytes: reproducible_test.py CMAKE CPACK [--no-ccache]

Builds copies of the sources in two folders with names of different lengths, with other times of files and another
umask, and compares the packed archives. With --no-ccache ("./dev reproduce") nothing that was compiled before is used;
without it the test takes minutes all the same, and is skipped unless CORVANTA_REPRODUCE is set.
"""
import os
import pathlib
import subprocess
import sys
import tarfile
import tempfile
import unittest

CMAKE, CPACK = sys.argv[1:3]
LAUNCHER = ["-DCMAKE_C_COMPILER_LAUNCHER=", "-DCMAKE_CXX_COMPILER_LAUNCHER="] if "--no-ccache" in sys.argv else []
ROOT = pathlib.Path(__file__).resolve().parents[2]


def run(*words, **more):
    done = subprocess.run([str(word) for word in words], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **more)
    if done.returncode != 0:
        raise AssertionError(f"{words}: {done.returncode}\n{done.stdout[-5000:]}")


def content_of(archive):
    with tarfile.open(archive) as tar:
        return {member.name: (member.mode, member.mtime, member.linkname, tar.extractfile(member).read() if member.isfile() else b"") for member in tar}


@unittest.skipUnless(LAUNCHER or os.environ.get("CORVANTA_REPRODUCE"), "set CORVANTA_REPRODUCE=1, or run ./dev reproduce")
class Reproducible(unittest.TestCase):
    def archive(self, folder, mtime, mask):
        """The archive of a build of the sources in a new folder."""
        source = folder / "source"
        source.mkdir(parents=True)
        files = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, stdout=subprocess.PIPE, check=True).stdout
        run("sh", "-c", f"tar -c --null -T - | tar -x -m -C '{source}'", cwd=ROOT, input=files.decode())
        for path in source.rglob("*"):
            os.utime(path, (mtime, mtime))
        env = {**os.environ, "SOURCE_DATE_EPOCH": "1700000000"}
        run(CMAKE, "--preset", "release", "-DBUILD_TESTING=OFF", *LAUNCHER, cwd=source, env=env, umask=mask)
        run(CMAKE, "--build", source / "build/release", "--target", "installed", env=env, umask=mask)
        run(CPACK, "-G", "TGZ", "-B", folder, cwd=source / "build/release", env=env, umask=mask)
        return next(folder.glob("*.tar.gz"))

    def test_two_builds_are_equal(self):
        with tempfile.TemporaryDirectory() as name:
            first = content_of(self.archive(pathlib.Path(name, "a"), 1600000000, 0o022))
            second = content_of(self.archive(pathlib.Path(name, "a longer name"), 1650000000, 0o002))
        self.assertEqual(sorted(first), sorted(second))
        self.assertEqual([name for name in first if first[name][2:] != second[name][2:]], [], "different content")
        self.assertEqual([name for name in first if first[name][:2] != second[name][:2]], [], "different mode or time")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
