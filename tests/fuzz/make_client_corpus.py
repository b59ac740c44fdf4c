"""Writes the seeds of ClientDecoderFuzzer from the vectors of the client's link: streams of packets, each a byte that tells its
length and the packet, and messages alone.

    python3 tests/fuzz/make_client_corpus.py
"""

import json
import pathlib
import re

HERE = pathlib.Path(__file__).resolve().parent
VECTORS = HERE.parents[1] / "data" / "client" / "hid_vectors.json"
CORPUS = HERE / "corpus" / "clientdecoder"

LARGEST = 2000  # bytes of a seed


def packets(frames, as_reports):
    stream = b""
    for frame in frames:
        text, _, count = frame.partition("*")
        packet = bytes.fromhex(text)
        if as_reports:
            packet = b"\0" + packet[:63].ljust(63, b"\0")
        stream += (bytes([len(packet)]) + packet) * int(count or 1)
    return stream


def main():
    vectors = json.loads(VECTORS.read_text())
    seeds = {}
    for group in ("messages", "streams"):
        for entry in vectors[group]:
            for as_reports in (False, True) if group == "streams" else (False,):
                form = "reports" if as_reports else "frames"
                seeds[f"{group} {entry['about']} {form}"] = packets(entry["frames"], as_reports)
    for group in ("messages", "bad"):
        for entry in vectors[group]:
            seeds[f"{group} {entry['about']} alone"] = bytes.fromhex(entry["bytes"])
    CORPUS.mkdir(parents=True, exist_ok=True)
    for old in CORPUS.iterdir():
        old.unlink()
    for about, data in seeds.items():
        if len(data) <= LARGEST:
            (CORPUS / re.sub(r"[^a-z0-9.-]+", "_", about.lower())).write_bytes(data)


if __name__ == "__main__":
    main()
