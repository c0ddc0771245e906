#!/usr/bin/env python3
"""Compares camtool export with a simple script: both convert a recording of a million records (57 MB) to
comma-separated values and must write the same bytes. Called by export_benchmark.sh.

    export_benchmark.py WORK_FOLDER COMMAND...      the command for camtool
"""
import random
import resource
import struct
import subprocess
import sys
import time
import zlib
from pathlib import Path

RECORDS = 1_000_000


def make_recording(path: Path) -> None:
    choose = random.Random(1)
    with path.open("wb") as file:
        header = b"\x89TWR\r\n\x1a\n" + struct.pack("<IIQIII", 40, 1, 0, 38400, 3, 0)
        file.write(header + struct.pack("<I", zlib.crc32(header)))
        for number in range(RECORDS):
            data = ",".join(f"{choose.randrange(768):04}" for _ in range(8)).encode() + b"\r\n"
            chunk = struct.pack("<HHQ", len(data), len(data) ^ 0xFFFF, number * 10753) + data
            file.write(chunk + struct.pack("<I", zlib.crc32(chunk)))
        chunk = struct.pack("<HHQ", 0, 0xFFFF, RECORDS * 10753)
        file.write(chunk + struct.pack("<I", zlib.crc32(chunk)))


def script(source: str, target: str) -> None:
    """The simple script: converts record by record, undamaged recordings only."""
    with open(source, "rb") as file, open(target, "w", newline="\n", encoding="ascii") as out:
        file.read(40)
        out.write("seconds,x1,y1,x2,y2,x3,y3,x4,y4\n")
        while head := file.read(12):
            length, _, microseconds = struct.unpack("<HHQ", head)
            data = file.read(length)
            if zlib.crc32(head + data) != struct.unpack("<I", file.read(4))[0]:
                raise ValueError("damaged")
            if data:
                numbers = ",".join(str(int(field)) for field in data.decode("ascii").split(","))
                out.write(f"{microseconds / 1e6:.6f},{numbers}\n")


def timed(command: list[str]) -> tuple[float, int]:
    """Seconds, and the largest resident memory of any child so far in MB."""
    begin = time.monotonic()
    subprocess.run(command, check=True, stderr=subprocess.DEVNULL)
    return time.monotonic() - begin, resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss // 1024


def main() -> int:
    if sys.argv[1] == "--script":
        script(sys.argv[2], sys.argv[3])
        return 0
    work, camtool = Path(sys.argv[1]), sys.argv[2:]
    recording, ours, theirs = work / "recording.twr", work / "ours.csv", work / "theirs.csv"
    make_recording(recording)
    print(f"{RECORDS} records, {recording.stat().st_size / 1e6:.1f} MB")
    seconds, memory = timed([*camtool, "export", str(recording), str(ours)])
    script_seconds, _ = timed([sys.executable, __file__, "--script", str(recording), str(theirs)])
    same = ours.read_bytes() == theirs.read_bytes()
    ratio = seconds / script_seconds
    print(f"camtool {seconds:.2f} s ({memory} MB), script {script_seconds:.2f} s, ratio {ratio:.2f}, "
          f"{'the same bytes' if same else 'DIFFERENT BYTES'}")
    return 0 if same else 1


if __name__ == "__main__":
    sys.exit(main())
