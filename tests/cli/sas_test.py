#!/usr/bin/python3
"""Limits and values of SAS data sets and transport files: sas_test.py CORVANTA

Rows, names and messages of small tables are graph cases (graphs/write_sas, graphs/write_sas_xpt).
"""
import pathlib
import random
import resource
import struct
import subprocess
import sys
import tempfile
import unittest

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())


def number_of(field):
    """The value of an IBM hexadecimal number; None for a missing one."""
    field = field.ljust(8, b"\0")
    if not any(field[1:]):
        return 0.0 if field[0] == 0 else None
    return (-1) ** (field[0] >> 7) * int.from_bytes(field[1:], "big") * 16.0 ** ((field[0] & 127) - 64 - 14)


def transport(data):
    """The variables (name, label, width) and the rows of a transport file."""
    assert len(data) % 80 == 0
    count = int(data[7 * 80 + 54:7 * 80 + 58])
    at, variables, rows = 8 * 80, [], []
    for _ in range(count):
        kind, _, width, _ = struct.unpack(">4H", data[at:at + 8])
        variables.append((data[at + 8:at + 16].decode().rstrip(), data[at + 16:at + 56].decode().rstrip(), width, kind))
        at += 140
    at = data.index(b"HEADER RECORD*******OBS     ") + 80
    while any(byte != 0x20 for byte in data[at:]):
        row = []
        for *_, width, kind in variables:
            field, at = data[at:at + width], at + width
            row.append(number_of(field) if kind == 1 else field.decode().rstrip())
        rows.append(row)
    return variables, rows


class Sas(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_sas_"))
        self.addCleanup(subprocess.run, ["rm", "-rf", self.folder])

    def convert(self, table, target, *words, status=0):
        (self.folder / "in.csv").write_text(table)
        done = subprocess.run([CORVANTA, "convert", "in.csv", target, *words], cwd=self.folder, capture_output=True, text=True, timeout=120)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stderr

    def content(self, name):
        return (self.folder / name).read_bytes()

    def test_numbers_of_transport_files_are_exact(self):
        chance = random.Random(5)
        values = [0.0, 1.0, -1.0, 0.1, 5.4e-79, 7.2e75, 2.0 ** 53 - 1, 1 / 3]
        values += [chance.choice([-1, 1]) * chance.random() * 2.0 ** chance.randint(-240, 250) for _ in range(2000)]
        self.assertEqual(self.convert("f\n" + "".join(f"{value!r}\n" for value in values), "o.xpt", "--reader", "types=F"), "")
        self.assertEqual([row[0] for row in transport(self.content("o.xpt"))[1]], values)

    def test_narrow_numbers_keep_their_leading_bytes(self):
        self.convert("f,k\n" + "".join(f"{i / 7},{i + 9}\n" for i in range(-9, 99)), "o.xpt", "--reader", "types=F,K", "--writer", "numberWidth=5")
        for i, (value, _) in zip(range(-9, 99), transport(self.content("o.xpt"))[1]):
            self.assertAlmostEqual(value, i / 7, delta=abs(i / 7) * 16.0 ** -7)

    def test_rows_beyond_the_memory_of_the_spool(self):
        text = "".join(chr(0x61 + i % 26) for i in range(150))
        rows = [f"{i},{text[:i % 150]}" for i in range(250_000)]
        self.assertEqual(self.convert("k,t\n" + "\n".join(rows) + "\n", "o.xpt", "--reader", "types=K,U"), "")
        data = self.content("o.xpt")
        at = data.index(b"OBS     HEADER") + 60
        for i in (0, 1, 99_999, 249_999):
            row = data[at + i * 157:][:157]
            self.assertEqual((number_of(row[:8]), row[8:].rstrip().decode()), (float(i), text[:i % 150]))

    def test_limits_of_data_sets(self):
        names = [f"c{i}" for i in range(4096)]
        error = self.convert(",".join(names) + "\n" + ",".join("1" * 4096) + "\n", "o.sas7bdat", status=1)
        self.assertIn("ERROR while writing SAS file '", error)
        self.assertIn("the format cannot hold the 4096 columns of the table; choose columns", error)
        self.convert(",".join(names[:4095]) + "\n", "o.sas7bdat", "--writer", "columnNameMode=0")
        names = [f"{i:04}".ljust(32, "x") for i in range(3000)]
        error = self.convert(",".join(["t"] + names) + "\n" + ",".join(["x" * 32767] * 2) + "," * 2999 + "\n", "p.sas7bdat", status=1)
        self.assertIn("bytes together, and other programs could not read the file; use shorter or fewer columns", error)
        self.assertFalse((self.folder / "p.sas7bdat").exists())
        names = [f"c{i}" for i in range(10_000)]
        error = self.convert(",".join(names) + "\n", "o.xpt", status=1)
        self.assertIn("ERROR while writing SAS transport file '", error)
        self.assertIn("the format cannot hold the 10000 columns of the table", error)

    def test_a_factor_below_1_cuts_no_text(self):
        self.assertEqual(self.convert("t\nabcdefgh\n", "o.sas7bdat", "--writer", "f1=0.5"), "")
        self.assertIn(b"abcdefgh", self.content("o.sas7bdat"))

    def test_characters_that_cannot_be_stored(self):
        for target in ("o.sas7bdat", "o.xpt"):
            found = self.convert("k,t\n1,ab\n2,a\0b\n3,\0\0\n", target, "--reader", "types=K,U")
            self.assertIn("replaced 3 characters that cannot be stored; the first is in row 2, column 't'", found)
        self.assertIn(b"a b", self.content("o.xpt"))

    def test_rows_larger_than_the_memory(self):
        if any(b"__" + name + b"_init" in pathlib.Path(CORVANTA).read_bytes() for name in (b"asan", b"tsan")):
            self.skipTest("sanitizers reserve more than the limit")
        names = [f"c{i}" for i in range(3000)]
        (self.folder / "in.csv").write_text(",".join(names) + "\n" + ",".join("x" * 3000) + "\n")
        widths = "".join(f"<CD n='{name}' l='32767'/>" for name in names)
        (self.folder / "a.graph").write_text(
            f"<graph version='4.11'><action id='a'><readCSV fileName='in.csv'/></action><action id='b'><writeSAS fileName='o.sas7bdat'>"
            f"<StringColDef>{widths}</StringColDef></writeSAS></action><link from='a:0' to='b:0'/></graph>")
        done = subprocess.run([CORVANTA, "run", "a.graph"], cwd=self.folder, capture_output=True, text=True, timeout=120,
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (420_000_000, 420_000_000)))
        self.assertEqual((done.returncode, done.stderr), (1, "[b] Error: 'writeSAS': not enough memory\n"))
        self.assertFalse((self.folder / "o.sas7bdat").exists())

    def test_a_full_folder_for_temporary_files(self):
        table = "t\n" + ("x" * 100 + "\n") * 200_000
        (self.folder / "in.csv").write_text(table)
        done = subprocess.run([CORVANTA, "convert", "in.csv", "o.xpt"], cwd=self.folder, capture_output=True, text=True, timeout=120,
                              env={"TMPDIR": str(self.folder / "none"), "QT_QPA_PLATFORM": "offscreen"})
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, "ERROR while writing SAS transport file .*: the rows cannot be kept in a temporary file in the folder '.*none'")
        self.assertRegex(done.stderr, "Reason: .*No such file or directory")
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["in.csv"])


if __name__ == "__main__":
    unittest.main()
