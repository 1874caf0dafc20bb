"""Reads the image files that orvicam writes, with the standard library alone."""

import struct
import zlib


class Image:
    """Samples by line: a list of lines, each a list of numbers, `channels` of them a pixel."""

    def __init__(self, width, height, channels, maximum, lines, labels, significant_bits=None):
        self.width, self.height, self.channels, self.maximum = width, height, channels, maximum
        self.lines, self.labels, self.significant_bits = lines, labels, significant_bits

    def block_id(self, white):
        """The number in the first 64 pixels of the first line: one bit a pixel, the highest first."""
        bits = [self.lines[0][i * self.channels:(i + 1) * self.channels] for i in range(64)]
        assert all(set(pixel) in ({0}, {white}) for pixel in bits), bits
        return int("".join("1" if pixel[0] == white else "0" for pixel in bits), 2)


def words(data, size):
    return list(data) if size == 1 else list(struct.unpack(f">{len(data) // 2}H", data))


def unfilter(data, height, stride, pixel_bytes):
    """Undoes the PNG filters None, Sub and Up."""
    lines, previous = [], bytes(stride)
    for y in range(height):
        kind, line = data[y * (stride + 1)], bytearray(data[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        if kind == 1:
            for i in range(pixel_bytes, stride):
                line[i] = (line[i] + line[i - pixel_bytes]) & 0xFF
        elif kind == 2:
            for i in range(stride):
                line[i] = (line[i] + previous[i]) & 0xFF
        else:
            assert kind == 0, kind
        lines.append(bytes(line))
        previous = line
    return lines


def read_png(path):
    data = path.read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    labels, body, bits, at = {}, b"", None, 8
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        chunk = data[at + 8:at + 8 + length]
        assert zlib.crc32(kind + chunk) == struct.unpack(">I", data[at + 8 + length:at + 12 + length])[0]
        at += 12 + length
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", chunk[:10])
        elif kind == b"tEXt":
            key, value = chunk.split(b"\0", 1)
            labels[key.decode()] = value.decode()
        elif kind == b"sBIT":
            bits = chunk[0]
        elif kind == b"IDAT":
            body += chunk
    channels, size = {0: 1, 2: 3}[colour], depth // 8
    lines = unfilter(zlib.decompress(body), height, width * channels * size, channels * size)
    return Image(width, height, channels, (1 << depth) - 1, [words(line, size) for line in lines], labels, bits)


def read_pnm(path):
    data = path.read_bytes()
    lines, labels = [], {}
    while len(lines) < 3:
        line, data = data.split(b"\n", 1)
        if line.startswith(b"#"):
            key, value = line[1:].decode().split(None, 1)
            labels[key] = value
        else:
            lines.append(line.decode())
    channels = {"P5": 1, "P6": 3}[lines[0]]
    width, height = map(int, lines[1].split())
    maximum = int(lines[2])
    samples = words(data, 1 if maximum < 256 else 2)
    stride = width * channels
    assert len(samples) == stride * height
    return Image(width, height, channels, maximum, [samples[y * stride:(y + 1) * stride] for y in range(height)], labels)
