#!/usr/bin/env python3
"""A message hub for one connection in Python's standard library: prints its port, then each frame in hex,
and answers {"error": 0} with a fine-gray configuration.
"""
import json
import socket
import struct


def receive(connection, size):
    """`size` bytes, in as many pieces as they come; fewer when the client closes the connection."""
    data = bytearray()
    while len(data) < size and (piece := connection.recv(size - len(data))):
        data += piece
    return bytes(data)


def main():
    with socket.create_server(("127.0.0.1", 0)) as server:
        print(server.getsockname()[1], flush=True)
        connection, _ = server.accept()
        with connection:
            while len(header := receive(connection, 4)) == 4:
                (length,) = struct.unpack("<I", header)
                payload = receive(connection, length)
                print(header.hex(), payload.hex(), flush=True)
                reply = json.dumps({"error": 0, "data": {"level": 4, "mode": 1}}).encode()
                connection.sendall(struct.pack("<I", len(reply)) + reply)


main()
