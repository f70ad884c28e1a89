"""JPEG and PNG files with metadata that programs seldom write, byte by byte."""
import os
import struct
import subprocess
import zlib


def segment(marker, contents):
    return bytes([0xFF, marker]) + struct.pack(">H", len(contents) + 2) + contents


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def directory(records, at, following=0):
    """A little-endian TIFF directory at `at`, and its values behind it. A record is a tag, a type,
    a count, and the value's bytes or where it stands."""
    out, values = struct.pack("<H", len(records)), b""
    behind = at + 2 + 12 * len(records) + 4
    for tag, kind, count, value in records:
        if isinstance(value, bytes) and len(value) > 4:
            offset = behind + len(values)
            values += value + b"\0" * (len(value) % 2)
            value = offset
        out += struct.pack("<HHI", tag, kind, count)
        out += value.ljust(4, b"\0") if isinstance(value, bytes) else struct.pack("<I", value)
    return out + struct.pack("<I", following) + values


def text(tag, words):
    return tag, 2, len(words) + 1, words.encode() + b"\0"


def nikon(note, tail):
    """Offsets count from a header within the note. A text and a scanner's directory stand outside
    of it."""
    base = note + 10
    records = [(0x0001, 7, 4, b"0210"), (0x0004, 2, 9, tail - base), (0x0E10, 4, 1, tail + 16 - base)]
    scan = directory([text(0x02, "Slide film"), text(0x40, "Multi")], tail + 16 - base)
    return (b"Nikon\0\2\x10\0\0II*\0\x08\0\0\0" + directory(records, 8),
            b"FINE    \0".ljust(16, b"\0") + scan)


def canon(note, tail):
    """Offsets count from the block. Two texts stand outside of the note."""
    records = [(0x0006, 2, 20, tail), text(0x0007, "Firm 1"), (0x0009, 2, 12, tail + 20)]
    return directory(records, note), b"a text outside it\0\0\0the owner\0\0\0"


def exif(make, maker, thumbnail, claimed):
    """A block with a note, a thumbnail and, last, what the note has outside of it. `claimed` bytes
    more than the thumbnail has are said to be its."""
    note_at, second_at, tail_at = 1000, 2000, 3000
    for _ in range(4):  # until every part stands where the others say
        note, tail = maker(note_at, tail_at)
        first = [text(0x10F, make), text(0x110, "One"), (0x112, 3, 1, b"\6\0")]
        exif_at = 8 + len(directory(first + [(0x8769, 4, 1, 0)], 8))
        records = [(0x9000, 7, 4, b"0232"), text(0x9003, "2024:05:06 07:08:09"),
                   (0x927C, 7, len(note), note_at)]
        block = b"II*\0\x08\0\0\0" + directory(first + [(0x8769, 4, 1, exif_at)], 8, second_at)
        block += directory(records, exif_at)
        note_at = len(block)
        block += note + b"\0" * (len(note) % 2)
        second_at = len(block)
        block += directory([(0x103, 3, 1, b"\6\0"), (0x201, 4, 1, second_at + 54),
                            (0x202, 4, 1, len(thumbnail) + claimed)], second_at).ljust(54, b"\0")
        block += thumbnail + b"\0" * (len(thumbnail) % 2)
        tail_at = len(block)
    return block + tail


def ciff():
    value = b"A description\0"
    record = struct.pack("<HHII", 1, 0x0805, len(value), 0)
    return (b"II\x1A\0\0\0HEAPJPGM\2\0\1\0" + b"\0" * 8 + value + record +
            struct.pack("<I", len(value)))


def files(jpeg, png, folder):
    """Makes them of a plain JPEG and a plain PNG, and returns their paths."""
    made = []
    small = subprocess.run(["convert", jpeg, "-resize", "16x16", "-strip", "jpg:-"],
                           capture_output=True, check=True).stdout

    def make(name, source, at, added):
        data = open(source, "rb").read()
        made.append(os.path.join(folder, name))
        with open(made[-1], "wb") as out:
            out.write(data[:at] + added + data[at:])

    behind_jfif, behind_header = 20, 33
    make("comments.jpg", jpeg, behind_jfif, segment(0xFE, b"one") + segment(0xFE, b"another"))
    make("ciff.jpg", jpeg, behind_jfif, segment(0xE0, ciff()))
    dates = directory([text(0xC353, "2001:02:03 04:05:06")], 8)
    make("segments.jpg", jpeg, behind_jfif, b"".join(segment(*parts) for parts in (
        (0xE3, b"Meta\0\0II*\0\x08\0\0\0" + dates), (0xEC, b"[picture info]\nResolution=1\n"),
        (0xE9, b"nobody's"), (0xEA, b"UNICODE\0" + "wide".encode("utf-16-be")),
        (0xEC, b"Ducky\0\1\0\4\0\0\0\x32\0\0"), (0xEF, b"Q 90\0"))))
    for name, make_name, maker in (("nikon", "NIKON", nikon), ("canon", "Canon", canon)):
        for claimed in (0, 40):
            block = exif(make_name, maker, small, claimed)
            make(f"{name}{claimed}.jpg", jpeg, behind_jfif, segment(0xE1, b"Exif\0\0" + block))
    make("texts.png", png, behind_header,
         chunk(b"tEXt", b"Make\0Somebody") + chunk(b"tEXt", b"Comment\0one") +
         chunk(b"iTXt", b"Comment\0\0\0de\0Kommentar\0zwei") +
         chunk(b"oFFs", struct.pack(">IIB", 3, 4, 0)))
    words = os.path.join(folder, "words.txt")
    with open(words, "w") as out:
        out.write("long " * 30000)
    for source in (jpeg, png):
        made.append(os.path.join(folder, "longxmp" + os.path.splitext(source)[1]))
        subprocess.run(["exiftool", "-q", "-q", f"-XMP-dc:Description<={words}", "-XMP-dc:Title=T",
                        "-XMP-photoshop:History=H", "-o", made[-1], source], check=True)
    return made
