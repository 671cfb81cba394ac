#!/usr/bin/env python3
"""Devices behind a gateway: gateway_device.py WALL.json [PORT] prints its port, serves one client after the other, keeps
what it is sent and gives it back. docs/device-gateway.md has the protocol."""
import base64
import json
import socket
import struct
import sys

from gateway_cbor import decode, encode


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
