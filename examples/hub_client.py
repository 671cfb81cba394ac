#!/usr/bin/env python3
"""A client of the message hub in Python's standard library: asks for the fine-gray configuration, then sends a command that no hub knows.

usage: hub_client.py PORT [HOST]
"""
import json
import socket
import struct
import sys


def exchange(connection, command):
    payload = json.dumps(command).encode()
    connection.sendall(struct.pack("<I", len(payload)) + payload)
    header = connection.recv(4, socket.MSG_WAITALL)
    (length,) = struct.unpack("<I", header)
    return json.loads(connection.recv(length, socket.MSG_WAITALL))


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    host = sys.argv[2] if len(sys.argv) > 2 else "127.0.0.1"
    with socket.create_connection((host, int(sys.argv[1])), timeout=10) as connection:
        reply = exchange(connection, {"cmd": 17})
        print(f"level {reply['data']['level']}, mode {reply['data']['mode']}")
        reply = exchange(connection, {"cmd": 99})
        print(f"error {reply['error']}: {reply['message']}")


main()
