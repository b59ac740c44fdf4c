"""Writes the seeds of AudioFileReaderFuzzer: the smallest WAV and AIFF file of each kind that the reader takes, and one
for each reason it has to refuse one. Names begin with yes_ or no_.

    python3 tests/fuzz/make_audio_corpus.py
"""

import pathlib
import struct

CORPUS = pathlib.Path(__file__).parent / "corpus" / "audiofilereader"
GUID_TAIL = bytes.fromhex("000000001000800000aa00389b71")


def chunk(order, name, body, size=None):
    head = name + struct.pack(order + "I", len(body) if size is None else size)
    return head + body + b"\0" * (len(body) % 2)


def wav(tag=1, channels=1, rate=44100, bits=16, data=b"\1\2\3\4\5\6\7\x88", align=None, sub=None, size=None, extra=b""):
    align = channels * ((bits + 7) // 8) if align is None else align
    body = struct.pack("<HHIIHH", tag, channels, rate, rate * align, align, bits)
    if sub is not None:
        body += struct.pack("<HHIH", 22, bits, 0, sub) + GUID_TAIL
    chunks = chunk("<", b"fmt ", body) + extra + chunk("<", b"data", data, size)
    return b"RIFF" + struct.pack("<I", 4 + len(chunks)) + b"WAVE" + chunks


def extended(rate):
    exponent = rate.bit_length() - 1
    return struct.pack(">HQ", 16383 + exponent, rate << (63 - exponent))


def aiff(channels=1, rate=44100, bits=16, data=b"\1\2\3\4\5\6\7\x88", kind=None, frames=None, offset=0, size=None):
    frames = len(data) // (channels * ((bits + 7) // 8)) if frames is None else frames
    common = struct.pack(">HIH", channels, frames, bits) + extended(rate)
    if kind:
        common += kind + b"\0\0"
    sound = struct.pack(">II", offset, 0) + b"o" * offset + data
    chunks = chunk(">", b"COMM", common) + chunk(">", b"SSND", sound, size)
    return b"FORM" + struct.pack(">I", 4 + len(chunks)) + (b"AIFC" if kind else b"AIFF") + chunks


FLOATS = struct.pack("<4f", 0.5, -2.0, float("nan"), float("inf"))

SEEDS = {
    "yes_u8.wav": wav(bits=8),
    "yes_s16.wav": wav(),
    "yes_s16_stereo.wav": wav(channels=2),
    "yes_s24.wav": wav(bits=24, data=b"\1\2\3\4\5\x86"),
    "yes_s32.wav": wav(bits=32),
    "yes_f32.wav": wav(tag=3, bits=32, data=FLOATS),
    "yes_extensible.wav": wav(tag=0xFFFE, bits=24, sub=1, data=b"\1\2\3"),
    "yes_extensible_f32.wav": wav(tag=0xFFFE, bits=32, sub=3, data=FLOATS),
    "yes_odd_chunk.wav": wav(extra=chunk("<", b"LIST", b"odd")),
    "yes_no_samples.wav": wav(data=b""),
    "yes_s8.aiff": aiff(bits=8),
    "yes_s16.aiff": aiff(),
    "yes_s24_stereo.aiff": aiff(channels=2, bits=24, data=b"\1\2\3\4\5\x86"),
    "yes_s32.aiff": aiff(bits=32),
    "yes_none.aifc": aiff(kind=b"NONE"),
    "yes_sowt.aifc": aiff(kind=b"sowt"),
    "yes_twos.aifc": aiff(kind=b"twos"),
    "yes_fl32.aifc": aiff(kind=b"fl32", bits=32, data=FLOATS),
    "yes_offset.aiff": aiff(offset=3),
    "no_empty": b"",
    "no_other": b"OggS" + b"\0" * 24,
    "no_not_wave.wav": b"RIFF\4\0\0\0AVI ",
    "no_cut_head.wav": wav()[:11],
    "no_format.wav": b"RIFF\x10\0\0\0WAVE" + chunk("<", b"data", b"\1\2\3\4"),
    "no_data.wav": wav()[:36],
    "no_mulaw.wav": wav(tag=7, bits=8),
    "no_extensible_cut.wav": wav(tag=0xFFFE),
    "no_channels.wav": wav(channels=0),
    "no_six_channels.wav": wav(channels=6, data=b"\0" * 12),
    "no_align.wav": wav(align=3),
    "no_half_float.wav": wav(tag=3),
    "no_depth_12.wav": wav(bits=12),
    "no_depth_64.wav": wav(tag=3, bits=64),
    "no_long_data.wav": wav(size=0xFFFFFFFF),
    "no_rate.wav": wav(rate=48000),
    "no_not_aiff.aiff": b"FORM\0\0\0\4ILBM",
    "no_common.aiff": b"FORM\0\0\0\x16AIFF" + chunk(">", b"SSND", b"\0" * 10),
    "no_sound.aiff": aiff()[:38],
    "no_channels.aiff": aiff(channels=3, data=b"\0" * 6),
    "no_odd_rate.aiff": aiff(rate=44099),
    "no_rate.aiff": aiff(rate=48000),
    "no_depth.aiff": aiff(bits=12),
    "no_frames.aiff": aiff(frames=3),
    "no_many_frames.aiff": aiff(frames=0xFFFFFFFF),
    "no_long_sound.aiff": aiff(size=0xFFFFFFF0),
    "no_offset.aiff": aiff(offset=2, size=8),
    "no_ulaw.aifc": aiff(kind=b"ulaw", bits=8),
}


def main():
    CORPUS.mkdir(parents=True, exist_ok=True)
    for old in CORPUS.iterdir():
        old.unlink()
    for name, data in SEEDS.items():
        (CORPUS / name).write_bytes(data)


if __name__ == "__main__":
    main()
