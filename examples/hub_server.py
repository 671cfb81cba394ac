#!/usr/bin/env python3
"""A message hub for one connection in Python's standard library: prints its port, then each frame in hex, and answers {"error": 0} with a fine-gray configuration."""
import json
import socket
import struct


def main():
    with socket.create_server(("127.0.0.1", 0)) as server:
        print(server.getsockname()[1], flush=True)
        connection, _ = server.accept()
        with connection:
            while header := connection.recv(4, socket.MSG_WAITALL):
                (length,) = struct.unpack("<I", header)
                payload = connection.recv(length, socket.MSG_WAITALL)
                print(header.hex(), payload.hex(), flush=True)
                reply = json.dumps({"error": 0, "data": {"level": 4, "mode": 1}}).encode()
                connection.sendall(struct.pack("<I", len(reply)) + reply)


main()
