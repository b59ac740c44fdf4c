#!/usr/bin/python3
"""Writes the seeds of MessageFuzzer and BatchFuzzer: requests of a desktop client, spelled out byte by byte."""
import pathlib
import struct

CORPUS = pathlib.Path(__file__).parent / "corpus"
PAYLOAD = 60  # bytes in a frame

# Field number << 3 | 2, length, content.
REQUESTS = {
    "connect": "22 04 0a 02 08 01",
    "heartbeat": "22 04 22 02 08 01",
    "profile": "2a 02 08 01",
    "select": "3a 02 08 02",
    "selection": "4a 02 08 01",
    "factory_list": "5a 02 08 01",
    "cabinet_list": "6a 02 08 01",
    "assign_factory": "7a 06 08 01 12 02 41 31",
    "assign_user": "82 01 06 12 04 52 6f 6f 6d",
    "user_list": "8a 01 02 08 01",
    "add": "9a 01 0c 0a 04 48 61 6c 6c 12 04 52 49 46 46",
    "move": "ba 01 04 08 01 10 02",
    "remove": "c2 01 02 08 01",
    "save": "ca 01 02 08 01",
    "sync": "d2 01 02 08 01",
    "hpf": "da 01 05 15 00 00 a0 40",
    "lpf": "e2 01 07 08 01 15 00 00 a0 44",
    "level": "ea 01 07 08 02 15 00 00 40 40",
    "firmware": "f2 01 02 08 01",
    "taper": "82 02 02 08 02",
    "bright": "8a 02 02 08 01",
    "taper_request": "9a 02 02 08 01",
    "bright_request": "a2 02 02 08 01",
    "amplifier": "aa 02 02 08 01",
    "restore": "ba 02 02 08 01",
    "batch_first": "10 01 da 01 05 15 00 00 c8 42",
    "batch_middle": "10 02 82 02 02 08 05",
    "batch_last": "10 03 82 02 02 08 06",
    "no_row": "32 07 0a 05 73 6c 61 74 65",
    "hpf_nan": "da 01 05 15 00 00 c0 7f",
    "negative": "10 ff ff ff ff 0f 4a 02 08 01",
    "padding": "08 01",
}
REQUESTS = {name: bytes.fromhex(text) for name, text in REQUESTS.items()}

# An upload of 215 bytes, for several frames.
UPLOAD = bytes.fromhex("9a 01 d3 01 0a 04 52 61 6d 70 12 ca 01") + bytes(range(202))


def run(*names):
    """An input of BatchFuzzer."""
    return b"".join(struct.pack("<H", len(REQUESTS[name])) + REQUESTS[name] for name in names)


def frames(message):
    """The frames of a message, each as MessageFuzzer takes it."""
    pieces = [message[i : i + PAYLOAD] for i in range(0, len(message), PAYLOAD)]
    taken = []
    for i, piece in enumerate(pieces):
        tag = 0x35 if i == len(pieces) - 1 else 0x33 if i == 0 else 0x34
        taken.append(bytes([3 + len(piece), tag, 0, len(piece)]) + piece)
    return taken


def write(folder, name, data):
    (CORPUS / folder).mkdir(parents=True, exist_ok=True)
    (CORPUS / folder / name).write_bytes(data)


def main():
    write("batch", "cabinet", run("select", "assign_user", "hpf", "lpf", "level", "cabinet_list"))
    write("batch", "save_and_sync", run("assign_factory", "save", "hpf", "sync", "hpf_nan"))
    write("batch", "responses", run("add", "user_list", "move", "remove", "factory_list"))
    write("batch", "settings", run("taper", "bright", "taper_request", "bright_request"))
    write("batch", "amplifier", run("profile", "firmware", "amplifier", "selection"))
    write("batch", "restore", run("add", "restore", "user_list"))
    write("batch", "first_to_last", run("batch_first", "batch_middle", "batch_last"))
    write("batch", "never_ends", run("batch_first", "batch_middle", "batch_middle"))
    write("batch", "connection", run("connect", "heartbeat", "padding", "no_row", "negative"))
    write("batch", "broken", b"\x04\x00\xff\xff\xff\xff" + run("select") + b"\xf4\x01cut")

    for name in ("connect", "add", "select", "hpf", "taper", "batch_last", "negative", "no_row"):
        write("message", name, b"".join(frames(REQUESTS[name])))
    upload = frames(UPLOAD)
    write("message", "several_frames", b"".join(upload))
    write("message", "start_twice", b"".join(upload[:1] + upload))
    write("message", "continue_first", b"".join(upload[1:]))
    write("message", "end_lost", b"".join(upload[:2] + frames(REQUESTS["select"])))
    write("message", "padded", b"\x3f\x35\x00\x04" + REQUESTS["selection"] + bytes(56))
    write("message", "size_lies", b"\x0a\x35\x00\x28" + bytes(7) + b"\x04\x35\xff\xff\x01")
    write("message", "no_payload", b"\x03\x35\x00\x00\x04\x35\x00\x00\x01")
    write("message", "bad_tag", b"\x05\x36\x00\x02\x01\x02\x05\x00\x00\x02\x01\x02")


if __name__ == "__main__":
    main()
