#!/usr/bin/env python3
"""make-firmware.py TARGET VERSION PAYLOAD IMAGE: wraps a file into a firmware image that the simulated board accepts.

TARGET is the target's number, VERSION a text of at most 23 bytes. The format is described in
simulator/upgrade/FirmwareUpgrade.h.
"""

import pathlib
import struct
import sys
import zlib


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    target, version, source, image = int(sys.argv[1]), sys.argv[2].encode(), sys.argv[3], sys.argv[4]
    if not 0 <= target <= 255 or len(version) > 23:
        sys.exit("TARGET is a number from 0 to 255, VERSION a text of at most 23 bytes")
    payload = pathlib.Path(source).read_bytes()
    if not payload:
        sys.exit(f"{source} is empty")
    head = struct.pack("<8sIII24s", b"BOARDFW1", target, len(payload), zlib.crc32(payload), version)
    pathlib.Path(image).write_bytes(head + struct.pack("<I", zlib.crc32(head)) + payload)


main()
