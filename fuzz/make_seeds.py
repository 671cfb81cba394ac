#!/usr/bin/env python3
"""Writes the seeds of every fuzz target into a folder, made from the examples and the shipped files, and a
dictionary of the keys
that the sources know.

    fuzz/make_seeds.py <folder>
"""
import io
import json
import pathlib
import re
import struct
import sys
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
OUT = pathlib.Path(sys.argv[1])
EXAMPLES = ROOT / "examples"
SHIPPED = ROOT / "share"


def seed(target, name, content):
    folder = OUT / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(content)


def archive(entries, **options):
    data = io.BytesIO()
    with zipfile.ZipFile(data, "w", **options) as packed:
        for name, content in entries:
            packed.writestr(name, content)
    return data.getvalue()


def documents():
    calibration = json.loads((EXAMPLES / "gray-calibration.json").read_text())
    gamut = json.loads((EXAMPLES / "measured-gamut.json").read_text())
    points = [dict(zip(("lum", "x", "y"), point)) for point in calibration["red"][:5]]
    yield "gray", {"rMeasure": points, "gMeasure": points, "bMeasure": [],
                   "rGrayCoeffs": [1, 2, 255], "magnitudes": [0],
                   "grayEffectPara": {"switchMG": True}, "grayDetailPara": {"peakInvalid": True, "peakLum": 5},
                   "mgData": {"rMG0Measure": points, "rMGMeasure": [{"measure": points}], "mgCurrentLUTs": [1]}}
    yield "foreign", {"openGray": True, "xbitType": 3, "grayDetailPara": {"peakInvalid": True, "maxLum": 5},
                      "mgData": {"compBase": 4, "maxDataShiftBase": 4}}
    yield "cache", {"grayAdvance": {"maxNum": 4, "wMeasure": points, "coeffs": {}, "lumTargets": {}},
                    "wMeasure1": points}
    yield "nicc", {"vesion": "1.0", "Time": "2026-11-21", "LEDColorGamnut": gamut, "TargetColorGamnut": gamut,
                   "IsOpen": True, "UsedIndex": 3}
    yield "new-nicc", {"GamutName": "Rec.709", "Temperature": 6500, "FromInputStatus": 1}


for name, document in documents():
    seed("documents", name, json.dumps(document).encode())
wall = json.loads((EXAMPLES / "wall.json").read_text())
for device in wall["devices"]:
    device["cabinets"] = device["cabinets"][:2]
seed("wall", "wall", json.dumps(wall).encode())
seed("settings", "shipped", (SHIPPED / "qualityadjust_config/picqualityconfigfile.ini").read_bytes())
seed("settings", "odd", b'k=0\n[ %41 ];c\n"x"=1, "2;"\n\n%U006b\t= \\x41"\r\n[A]\nk=2\\\r\n3\n;c\n[A]x\nk=@Size(1 2)')
for name in ("readings.ti3", "readings.csv", "measured-gamut.json"):
    seed("measurement", name, (EXAMPLES / name).read_bytes())
seed("measurement", "labels", b'"label";x;y;Y\nr;.64;.33;21\ng;.3;.6;72\n"b";.15;.06;7\nw;.3127;.329;100\nk;0;0;0\n')
seed("graytables", "numbers", b"0\n1\n 65535 \r\n-1\nx\n\n70000")
for name, payload in [("ok", b'{"error":0}'), ("data", b'{"error":0,"data":{"level":14,"mode":1}}'),
                      ("text", "测".encode())]:
    frame = struct.pack("<i", len(payload)) + payload
    seed("hub", name, bytes([0, 3, 255, 255]) + frame)
    seed("hub", name + "-twice", bytes([255, 255, 255, 255]) + frame + frame)


def text(value):
    return bytes([0x60 + len(value)]) + value.encode()


# CBOR: a call with a value of each type, a reply with nested lists, an error, a hello.
arguments = (b"\xa7" + text("cids") + b"\xd8\x47\x48" + struct.pack("<Q", 1 << 60) + text("freq") + b"\x18\x3c"
             + text("rGrayCoeffs") + b"\xd8\x40\x43\x00\x01\xff" + text("coeffs") + b"\xd8\x45\x42\x00\x40"
             + text("name") + text("x") + text("w.lum") + b"\xfb" + struct.pack(">d", 0.1) + text("mode") + b"\x20")
for name, payload in [
        ("call", b"\xa5" + text("id") + b"\x01" + text("method") + text("put") + text("device") + text("a")
         + text("timeout_ms") + b"\x0a" + text("arguments") + arguments),
        ("reply", b"\xa2" + text("id") + b"\x01" + text("reply") + b"\xa1" + text("cabinets") + b"\x82\x81"
         + arguments + b"\x80"),
        ("error", b"\xbf" + text("id") + b"\x01" + text("error") + b"\x7f" + text("no") + b"\xff\xff"),
        ("hello", b"\xa2" + text("hello") + b"\x01" + text("simulated") + b"\xf5")]:
    seed("gateway", name, bytes([0, 3, 255, 255]) + struct.pack("<I", len(payload)) + payload)
    seed("gateway", name + "-bare", bytes([255, 255, 255, 255]) + payload)
seed("archive", "flat", archive([("a.nicc", "1"), ("b.gray", "2" * 300)], compression=zipfile.ZIP_DEFLATED))
seed("archive", "folder", archive([("f/", ""), ("f/a.nrf", "1")]))
seed("archive", "upwards", archive([("../a", "1")]))
seed("archive", "empty", archive([]))
seed("archive", "drive", archive([("f/C:a", "1")]))
seed("archive", "comment", archive([("a", "1")])[:-2] + b"\xff\xff" + archive([]) + b"-" * (0xffff - 22))

words = set()
KEY_FOLDERS = ("file", "resource", "service", "simulator", "sender3th", "calibration", "gateway")
for source in (ROOT / "src").rglob("*"):
    if source.suffix in (".cpp", ".h") and source.parts[-2] in KEY_FOLDERS:
        words |= set(re.findall(r'"([A-Za-z][A-Za-z0-9]{1,30})"', source.read_text()))
(OUT / "words.dict").write_text("".join(f'"{word}"\n' for word in sorted(words)))
