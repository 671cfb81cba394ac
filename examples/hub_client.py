#!/usr/bin/env python3
"""A client of the message hub in Python's standard library: asks for the fine-gray configuration,
then sends a command that no hub knows.

usage: hub_client.py PORT [HOST]
"""
import json
import socket
import struct
import sys


def receive(connection, size):
    """Exactly `size` bytes: they come in as many pieces as the network makes of them."""
    data = bytearray()
    while len(data) < size:
        piece = connection.recv(size - len(data))
        if not piece:
            raise EOFError("the hub closed the connection before its reply was complete")
        data += piece
    return bytes(data)


def exchange(connection, command):
    payload = json.dumps(command).encode()
    connection.sendall(struct.pack("<I", len(payload)) + payload)
    (length,) = struct.unpack("<I", receive(connection, 4))
    return json.loads(receive(connection, length))


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
