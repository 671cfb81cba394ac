#!/usr/bin/env python3
"""Devices behind a gateway in Python's standard library: gateway_device.py WALL.json [PORT] prints its port, serves one
client after the other, keeps what it is sent and gives it back. docs/device-gateway.md has the protocol."""
import base64
import json
import socket
import struct
import sys


def decode(data, at=0):
    """A CBOR value of definite length, and where the next one begins; a list of numbers becomes (tag, bytes)."""
    kind, size, at = data[at] >> 5, data[at] & 31, at + 1
    if size >= 24:
        width = 1 << (size - 24)
        size, at = int.from_bytes(data[at:at + width], "big"), at + width
        if kind == 7:
            return struct.unpack(">d", struct.pack(">Q", size))[0], at
    if kind in (2, 3):
        return (data[at:at + size] if kind == 2 else data[at:at + size].decode()), at + size
    if kind in (0, 1, 7):
        return (size, -1 - size, None, None, None, None, None, size == 21)[kind], at
    values = []
    for _ in range(1 if kind == 6 else size * (kind - 3)):
        value, at = decode(data, at)
        values.append(value)
    if kind == 5:
        return dict(zip(values[::2], values[1::2])), at
    return (values if kind == 4 else (size, values[0])), at


def encode(value):
    def head(kind, size):
        return struct.pack(">BQ", kind << 5 | 27, size)
    if isinstance(value, bool):
        return b"\xf5" if value else b"\xf4"
    if isinstance(value, int):
        return head(0, value) if value >= 0 else head(1, -1 - value)
    if isinstance(value, float):
        return b"\xfb" + struct.pack(">d", value)
    if isinstance(value, (bytes, str)):
        raw = value if isinstance(value, bytes) else value.encode()
        return head(2 if raw is value else 3, len(raw)) + raw
    if isinstance(value, tuple):
        return head(6, value[0]) + encode(value[1])
    if isinstance(value, list):
        return head(4, len(value)) + b"".join(map(encode, value))
    return head(5, len(value)) + b"".join(encode(key) + encode(value[key]) for key in value)


def stored(action, args):
    """What a cabinet holds after a request, under the names by which it is read."""
    if action.startswith("Device_CabinetsCorrect"):
        return {"mode": args["mode"]}
    if action == "Device_CorrectionGrayCoeff":
        return {key: value for key, value in args.items() if key != "cids"}
    if action == "Device_CabinetsColorSpaceNicc":
        return {"target." + key: value for key, value in args.items() if key != "cids"}
    if action == "Device_CabinetsColorSpaceMeasure":
        points = {"measured." + key[13:]: value for key, value in args.items() if key != "cids"}
        return {"measured.name": "", **points}
    if action == "Device_CabinetsColorSpaceCoeff":
        return {"coeffs": args["niccData.coeffs"], "fullScale": args["niccData.r"]}
    return {"bin": (64, base64.b64decode(args["bin"]))}  # Device_M_RvCardBin


def answer(call, wall, held):
    if "hello" in call:
        return {"hello": 1, "simulated": True, "reads": True}
    args, device = call["arguments"], call.get("device")
    if call["method"] == "list":
        return {"id": call["id"], "reply": {"wall": json.dumps(wall)}}
    tag, cids = args.get("cids") or args.get("idList")
    numbers = [number for (number,) in struct.iter_unpack("<Q", cids)]
    if call["method"] == "read":
        states = [held.get((device, number)) for number in numbers]
        return {"id": call["id"], "reply": {"cabinets": [[state] if state else [] for state in states]}}
    if any((device, number) not in held for number in numbers):
        return {"id": call["id"], "error": f"no such cabinet of device {device}"}
    for number in numbers:
        held[device, number].update(stored(call["action"], args))
    mode = {"mode": args["mode"]} if "mode" in args else {}
    return {"id": call["id"], "reply": {"cids": (tag, cids), **mode}}


def serve(connection, wall, held):
    stream = connection.makefile("rwb")
    while len(header := stream.read(4)) == 4:
        call, _ = decode(stream.read(struct.unpack("<I", header)[0]))
        reply = encode(answer(call, wall, held))
        stream.write(struct.pack("<I", len(reply)) + reply)
        stream.flush()


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        wall = json.load(file)
    held = {(device["id"], int(cabinet["cid"])): {"mode": cabinet.get("effectMode", 0)}
            for device in wall["devices"] for cabinet in device["cabinets"]}
    with socket.create_server(("127.0.0.1", int(sys.argv[2]) if len(sys.argv) > 2 else 0)) as server:
        print(server.getsockname()[1], flush=True)
        while True:
            connection, _ = server.accept()
            with connection:
                serve(connection, wall, held)


main()
