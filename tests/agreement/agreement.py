#!/usr/bin/env python3
"""agreement.py KVTOOL [FILE...]: shows what the library reads and writes to independent programs.

On JPEG, PNG and BMP files that other encoders make here, and on FILE... too:
- each fact of `kvtool metadata` agrees with exiftool;
- a save that changes only the orientation loses, adds and changes nothing else that exiftool shows,
  but for facts of the file and of how its old pixels were stored;
- long XMP that goes to a PNG and back to a JPEG says the same;
- the pixels of a BMP are those that ImageMagick reads;
- exiftool, exiv2, djpeg, pngcheck and ImageMagick read what was saved and warn of nothing that they
  did not say of the source.
"""
import json
import os
import re
import subprocess
import sys
import tempfile

import crafted

failures = 0


def fail(text):
    global failures
    failures += 1
    print("disagrees:", text)


def run(*command, quiet=True):
    return subprocess.run(command, capture_output=True, text=True, errors="replace", check=not quiet)


def exiftool(path, *options):
    return json.loads(run("exiftool", "-j", "-G1", *options, path).stdout or "[{}]")[0]


# ---- pictures of other encoders

SETS = {
    "plain": [],
    "camera": ["-Make=Acme", "-Model=Acme One", "-Software=Firm 1.0", "-Orientation#=6",
               "-CreateDate=2024:05:06 07:08:09", "-OffsetTimeDigitized=+02:00", "-DateTimeOriginal=2024:05:06 07:08:08",
               "-ModifyDate=2024:05:07 00:00:00", "-ISO=125", "-FNumber=1.8", "-FocalLength=4.25",
               "-GPSLatitude=48.8584", "-GPSLatitudeRef=N", "-GPSLongitude=2.2945",
               "-GPSLongitudeRef=W", "-GPSAltitude=35.5", "-GPSAltitudeRef=1",
               "-UserComment=h\u00e9llo", "-XMP-dc:Title=Title", "-XMP-xmp:Rating=4",
               "-IPTC:Keywords=one", "-IPTC:Keywords=two"],
    "south": ["-ExifByteOrder=Little-endian", "-GPSLatitude=33.8568", "-GPSLatitudeRef=S",
              "-GPSLongitude=151.2153", "-GPSLongitudeRef=E", "-ISOSpeed=6400",
              "-DateTimeOriginal=2001:01:31 23:59:59", "-Orientation#=3"],
    "tiffdate": ["-ModifyDate=2020:02:29 12:00:00", "-Model= spaced ", "-Orientation#=8"],
    "xmponly": ["-XMP-tiff:Make=Xmp Maker", "-XMP-dc:Creator=Somebody"],
}


def pictures(folder):
    ppm = os.path.join(folder, "scene.ppm")
    with open(ppm, "wb") as out:
        out.write(b"P6 61 43 255\n")
        out.write(bytes((x * 4 * (c == 0) + y * 5 * (c == 1) + (x ^ y) * 3 * (c == 2)) % 256
                        for y in range(43) for x in range(61) for c in range(3)))
    jpegs = {"baseline": ["cjpeg", "-quality", "90"], "progressive": ["cjpeg", "-progressive"],
             "grey": ["cjpeg", "-grayscale"]}
    for name, command in jpegs.items():
        path = os.path.join(folder, name + ".jpg")
        with open(path, "wb") as out:
            subprocess.run(command + [ppm], stdout=out, check=True)
    run("convert", ppm, "-colorspace", "CMYK", os.path.join(folder, "cmyk.jpg"), quiet=False)
    for kind in ("PNG8", "PNG24", "PNG32", "PNG48", "PNG64", "PNG00"):
        run("convert", ppm, f"{kind}:{os.path.join(folder, kind)}.png", quiet=False)
    run("convert", ppm, "-interlace", "PNG", os.path.join(folder, "interlaced.png"), quiet=False)
    run("convert", ppm, "-colorspace", "Gray", os.path.join(folder, "grey.png"), quiet=False)
    bmps = {"BMP2": [], "BMP3": [], "BMP": [], "BMP3-rle": ["-colors", "99", "-compress", "RLE"],
            "BMP2-palette": ["-colors", "200"], "BMP3-16colours": ["-colors", "16"],
            "BMP3-mono": ["-monochrome"], "BMP-alpha": ["-alpha", "set", "-channel", "A", "-fx", "i/w"]}
    for name, options in bmps.items():
        run("convert", ppm, *options, f"{name.split('-')[0]}:{os.path.join(folder, name)}.bmp",
            quiet=False)
    plain = [os.path.join(folder, f) for f in sorted(os.listdir(folder)) if not f.endswith("ppm")]
    made = []
    for path in plain:
        for name, tags in SETS.items():
            stem, extension = os.path.splitext(path)
            copy = f"{stem}-{name}{extension}"
            if tags:
                run("exiftool", "-q", "-codedcharacterset=utf8", *tags, "-o", copy, path)
            else:
                os.link(path, copy)
            if os.path.exists(copy):
                made.append(copy)
    return made


# ---- facts

def expected_facts(path):
    tags = exiftool(path, "-n")

    def first(*names):
        for name in names:
            if name in tags:
                return tags[name]
        return None

    facts = {
        "width": first("File:ImageWidth", "PNG:ImageWidth"),
        "height": first("File:ImageHeight", "PNG:ImageHeight"),
        "orientation": first("IFD0:Orientation", "XMP-tiff:Orientation"),
        "make": first("IFD0:Make", "XMP-tiff:Make"),
        "model": first("IFD0:Model", "XMP-tiff:Model"),
        "software": first("IFD0:Software", "XMP-tiff:Software"),
        "iso": first("ExifIFD:ISOSpeed", "ExifIFD:ISO"),
        "fNumber": first("ExifIFD:FNumber"),
        "focalLength": first("ExifIFD:FocalLength"),
        "livePhotoIdentifier": first("Apple:ContentIdentifier", "Apple:MediaGroupUUID"),
        "profile": first("ICC_Profile:ProfileDescription"),
        "fileSize": first("System:FileSize"),
    }
    if any(name.startswith("ExifIFD:") for name in tags):
        for name, offset in (("ExifIFD:CreateDate", "OffsetTimeDigitized"),
                             ("ExifIFD:DateTimeOriginal", "OffsetTimeOriginal"),
                             ("IFD0:ModifyDate", "OffsetTime")):
            if text := tags.get(name):
                facts["date"] = (text[:10].replace(":", "-") + "T" + text[11:19] +
                                 tags.get("ExifIFD:" + offset, ""))
                break
    latitude, longitude = first("GPS:GPSLatitude"), first("GPS:GPSLongitude")
    if re.search(r"GPSL(at|ong)itude = .*\n.*string\[", run("exiftool", "-v2", path).stdout):
        latitude = None  # stored as text, which exiftool reads as a number
    if isinstance(latitude, (int, float)) and isinstance(longitude, (int, float)):
        south = tags.get("GPS:GPSLatitudeRef") == "S"
        west = tags.get("GPS:GPSLongitudeRef") == "W"
        facts["latitude"] = -latitude if south else latitude
        facts["longitude"] = -longitude if west else longitude
    return {name: value for name, value in facts.items() if value is not None}


def same(a, b):
    if isinstance(a, (int, float)) and isinstance(b, (int, float)):
        return abs(a - b) <= 1e-9 * max(1, abs(a))
    return str(a).strip() == str(b).strip()


def check_facts(tool, path):
    answer = run(tool, "metadata", "--json", path)
    if answer.returncode:
        return False
    facts, wanted = json.loads(answer.stdout)["facts"], expected_facts(path)
    for name in sorted(set(facts) | set(wanted)):
        if not same(facts.get(name), wanted.get(name)):
            fail(f"{path}: {name} is {facts.get(name)!r}, exiftool says {wanted.get(name)!r}")
    return True


# ---- saving

# What is of the file, of the old pixels and their thumbnail, or computed from the rest.
NOT_KEPT = ("SourceFile", "System:", "File:", "ExifTool:", "Composite:", "IFD1:", "MPF", "Adobe:",
            "ICC", "IFD0:Thumbnail", "JFIF:Thumbnail", "PNG:Palette", "PNG:Transparency",
            "PNG:SignificantBits", "PNG:BackgroundColor", "PNG:ProfileName")
SET_ANEW = ("Orientation", "ExifImageWidth", "ExifImageHeight", "ImageWidth", "ImageHeight",
            "BitDepth", "ColorType", "Compression", "Filter", "Interlace")


def kept_values(path):
    """What exiftool shows that a save has to keep: the values of each tag, however many."""
    tags = json.loads(run("exiftool", "-j", "-G1:4", "-a", "-u", "-n", path).stdout)[0]
    kept = {}
    for name, value in tags.items():
        name = re.sub(r":Copy\d+:", ":", name)  # by which the values of one name are told apart
        if name == "File:Comment" or not (name.startswith(NOT_KEPT) or
                                          name.split(":")[-1] in SET_ANEW):
            kept.setdefault(name, []).append(str(value))
    return {name: sorted(values) for name, values in kept.items()}


def complaints(path):
    """What independent readers say against a file, without its name."""
    said = set()
    tags = exiftool(path, "-a", "-warning", "-error")
    said.update(str(value) for name, value in tags.items() if name != "SourceFile")
    commands = [["exiv2", "-q", "-pp", path], ["identify", "-regard-warnings", path]]
    commands.append(["pngcheck", "-q", path] if path.endswith("png") else
                    ["djpeg", "-outfile", os.devnull, path])
    for command in commands:
        result = run(*command)
        words = result.stderr if command[0] != "pngcheck" else result.stdout + result.stderr
        said.update(f"{command[0]}: {line}".replace(path, "")
                    for line in words.splitlines() if "No thumbnail" not in line)
        if result.returncode and not words and command[0] != "exiv2":
            said.add(f"{command[0]} fails")
    return said


def check_save(tool, path, session):
    kind = "public.png" if path.lower().endswith("png") else "public.jpeg"
    answer = run(tool, "save", path, "--orientation", "3", "--session", session, "--type", kind)
    written = answer.stdout.strip()
    if re.search("is (damaged|cut off)", answer.stderr) and complaints(path):
        return None  # and the others agree
    if answer.returncode or not written:
        return fail(f"{path}: not saved: {answer.stderr.strip()}")
    before, after = kept_values(path), kept_values(written)
    for name in sorted(set(before) | set(after)):
        if before.get(name) != after.get(name):
            fail(f"{path}: {name} was {before.get(name)!r}, is {after.get(name)!r}")
    if exiftool(written, "-n").get("IFD0:Orientation") != 3:
        fail(f"{path}: the orientation was not saved")
    for line in sorted(complaints(written) - complaints(path)):
        fail(f"{path}: of the saved file: {line}")


def check_pixels(tool, path, folder):
    copy = os.path.join(folder, "pixels.png")
    run(tool, "save", path, "--out", copy)
    differing = run("compare", "-metric", "AE", path, copy, "null:").stderr
    if differing != "0":
        fail(f"{path}: pixels that differ: {differing}")


def check_long_xmp(tool, path, folder):
    def xmp(of):
        tags = exiftool(of, "-a", "-u", "-n")
        return {name: value for name, value in tags.items()
                if name.startswith("XMP") and not name.startswith("XMP-xmpNote")}
    before = xmp(path)
    for name in ("other.png", "other.jpg"):
        path, saved = os.path.join(folder, name), path
        run(tool, "save", saved, "--out", path)
        if len(str(before)) < 100000 or xmp(path) != before:
            fail(f"{saved}: its XMP is not that of {path}")


def main():
    tool, files = os.path.abspath(sys.argv[1]), sys.argv[2:]
    with tempfile.TemporaryDirectory() as folder:
        os.environ["TMPDIR"] = os.environ["HOME"] = os.environ["XDG_CONFIG_HOME"] = folder
        os.environ["TZ"] = "UTC"
        made = os.path.join(folder, "made")
        os.mkdir(made)
        checked = 0
        plain = pictures(made)
        special = crafted.files(os.path.join(made, "baseline.jpg"), os.path.join(made, "PNG24.png"),
                                made)
        for path in special:
            if "longxmp" in path:
                check_long_xmp(tool, path, folder)
        for path in plain + special + files:
            if check_facts(tool, path):
                checked += 1
                check_save(tool, path, "Agreement")
                if path.endswith("bmp"):
                    check_pixels(tool, path, folder)
            elif path not in files:
                fail(f"{path} does not open")
    print(f"agreement: {checked} files, {failures} disagreements")
    sys.exit(failures != 0 or checked == 0)


main()
