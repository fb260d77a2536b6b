#!/usr/bin/python3
"""The same sources give the same bytes: reproducible_test.py CMAKE CPACK BUILD [--no-ccache]

Always: the archive of a build does not depend on the time and the umask, and has no trace of the folder of the build.
With --no-ccache ("./dev reproduce") or CORVANTA_REPRODUCE: copies of the sources are built in two folders with names of
different lengths, with other times of files and another umask, and the archives are compared. That takes minutes;
with --no-ccache nothing that was compiled before is used.
"""
import os
import pathlib
import subprocess
import sys
import tarfile
import tempfile
import unittest

CMAKE, CPACK = sys.argv[1:3]
BUILD = pathlib.Path(sys.argv[3]).resolve()
LAUNCHER = ["-DCMAKE_C_COMPILER_LAUNCHER=", "-DCMAKE_CXX_COMPILER_LAUNCHER="] if "--no-ccache" in sys.argv else []
ROOT = pathlib.Path(__file__).resolve().parents[2]


def run(*words, **more):
    done = subprocess.run([str(word) for word in words], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **more)
    if done.returncode != 0:
        raise AssertionError(f"{words}: {done.returncode}\n{done.stdout[-5000:]}")


def content_of(archive):
    with tarfile.open(archive) as tar:
        return {member.name: (member.mode, member.mtime, member.linkname, tar.extractfile(member).read() if member.isfile() else b"") for member in tar}


def pack(build, folder, mask):
    """The archive of a build, made in a new folder."""
    run(CPACK, "--config", build / "CPackConfig.cmake", "-G", "TGZ", "-B", folder, umask=mask, cwd=build,
        env={**os.environ, "SOURCE_DATE_EPOCH": "1700000000"})
    return next(folder.glob("*.tar.gz"))


class Archives(unittest.TestCase):
    def assert_equal(self, first, second):
        first, second = content_of(first), content_of(second)
        self.assertEqual(sorted(first), sorted(second))
        self.assertEqual([name for name in first if first[name][2:] != second[name][2:]], [], "different content")
        self.assertEqual([name for name in first if first[name][:2] != second[name][:2]], [], "different mode or time")


@unittest.skipUnless((BUILD / "bin/corvanta-studio").exists(), "the build is not complete")
class Packed(Archives):
    def test_archive_depends_on_nothing_else(self):
        with tempfile.TemporaryDirectory() as name:
            first, second = (pack(BUILD, pathlib.Path(name, part), mask) for part, mask in (("a", 0o022), ("b", 0o002)))
            self.assert_equal(first, second)
            traces = [path for path, (_, _, link, data) in content_of(first).items() if bytes(ROOT) in data or str(ROOT) in link]
        self.assertEqual(traces, [], "the folder of the sources or of the build")


@unittest.skipUnless(LAUNCHER or os.environ.get("CORVANTA_REPRODUCE"), "set CORVANTA_REPRODUCE=1, or run ./dev reproduce")
class Reproducible(Archives):
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
        return pack(source / "build/release", folder, mask)

    def test_two_builds_are_equal(self):
        with tempfile.TemporaryDirectory() as name:
            self.assert_equal(self.archive(pathlib.Path(name, "a"), 1600000000, 0o022),
                              self.archive(pathlib.Path(name, "a longer name"), 1650000000, 0o002))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
