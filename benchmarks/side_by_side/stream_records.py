#!/usr/bin/python3
"""Simulates a camera on a pseudo-terminal: stream_records.py LINK RECORDS_A_SECOND SECONDS

Creates a pseudo-terminal, links LINK to its far end and sends records of three moving points to it. Records that the
far end does not read are dropped, as on a serial line. Prints the numbers of sent and dropped records.
"""

import math
import os
import pty
import sys
import time
import tty


def record(step):
    """The 41 bytes of one record; the fourth point is not seen."""
    angle = step * 0.03
    points = (
        (512 + 400 * math.cos(angle), 384 + 300 * math.sin(angle)),
        (512 + 300 * math.cos(angle * 1.3), 384 + 200 * math.sin(angle * 0.7)),
        (512 + 200 * math.cos(angle * 0.9), 384 + 100 * math.sin(angle * 1.9)),
        (1023, 1023),
    )
    return (",".join(f"{int(value):04d}" for point in points for value in point) + "\r\n").encode()


def main():
    link, rate, seconds = sys.argv[1], float(sys.argv[2]), float(sys.argv[3])
    near, far = pty.openpty()
    tty.setraw(far)
    if os.path.islink(link):
        os.unlink(link)
    os.symlink(os.ttyname(far), link)
    os.set_blocking(near, False)
    start = time.monotonic()
    sent = dropped = 0
    while time.monotonic() - start < seconds:
        try:
            os.write(near, record(sent + dropped))
            sent += 1
        except BlockingIOError:
            dropped += 1
        time.sleep(max(start + (sent + dropped) / rate - time.monotonic(), 0))
    print(f"sent {sent}, dropped {dropped}")


if __name__ == "__main__":
    main()
