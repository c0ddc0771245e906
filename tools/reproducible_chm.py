#!/usr/bin/env python3
"""Removes the time of compilation from a help file, so that the same sources give the same bytes.

The time is in the file's header, where readers use it to distinguish versions, and in the first entry of the #SYSTEM
table. Both are replaced by a checksum of the rest of the file.
"""
import sys
import zlib

HEADER_TIME = slice(0x10, 0x14)
SYSTEM_START = b"\x03\x00\x00\x00" b"\x0a\x00\x04\x00"  # the table's version, then entry 10 with 4 bytes


def main() -> int:
    path = sys.argv[1]
    with open(path, "rb") as file:
        data = bytearray(file.read())
    if data[:4] != b"ITSF" or data.count(SYSTEM_START) != 1:
        print(f"reproducible_chm.py: {path} is not a help file written by chmcmd", file=sys.stderr)
        return 1
    at = data.index(SYSTEM_START) + len(SYSTEM_START)
    data[HEADER_TIME] = data[at : at + 4] = bytes(4)
    stamp = zlib.crc32(data)
    data[HEADER_TIME] = stamp.to_bytes(4, "big")
    data[at : at + 4] = stamp.to_bytes(4, "little")
    with open(path, "wb") as file:
        file.write(data)
    return 0


if __name__ == "__main__":
    sys.exit(main())
