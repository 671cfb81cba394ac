"""CBOR (RFC 8949) as far as gateway_device.py needs it, for a language without a library of its own."""
import struct


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
