"""What a panel shows, as the PNG file that the service brings: colours of 8 bits, not interlaced."""

import struct
import zlib


class Picture:
    def __init__(self, png):
        self.png = png
        self.width, self.height, depth, kind, _, _, interlaced = struct.unpack(">IIBBBBB", png[16:29])
        if png[:8] != b"\x89PNG\r\n\x1a\n" or (depth, interlaced) != (8, 0) or kind not in (2, 6):
            raise ValueError("no picture of the panel")
        self._size = 3 if kind == 2 else 4  # bytes of a pixel
        data, at = b"", 8
        while at < len(png):
            length, name = struct.unpack(">I4s", png[at:at + 8])
            if name == b"IDAT":
                data += png[at + 8:at + 8 + length]
            at += length + 12
        self._rows = zlib.decompress(data)
        self._decoded = [bytes(self.width * self._size)]

    def pixel(self, x, y):
        """Red, green and blue."""
        length = self.width * self._size
        while len(self._decoded) <= y + 1:
            at = (len(self._decoded) - 1) * (length + 1)
            self._decoded.append(self._row(self._rows[at], self._rows[at + 1:at + 1 + length], self._decoded[-1]))
        return tuple(self._decoded[y + 1][x * self._size:x * self._size + 3])

    def _row(self, kind, raw, above):
        """A row of the file, of which each byte is what it adds to those before and above it."""
        if kind == 0:
            return raw
        size, row = self._size, bytearray(raw)
        if kind == 2:
            return bytes((a + b) & 255 for a, b in zip(raw, above))
        for i in range(len(row)):
            left = row[i - size] if i >= size else 0
            corner = above[i - size] if i >= size else 0
            if kind == 1:
                guess = left
            elif kind == 3:
                guess = (left + above[i]) // 2
            else:
                guess = min((left, above[i], corner), key=lambda one: abs(left + above[i] - corner - one))
            row[i] = (row[i] + guess) & 255
        return bytes(row)
