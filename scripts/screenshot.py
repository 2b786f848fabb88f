#!/usr/bin/env python3
"""Saves the picture of a VNC server on this machine as a PNG file.

usage: screenshot.py FILE PORT
"""
import socket
import struct
import sys
import zlib


def read(stream, count):
    data = stream.read(count)
    if len(data) != count:
        raise EOFError("the server closed the connection")
    return data


def handshake(sock, stream):
    """Protocol 3.3, no authentication; gives width and height."""
    read(stream, 12)
    sock.sendall(b"RFB 003.003\n")
    (security,) = struct.unpack(">I", read(stream, 4))
    if security != 1:
        raise ConnectionError("the server wants a password")
    sock.sendall(b"\x01")
    width, height = struct.unpack(">HH", read(stream, 4))
    read(stream, 16)
    (length,) = struct.unpack(">I", read(stream, 4))
    read(stream, length)
    return width, height


def fetch(sock, stream, width, height):
    """One whole picture as rows of RGB bytes."""
    sock.sendall(struct.pack(">BxxxBBBBHHHBBBxxx", 0, 32, 24, 0, 1, 255, 255, 255, 16, 8, 0))
    sock.sendall(struct.pack(">BxHi", 2, 1, 0))
    sock.sendall(struct.pack(">BBHHHH", 3, 0, 0, 0, width, height))
    picture = bytearray(width * height * 3)
    left = width * height
    while left > 0:
        if read(stream, 1) != b"\x00":
            continue
        _, count = struct.unpack(">BH", read(stream, 3))
        for _ in range(count):
            x, y, w, h, encoding = struct.unpack(">HHHHi", read(stream, 12))
            if encoding != 0:
                raise ValueError("unexpected encoding %d" % encoding)
            for row in range(y, y + h):
                line = read(stream, w * 4)
                start = (row * width + x) * 3
                picture[start:start + 3 * w:3] = line[2::4]
                picture[start + 1:start + 3 * w:3] = line[1::4]
                picture[start + 2:start + 3 * w:3] = line[0::4]
            left -= w * h
    return picture


def write_png(path, width, height, picture):
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data +
                struct.pack(">I", zlib.crc32(kind + data)))

    rows = b"".join(b"\x00" + bytes(picture[y * width * 3:(y + 1) * width * 3])
                    for y in range(height))
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        file.write(chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)))
        file.write(chunk(b"IDAT", zlib.compress(rows, 9)))
        file.write(chunk(b"IEND", b""))


def main():
    path, port = sys.argv[1], int(sys.argv[2])
    with socket.create_connection(("127.0.0.1", port), timeout=10) as sock:
        stream = sock.makefile("rb")
        width, height = handshake(sock, stream)
        write_png(path, width, height, fetch(sock, stream, width, height))


if __name__ == "__main__":
    main()
