"""Test vectors for the serial link between the amplifier and its control processor.

They are made by this file's own coder and decoder, which share nothing with the program's: the CRC is the Python
library's crc_hqx, the decoder works on a whole stream at once. For each broken stream the frames that survive are
written down by hand beside it; the decoder has to agree before anything is written.

Keys of the JSON file. Bytes are hexadecimal texts; a type is its code, 0 to 7; each character of a name, U+0000 to U+00FF,
is one byte; a value is its bytes on the line.
    crc      bytes, and their CRC-16/XMODEM
    frames   type, name, value; number (the value of types 0 to 6); and bytes, the whole frame
    refused  type, name, value: no frame exists, as it would not fit the 128 bytes of a sender, or has no good name
    streams  bytes as they come in, and accepted, what a receiver of 128 bytes takes out of them, in order
"""

import binascii
import math
import struct

import vectors

START, END, ESCAPE = 0xF7, 0x7F, 0x7D
BUFFER_BYTES = 128
FORMATS = {0: "<f", 1: "<B", 2: "<H", 3: "<I", 4: "<b", 5: "<h", 6: "<i"}
FLOAT, UINT8, UINT16, UINT32, INT8, INT16, INT32, STRING = range(8)


def crc(data):
    return binascii.crc_hqx(bytes(data), 0)


def content(kind, name, value, check=None):
    """Type, name, value and CRC (or the two bytes that stand in for it), before escaping."""
    covered = struct.pack("<H", kind) + name + b"\0" + value
    return covered + (struct.pack("<H", crc(covered)) if check is None else check)


def escaped(data):
    return b"".join(bytes([ESCAPE, b]) if b in (START, END, ESCAPE) else bytes([b]) for b in data)


def enclosed(data):
    return bytes([START]) + escaped(data) + bytes([END])


def frame(kind, name, value):
    return enclosed(content(kind, name, value))


def with_crc(covered):
    """A frame of anything, under a CRC that is right for it."""
    return enclosed(covered + struct.pack("<H", crc(covered)))


def pack(kind, number):
    return number.encode("latin-1") if kind == STRING else struct.pack(FORMATS[kind], number)


def raw_frames(stream):
    """What lies between a start and its end, unescaped: by scanning the stream from each start to its end."""
    position, found = 0, []
    while True:
        position = stream.find(bytes([START]), position)
        if position < 0:
            return found
        position += 1
        inside = bytearray()
        while position < len(stream):
            byte = stream[position]
            if byte == START:
                break
            position += 1
            if byte == END:
                found.append(bytes(inside))
                break
            if byte == ESCAPE:
                if position == len(stream):
                    return found
                byte = stream[position]
                position += 1
            if len(inside) == BUFFER_BYTES:
                break
            inside.append(byte)


def parse(inside):
    if len(inside) < 5 or crc(inside[:-2]) != struct.unpack("<H", inside[-2:])[0]:
        return None
    kind = struct.unpack("<H", inside[:2])[0]
    name, nul, value = inside[2:-2].partition(b"\0")
    if not name or not nul or not value:
        return None
    if kind in FORMATS:
        if len(value) != struct.calcsize(FORMATS[kind]):
            return None
        if kind == FLOAT and not math.isfinite(struct.unpack("<f", value)[0]):
            return None
    elif kind != STRING:
        return None
    return (kind, name, value)


def decode(stream):
    return [parsed for parsed in map(parse, raw_frames(stream)) if parsed]


# Numbers whose bytes meet every corner: zero, one, the ends of each type, the three marks in each place.
VALUES = {
    FLOAT: (0.0, 1.0, 0.5, -1.0, 0.1, 1e-45, 3.4028234663852886e38, -0.0,
            struct.unpack("<f", b"\xf7\x7d\x7f\x3e")[0], struct.unpack("<f", b"\x7f\xf7\x7d\x3d")[0]),
    UINT8: (0, 1, 0x7D, 0x7F, 0xF7, 255),
    UINT16: (0, 0x7D7F, 0xF77D, 0x7FF7, 65535),
    UINT32: (0, 0x7F7D7F7D, 0xF7F7F7F7, 0x12345678, 4294967295),
    INT8: (0, -1, -128, 127, 0x7D, -9),
    INT16: (0, -1, -32768, 32767, 0x7D7F, -2179),
    INT32: (0, 1, -1, -2147483648, 2147483647, 0x7D7F7D7F, -134744073),
    STRING: ("a", "hello", "}}}}", "\x7f\xf7\x7d", "with\0a NUL", "\0"),
}
PINS = {
    FLOAT: ("PA_0", "PA_1", "PA_2", "PA_3", "PA_4", "PA_5", "PA_6", "PA_7", "PB_0", "PB_1", "PC_0", "PC_1"),
    INT32: ("PB2_AND_PB10", "PC_10", "PF0_AND_PF1", "PF_4", "PF_5"),
}
REQUESTS = (("BOOTING", 0), ("GET_PRODUCT_ID", 1), ("GET_CURRENT_VALUES", 1), ("CLIPPING", 1), ("SET_TEST_MODE", 1))


def searched(wanted):
    """A name whose frame of the value 1 has the byte in the low, and one that has it in the high half of its CRC."""
    for half in (0, 1):
        for number in range(100000):
            name = f"N{number}".encode()
            covered = content(INT32, name, pack(INT32, 1))[:-2]
            if struct.pack("<H", crc(covered))[half] == wanted:
                yield name
                break


def frame_list():
    listed = [(kind, b"V", number) for kind, numbers in VALUES.items() for number in numbers]
    listed += [(kind, pin.encode(), value) for kind, pins in PINS.items() for pin in pins for value in (0, 1)]
    listed += [(FLOAT, b"PA_4", position / 8) for position in range(9)]
    listed += [(INT32, name.encode(), value) for name, value in REQUESTS]
    listed += [(INT32, name, 1) for mark in (START, END, ESCAPE) for name in searched(mark)]
    # A name of marks alone; the longest that fit a sender's buffer.
    listed += [(UINT8, b"\x7d\x7f\xf7", 1), (UINT8, b"n" * 120, 2), (STRING, b"s", "x" * 120)]
    return listed


def refused_list():
    return [(UINT8, b"n" * 121, 2), (STRING, b"s", "x" * 121), (STRING, b"s", "}" * 61), (UINT8, b"", 1),
            (UINT8, b"a\0b", 1), (STRING, b"s", "x" * 1000), (UINT8, b"n" * 1000, 1)]


def stream_list():
    """Name, bytes, and the good frames that come out."""
    half = (FLOAT, b"PA_4", pack(FLOAT, 0.5))
    one = (INT32, b"PF_4", pack(INT32, 1))
    a, b = frame(*half), frame(*one)
    longest = (STRING, b"S", b"x" * (BUFFER_BYTES - 6))
    damaged = bytearray(a)
    damaged[8] ^= 0x01
    yield "nothing", b"", []
    yield "two frames", a + b, [half, one]
    yield "the same frame twice", a + a, [half, half]
    yield "noise around frames", b"\x00\x12\x7f\x7d\xff" + a + b"noise\x7f\x7d" + b, [half, one]
    yield "an escape before the start, outside a frame", b"\x7d" + a, [half]
    yield "ends without a start", b"\x7f\x7f\x7f" + a, [half]
    yield "an empty frame", b"\xf7\x7f" + a, [half]
    yield "a start within a frame begins anew", a[:7] + b, [one]
    yield "starts one after another", b"\xf7\xf7\xf7" + a, [half]
    yield "a frame without its end", a[:-1] + b, [one]
    yield "a frame without its start", a[1:] + b, [one]
    yield "a bit of the value is wrong", bytes(damaged) + b, [one]
    for at in (-2, -1):
        wrong = bytearray(content(*half))
        wrong[at] ^= 0x80
        yield f"byte {at} of the CRC is wrong", enclosed(bytes(wrong)) + b, [one]
    whole = content(*half)
    yield "the CRC's bytes are exchanged", enclosed(whole[:-2] + whole[:-3:-1]) + b, [one]
    yield "no CRC", enclosed(whole[:-2]) + b, [one]
    for count in range(1, 6):
        yield f"{count} bytes of content", enclosed(whole[:count]) + b, [one]
        yield f"{count} bytes under a good CRC", with_crc(whole[:count]) + b, [one]
    yield "an empty name", with_crc(b"\0\0" + b"\0" + pack(FLOAT, 0.5)) + b, [one]
    yield "no NUL behind the name", with_crc(b"\6\0" + b"PF_4" + b"\1\1\1\1") + b, [one]
    # A name that ends in its CRC: its two bytes hold the only NUL.
    for number in range(100000):
        covered = b"\6\0N%d" % number
        if 0 in struct.pack("<H", crc(covered)):
            yield "the only NUL lies in the CRC", with_crc(covered) + b, [one]
            break
    yield "no value", with_crc(b"\6\0" + b"PF_4\0") + b, [one]
    for kind in FORMATS:
        size = struct.calcsize(FORMATS[kind])
        for wrong_size in {1, 2, 3, 4, 5, 8} - {size}:
            yield (f"type {kind} with {wrong_size} bytes", with_crc(struct.pack("<H", kind) + b"V\0" + b"\1" * wrong_size) + b,
                   [one])
    for kind in (8, 9, 0x0100, 0x0600, 0x8000, 0xFFFF, 0x7D7F):
        yield f"type {kind}", frame(kind, b"V", b"\1\2\3\4") + b, [one]
    for text, bits in (("not a number", "0000c07f"), ("a signalling not-a-number", "0100a07f"), ("infinity", "0000807f"),
                       ("minus infinity", "000080ff")):
        yield text, frame(FLOAT, b"PA_4", bytes.fromhex(bits)) + b, [one]
    needless = b"".join(bytes([ESCAPE, byte]) for byte in whole)
    yield "needless escapes", b"\xf7" + needless + b"\x7f" + b, [half, one]
    yield "a start in the value, escaped", frame(INT32, b"PF_4", b"\xf7\0\0\0"), [(INT32, b"PF_4", b"\xf7\0\0\0")]
    yield "an end in the value, not escaped", b"\xf7" + content(INT32, b"PF_4", b"\x7f\0\0\0") + b"\x7f" + b, [one]
    yield "a start in the value, not escaped", b"\xf7" + content(INT32, b"PF_4", b"\xf7\0\0\0") + b"\x7f" + b, [one]
    yield "the longest content", frame(*longest) + b, [longest, one]
    marks = (STRING, b"S", b"}" * (BUFFER_BYTES - 6))
    yield "the longest content, every byte of the value escaped", frame(*marks) + b, [marks, one]
    yield "content of a byte too many", frame(STRING, b"S", b"x" * (BUFFER_BYTES - 5)) + b, [one]
    yield "content of a byte too many, that escaped", frame(STRING, b"S", b"}" * (BUFFER_BYTES - 5)) + b, [one]
    full = content(*longest)
    yield "bytes behind a full content", b"\xf7" + full + b"x\x7f" + b, [one]
    yield "an escaped byte behind a full content", b"\xf7" + full + b"\x7d\xf7\x7f" + b, [one]
    yield "a thousand bytes and no end", b"\xf7" + b"x" * 1000 + b, [one]
    yield "an escape at the end takes the next start with it", a[:5] + b"\x7d" + b + a, [half]
    yield "an end sent first frees the receiver from an escape", a[:5] + b"\x7d" + b"\x7f" + b, [one]
    yield "an end sent first harms nothing", b"\x7f" + a + b"\x7f" + b, [half, one]
    yield "an unknown name is a good frame", frame(FLOAT, b"ZZ_9", pack(FLOAT, 0.25)), [(FLOAT, b"ZZ_9", pack(FLOAT, 0.25))]
    yield "a name of bytes above 127", frame(UINT8, b"\xc3\xa4\xff", b"\1"), [(UINT8, b"\xc3\xa4\xff", b"\1")]


def entry(kind, name, value):
    return {"type": kind, "name": name.decode("latin-1"), "value": value.hex()}


def build():
    frames = []
    for kind, name, number in frame_list():
        made = frame(kind, name, pack(kind, number))
        assert len(made) <= BUFFER_BYTES and decode(made) == [(kind, name, pack(kind, number))]
        shown = {} if kind == STRING else {"number": number}
        frames.append({**entry(kind, name, pack(kind, number)), **shown, "bytes": made.hex()})
    refused = []
    for kind, name, number in refused_list():
        assert not name or 0 in name or len(frame(kind, name, pack(kind, number))) > BUFFER_BYTES
        refused.append(entry(kind, name, pack(kind, number)))
    streams = []
    for about, stream, accepted in stream_list():
        assert decode(stream) == accepted, about
        streams.append({"about": about, "bytes": stream.hex(), "accepted": [entry(*good) for good in accepted]})
    checks = [b"", b"123456789", b"\0", b"\xff\xff", bytes(range(256)), content(INT32, b"BOOTING", pack(INT32, 0))[:-2]]
    assert crc(b"123456789") == 0x31C3
    return {"crc": [{"bytes": data.hex(), "crc": crc(data)} for data in checks], "frames": frames, "refused": refused,
            "streams": streams}


if __name__ == "__main__":
    vectors.main(__doc__, "panel/uart_vectors.json", build)
