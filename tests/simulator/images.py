#!/usr/bin/env python3
"""images.py FILE KIND ARGUMENT... [, FILE KIND ARGUMENT...]...

Writes images that a board takes, and others that only the named field makes wrong. KIND ARGUMENT... is one of

firmware TARGET PAYLOAD...       for the chip, version v1.2; payloads are a text or TEXT*COUNT
vexa VERSION PAYLOAD...          for the frame-rate converter
hdcp SIZE RECEIVER NUMBER        a key of so many bytes, its receiver's number (10 hexadecimal digits) at a place
edid SHOWN SIZE PLACE=VALUE...   what a call showed, with bytes changed; checksums are made right
spoilt SHOWN SIZE PLACE=VALUE... the same, but for the checksums
bmp NAME=VALUE...                two rows of two pixels, with other fields of the headers
"""

import struct
import sys
import zlib


def text(words):
    parts = (word.partition("*") for word in words)
    return b"".join(part.encode() * int(count or 1) for part, _, count in parts)


def firmware(target, *words):
    payload = text(words)
    head = struct.pack("<8sIII24s", b"BOARDFW1", int(target), len(payload), zlib.crc32(payload), b"v1.2")
    return head + struct.pack("<I", zlib.crc32(head)) + payload


def vexa(version, *words):
    payload = text(words)
    return b"VEXA" + struct.pack("<III", int(version), len(payload), zlib.crc32(payload)) + payload


def hdcp(size, receiver, number):
    key = bytearray(b"\x42" * (int(size) - 4))
    key[int(receiver):int(receiver) + 5] = bytes.fromhex(number)
    return key + struct.pack(">I", zlib.crc32(key))


def spoilt(shown, size, *changes):
    import re  # which takes longer than all the rest
    digits = re.sub(r"\((\w+)\)\*(\d+) ?", lambda part: part[1] * int(part[2]), re.search("<(.*)>", shown)[1])
    data = bytearray.fromhex(digits)[:int(size)]
    for place, _, value in (change.partition("=") for change in changes):
        data[int(place)] = int(value, 0)
    return data


def edid(*arguments):
    data = spoilt(*arguments)
    for block in range(0, len(data), 128):
        data[block + 127] = -sum(data[block:block + 127]) % 256
    return data


def bmp(*changes):
    fields = {"type": "BM", "offset": 0, "info": 40, "width": 2, "height": 2, "planes": 1, "bits": 24,
              "compression": 0, "masks": "", "pixels": "01020304050600001112131415160000"}
    fields.update(change.split("=") for change in changes)
    number = {name: int(str(value), 0) & 0xFFFFFFFF for name, value in fields.items()
              if name not in ("type", "masks", "pixels")}
    masks = bytes.fromhex(fields["masks"])
    return struct.pack("<2s8xIIIIHHI20x", fields["type"].encode(), number["offset"] or 54 + len(masks), number["info"],
                       number["width"], number["height"], number["planes"], number["bits"],
                       number["compression"]) + masks + bytes.fromhex(fields["pixels"])


words = sys.argv[1:]
while words:
    end = words.index(",") if "," in words else len(words)
    with open(words[0], "wb") as file:
        file.write(globals()[words[1]](*words[2:end]))
    words = words[end + 1:]
