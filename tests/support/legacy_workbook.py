"""Makes small legacy workbooks (BIFF 2 to 8) for tests, as bare record streams or as compound files."""
import struct

SECTOR = 512
MINI = 64
END, FREE, FAT = 0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFD
BOF = {2: (0x0009, b"\x02\x00"), 3: (0x0209, b"\x03\x00"), 4: (0x0409, b"\x04\x00"), 5: (0x0809, b"\x00\x05"), 8: (0x0809, b"\x00\x06")}


def record(number, data=b""):
    return struct.pack("<HH", number, len(data)) + data


def bof(biff, kind):
    number, version = BOF[biff]
    return record(number, version + struct.pack("<H", kind) + (bytes(4) if biff >= 5 else bytes(2)))


def text8(text, length="<H"):
    """A BIFF 8 text with its length."""
    if all(ord(c) < 256 for c in text):
        return struct.pack(length + "B", len(text), 0) + text.encode("latin-1")
    units = text.encode("utf-16le")
    return struct.pack(length + "B", len(units) // 2, 1) + units


def label(biff, row, column, text):
    if biff == 8:
        return record(0x0204, struct.pack("<HHH", row, column, 0) + text8(text))
    encoded = text.encode("cp1252")
    if biff == 2:
        return record(0x0004, struct.pack("<HH3xB", row, column, len(encoded)) + encoded)
    return record(0x0204, struct.pack("<HHHH", row, column, 0, len(encoded)) + encoded)


def number(biff, row, column, value, xf=0):
    if biff == 2:
        return record(0x0003, struct.pack("<HHBBBd", row, column, xf, 0, 0, value))
    return record(0x0203, struct.pack("<HHHd", row, column, xf, value))


def sheet(biff, cells, kind=0x10):
    return bof(biff, kind) + cells + record(0x0A)


def workbook(biff, sheets, extra=b""):
    """Globals and sheets of BIFF 5 or 8. A sheet is (name, cells) or (name, cells, state, kind)."""
    def globals_of(offsets):
        out = bof(biff, 0x05) + extra
        for (name, _, *more), offset in zip(sheets, offsets):
            state, kind = more or (0, 0)
            stored = text8(name, "<B") if biff == 8 else struct.pack("<B", len(name)) + name.encode("cp1252")
            out += record(0x85, struct.pack("<IBB", offset, state, kind) + stored)
        return out + record(0x0A)

    streams = [sheet(biff, cells, 0x20 if more[1:] == [2] else 0x10) for _, cells, *more in sheets]
    at, offsets = len(globals_of([0] * len(sheets))), []
    for stream in streams:
        offsets.append(at)
        at += len(stream)
    return globals_of(offsets) + b"".join(streams)


def entry(name, kind, child, first, size):
    stored = name.encode("utf-16le")
    return (stored.ljust(64, b"\0") + struct.pack("<HBBIII", len(stored) + 2 if name else 0, kind, 1, FREE, FREE, child)
            + bytes(36) + struct.pack("<IQ", first, size))


def compound(stream, name="Workbook"):
    """A compound file with one stream, in mini sectors if it is short."""
    mini = len(stream) < 4096
    unit = MINI if mini else SECTOR
    units = max(1, -(-len(stream) // unit))
    chain = list(range(1, units)) + [END]
    padded = stream.ljust(units * unit, b"\0")
    padded = padded.ljust(-(-len(padded) // SECTOR) * SECTOR, b"\0")
    data_sectors = len(padded) // SECTOR
    mini_fat = struct.pack(f"<{units}I", *chain) if mini else b""
    mini_fat = mini_fat.ljust(-(-len(mini_fat) // SECTOR) * SECTOR, b"\xff")
    mini_sectors = len(mini_fat) // SECTOR
    # The sectors: directory, mini FAT, data, FAT.
    first_data = 1 + mini_sectors
    used = first_data + data_sectors
    fat_sectors = 1
    while fat_sectors * 128 < used + fat_sectors:
        fat_sectors += 1
    fat = [END]
    for count, first in ((mini_sectors, 1), (data_sectors, first_data)):
        fat += [first + i + 1 for i in range(count - 1)] + ([END] if count else [])
    fat += [FAT] * fat_sectors
    fat += [FREE] * (fat_sectors * 128 - len(fat))
    root = entry("Root Entry", 5, 1, first_data if mini else END, len(padded) if mini else 0)
    directory = root + entry(name, 2, FREE, 0 if mini else first_data, len(stream)) + entry("", 0, FREE, 0, 0) * 2
    header = (bytes.fromhex("d0cf11e0a1b11ae1") + bytes(16) + struct.pack("<HHHHH", 0x3E, 3, 0xFFFE, 9, 6) + bytes(6)
              + struct.pack("<IIIIIIIII", 0, fat_sectors, 0, 0, 4096, 1 if mini else END, mini_sectors, END, 0))
    difat = [used + i for i in range(fat_sectors)]
    header += struct.pack("<109I", *(difat + [FREE] * (109 - len(difat))))
    return header + directory + mini_fat + padded + struct.pack(f"<{len(fat)}I", *fat)
