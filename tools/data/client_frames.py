"""Test vectors for the link between the amplifier and a desktop client.

They are made by this file's own coder: the fields of every message are written down here once more, and neither a protobuf
library nor the programs' sources are used. For each stream of frames the messages that a receiver takes out of it are written
down by hand beside it; this file's own receiver has to agree before anything is written.

Keys of the JSON file. Bytes are hexadecimal texts; a frame is without its padding where it has none here.
    messages  about; message (keys and values as in the messages' fields, bytes in base64); bytes, the message serialised; and
              frames, in the order in which they are sent
    cuts      bytes that stand for a message, and their frames
    uncut     sizes in bytes of messages for which there are no frames
    streams   about; frames as they come in, padded or not ("HEX*N" stands for N of them); and messages, the bytes
              of those that they make up
    bad       about; bytes of a whole message that does not parse
    reports   frame; toHost, the 64 bytes of a report from the amplifier; toDevice, those of one towards it; and hidraw, what is
              written to a Linux hidraw node for it
"""

import base64
import itertools
import math
import struct

import vectors

FRAME, REPORT, LIMIT = 63, 64, 32768
ROOM = FRAME - 3

# Message: number, name and type of each field; "*" for repeated ones, "oneof:" for what excludes the others.
B, U, I, S, F, D = "bool", "uint32", "int32", "string", "float", "bytes"
DUMMY = [(1, "dummy", B)]
SLOT_AND_NAME = [(1, "cabsimEnum", U), (2, "irName", S)]
SLOT_AND_VALUE = [(1, "cabsimEnum", U), (2, "value", F)]
SCHEMA = {
    "TestMessage": [(1, "loopbackTest", "LoopbackTest")],
    "LoopbackTest": [(1, "data", S)],
    "ConnectionMessage": [(1, "connectionRequest", "ConnectionRequest"), (2, "connectionResponse", "ConnectionResponse"),
                          (3, "connectionError", "ConnectionError"), (4, "connectionHeartbeat", "ConnectionHeartbeat")],
    "ConnectionRequest": DUMMY,
    "ConnectionResponse": [(1, "clientId", I)],
    "ConnectionError": [(1, "errorEnum", I)],
    "ConnectionHeartbeat": DUMMY,
    "ProductProfileRequest": [(1, "request", B)],
    "ProductProfileResponse": [(1, "productFamily", S)],
    "SetCabsimSelection": [(1, "cabsimEnum", U)],
    "CabsimSelectionChanged": [(1, "cabsimEnum", U)],
    "GetCabsimSelection": [(1, "request", B)],
    "CabsimErrorMessage": [(1, "error", U)],
    "FactoryIRListRequest": DUMMY,
    "FactoryIRListResponse": DUMMY + [(2, "record", "FactoryIRListRecord*")],
    "FactoryIRListRecord": [(1, "name", S)],
    "CabsimIRListRequest": DUMMY,
    "CabsimIRListResponse": DUMMY + [(2, "record", "CabsimIRListRecord*")],
    "CabsimIRListRecord": [(1, "cabsimId", U), (2, "isFactory", B), (3, "irName", S), (4, "isDirty", B), (5, "hpf", F),
                           (6, "lpf", F), (7, "level", F)],
    "AssignFactoryIRToCabsim": SLOT_AND_NAME,
    "AssignUserIRToCabsim": SLOT_AND_NAME,
    "UserIRListRequest": DUMMY,
    "UserIRListResponse": DUMMY + [(2, "record", "UserIRListRecord*")],
    "UserIRListRecord": [(1, "name", S), (2, "exists", B)],
    "AddUserIR": [(1, "name", S), (2, "irData", D)],
    "UserIRAdded": [(1, "name", S)],
    "UserIRErrorMessage": [(1, "error", U)],
    "AddUserIRFailed": [(1, "name", S)],
    "MoveUserIR": [(1, "oldSlot", U), (2, "newSlot", U)],
    "RemoveUserIR": [(1, "slot", U)],
    "SaveCurrentState": DUMMY,
    "SyncCurrentState": DUMMY,
    "SetCabsimHpf": SLOT_AND_VALUE,
    "SetCabsimLpf": SLOT_AND_VALUE,
    "SetCabsimLevel": SLOT_AND_VALUE,
    "CurrentFwRequest": DUMMY,
    "CurrentFwResponse": [(1, "fwVersion", S)],
    "ReverbTaperType": [(1, "value", U)],
    "VibratoChannelBright": [(1, "value", B)],
    "GlobalSettingsErrorMessage": [(1, "error", U)],
    "ReverbTaperTypeRequest": DUMMY,
    "VibratoChannelBrightRequest": DUMMY,
    "GetCurrentAmplifier": DUMMY,
    "CurrentAmplifierResponse": DUMMY + [(2, "currentAmpEnum", U)],
    "FactoryRestoreRequest": DUMMY,
    "FactoryRestoreResponse": DUMMY + [(2, "isSuccessful", B)],
}
# The fields of the outermost message from number 3 on, in order, where the type is not the name with a capital.
TYPES = ["testMessage", "connectionMessage", "productProfileRequest", "productProfileResponse", "setCabsimSelection",
         "cabsimSelectionChanged", "getCabsimSelection", "cabsimError:CabsimErrorMessage", "factoryIRListRequest",
         "factoryIRListResponse", "cabsimIRListRequest", "cabsimIRListResponse", "assignFactoryIRToCabsim",
         "assignUserIRToCabsim", "userIRListRequest", "userIRListResponse", "addUserIR", "userIRAdded",
         "userIRError:UserIRErrorMessage", "addUserIRFailed", "moveUserIR", "removeUserIR", "saveCurrentState",
         "syncCurrentState", "setCabsimHpf", "setCabsimLpf", "setCabsimLevel", "currentFwRequest", "currentFwResponse",
         "reverbTaperType", "vibratoChannelBright", "globalSettingsError:GlobalSettingsErrorMessage",
         "reverbTaperTypeRequest", "vibratoChannelBrightRequest", "getCurrentAmplifier", "currentAmplifierResponse",
         "factoryRestoreRequest", "factoryRestoreResponse"]


def outermost():
    fields = [(1, "IGNORE_THIS_PADDING", B), (2, "batchStatus", I)]
    for number, entry in enumerate(TYPES, 3):
        name, _, kind = entry.partition(":")
        fields.append((number, name, kind or name[0].upper() + name[1:]))
    return fields


SCHEMA["TarvekMessage"] = outermost()


def varint(number):
    number &= (1 << 64) - 1  # negative ones take ten bytes
    out = bytearray()
    while number > 127:
        out.append(number & 127 | 128)
        number >>= 7
    return bytes(out + bytes([number]))


def length_delimited(number, data):
    return varint(number << 3 | 2) + varint(len(data)) + data


def field(number, kind, value):
    if kind.endswith("*"):
        return b"".join(length_delimited(number, message(kind[:-1], item)) for item in value)
    if kind in SCHEMA:
        return length_delimited(number, message(kind, value))
    if kind == F:
        # A zero with a sign is not the default.
        is_default = value == 0 and math.copysign(1, value) > 0
        return b"" if is_default else varint(number << 3 | 5) + struct.pack("<f", value)
    if kind in (S, D):
        data = value.encode() if kind == S else base64.b64decode(value)
        return length_delimited(number, data) if data else b""
    return varint(number << 3) + varint(int(value)) if value else b""


def message(kind, values):
    known = {name: (number, type_name) for number, name, type_name in SCHEMA[kind]}
    ordered = sorted(values, key=lambda name: known[name][0])
    return b"".join(field(*known[name], values[name]) for name in ordered)


def cut(data):
    parts = [data[at:at + ROOM] for at in range(0, len(data), ROOM)]
    frames = []
    for index, part in enumerate(parts):
        tag = "5" if index == len(parts) - 1 else "3" if index == 0 else "4"
        frames.append(tag.encode() + struct.pack(">H", len(part)) + part)
    return frames


def pad(frame):
    return frame.ljust(FRAME, b"\0")


def receive(frames):
    """The messages that frames make up. What is under way is the list of its parts."""
    messages, parts = [], []
    for frame in frames:
        tag, size = frame[:1], int.from_bytes(frame[1:3], "big")
        whole = 3 < len(frame) <= FRAME and 0 < size <= len(frame) - 3 and tag in (b"3", b"4", b"5")
        in_order = not parts if tag == b"3" else bool(parts) if tag == b"4" else True
        if not whole or not in_order or size + sum(map(len, parts)) > LIMIT:
            parts = []
            continue
        parts.append(frame[3:3 + size])
        if tag == b"5":
            messages.append(b"".join(parts))
            parts = []
    return messages


def said(**fields):
    return {"IGNORE_THIS_PADDING": True, **fields}


def connection(**fields):
    return said(connectionMessage=fields)


def response_data(count):
    return base64.b64encode(bytes((i * 7 + 3) % 251 for i in range(count))).decode()


SLOTS = [{"cabsimId": 0, "isFactory": True, "irName": "Corvin 2x12", "isDirty": False, "hpf": 20.0, "lpf": 20000.0,
          "level": -5.0},
         {"cabsimId": 1, "isFactory": False, "irName": "Big room", "isDirty": True, "hpf": 99.5, "lpf": 8000.0, "level": -0.1},
         {"cabsimId": 2, "isFactory": True, "irName": "None", "isDirty": False, "hpf": 20.0, "lpf": 20000.0, "level": -36.0}]


def message_list():
    """About, and the message. What the requests and their answers look like, each field at least once."""
    dummy = {"dummy": True}
    yield "connection request", connection(connectionRequest=dummy)
    yield "connection response", connection(connectionResponse={"clientId": 1})
    yield "already open", connection(connectionError={"errorEnum": 1})
    yield "not open", connection(connectionError={"errorEnum": 2})
    yield "heartbeat", connection(connectionHeartbeat=dummy)
    yield "profile request", said(productProfileRequest={"request": True})
    yield "profile response", said(productProfileResponse={"productFamily": "slatePanel"})
    yield "amplifier request", said(getCurrentAmplifier=dummy)
    for amplifier in range(4):
        yield f"amplifier {amplifier}", said(currentAmplifierResponse={"dummy": True, "currentAmpEnum": amplifier})
    yield "firmware request", said(currentFwRequest=dummy)
    yield "firmware response", said(currentFwResponse={"fwVersion": "2.0.18"})
    yield "firmware unknown", said(currentFwResponse={})
    yield "selection request", said(getCabsimSelection={"request": True})
    for slot in range(4):
        yield f"select slot {slot}", said(setCabsimSelection={"cabsimEnum": slot})
        yield f"slot {slot} selected", said(cabsimSelectionChanged={"cabsimEnum": slot})
    for error in range(1, 9):
        yield f"cabinet error {error}", said(cabsimError={"error": error})
    yield "factory list request", said(factoryIRListRequest=dummy)
    yield "factory list", said(factoryIRListResponse={"dummy": True, "record": [{"name": "Corvin 2x12"}, {"name": "Corvin 4x10"}]})
    yield "empty factory list", said(factoryIRListResponse=dummy)
    yield "cabinet list request", said(cabsimIRListRequest=dummy)
    yield "cabinet list", said(cabsimIRListResponse={"dummy": True, "record": SLOTS})
    yield "assign factory response", said(assignFactoryIRToCabsim={"cabsimEnum": 0, "irName": "Corvin 2x12"})
    yield "assign user response", said(assignUserIRToCabsim={"cabsimEnum": 1, "irName": "Big room"})
    yield "assign none", said(assignUserIRToCabsim={"cabsimEnum": 2, "irName": "None"})
    yield "user list request", said(userIRListRequest=dummy)
    yield "user list", said(userIRListResponse={"dummy": True, "record": [{"name": "Big room", "exists": True},
                                                                         {"name": "R\u00e4ume \U0001f3b8", "exists": False}]})
    yield "longest user list", said(userIRListResponse={"dummy": True, "record": [
        {"name": f"{number:02d}" + "n" * 245, "exists": True} for number in range(50)]})
    yield "upload", said(addUserIR={"name": "Big room", "irData": response_data(100)})
    yield "upload of nothing", said(addUserIR={"name": "Nothing"})
    yield "largest upload", said(addUserIR={"name": "Largest", "irData": response_data(LIMIT - 20)})
    yield "upload done", said(userIRAdded={"name": "Big room"})
    yield "upload failed", said(addUserIRFailed={"name": "Big room"})
    for error in range(1, 4):
        yield f"user response error {error}", said(userIRError={"error": error})
    yield "move", said(moveUserIR={"oldSlot": 3, "newSlot": 1})
    yield "remove", said(removeUserIR={"slot": 2})
    yield "save", said(saveCurrentState=dummy)
    yield "sync", said(syncCurrentState=dummy)
    for name, key, values in (("high-pass", "setCabsimHpf", (100.0, 5.0)), ("low-pass", "setCabsimLpf", (8000.0, 20000.0)),
                              ("level", "setCabsimLevel", (-6.0, -0.1, 0.0, -0.0))):
        for value in values:
            yield f"{name} {value}", said(**{key: {"cabsimEnum": 1, "value": value}})
    yield "high-pass of slot 0", said(setCabsimHpf={"cabsimEnum": 0, "value": 250.0})
    yield "reverb taper request", said(reverbTaperTypeRequest=dummy)
    for value in (0, 1, 127, 128, 4294967295):
        yield f"reverb taper {value}", said(reverbTaperType={"value": value})
    yield "vibrato bright request", said(vibratoChannelBrightRequest=dummy)
    yield "vibrato bright on", said(vibratoChannelBright={"value": True})
    yield "vibrato bright off", said(vibratoChannelBright={})
    for error in (1, 2):
        yield f"settings error {error}", said(globalSettingsError={"error": error})
    yield "factory restore", said(factoryRestoreRequest=dummy)
    yield "factory restored", said(factoryRestoreResponse={"dummy": True, "isSuccessful": True})
    yield "factory restore failed", said(factoryRestoreResponse=dummy)
    yield "batch, first", said(batchStatus=1, setCabsimHpf={"cabsimEnum": 0, "value": 80.0})
    yield "batch, middle", said(batchStatus=2, setCabsimLpf={"cabsimEnum": 0, "value": 9000.0})
    yield "batch, last", said(batchStatus=3, saveCurrentState=dummy)
    yield "batch status below zero", said(batchStatus=-1, getCurrentAmplifier=dummy)
    yield "test message", said(testMessage={"loopbackTest": {"data": "hello"}})
    yield "no type", said()


def streams():
    """About, frames, and the messages that come out."""
    def pattern(count, start=0):
        return bytes((start + i) % 256 for i in range(count))

    one, two, three = pattern(5), pattern(61, 1), pattern(150, 2)
    a, b, c = cut(one), cut(two), cut(three)
    yield "three messages", a + b + c, [one, two, three]
    yield "padded frames", [pad(frame) for frame in a + b + c], [one, two, three]
    yield "padding of other bytes", [frame.ljust(FRAME, b"\xff") for frame in b], [two]
    yield "a lost end: the next start is dropped, the one after it is good", b[:1] + b + c + a, [b"".join(f[3:] for f in b[1:]), three, one]
    yield "a lost end before a message of one frame", b[:1] + a + a, [b[0][3:] + one, one]
    yield "a lost start: what is in between is dropped, the end stands alone", c[1:] + a, [c[2][3:], one]
    yield "a lost middle", c[:1] + c[2:] + a, [c[0][3:] + c[2][3:], one]
    yield "two starts", b[:1] + b[:1] + a, [one]
    yield "an empty frame", [b""] + a, [one]
    for count in (1, 2, 3):
        yield f"a frame of {count} bytes", [a[0][:count]] + a, [one]
        yield f"a frame of {count} bytes in a message", b[:1] + [a[0][:count]] + a, [one]
    yield "a frame of 64 bytes", [a[0].ljust(64, b"\0")] + a, [one]
    for tag in (0x00, 0x32, 0x36, 0x53, 0xFF):
        yield f"tag {tag:02x}", [bytes([tag]) + a[0][1:]] + a, [one]
    yield "tag 00 in a message", b[:1] + [b"\0" + a[0][1:]] + a, [one]
    yield "no payload", [b"5\0\0" + one] + a, [one]
    yield "no payload in a message", b[:1] + [b"5\0\0".ljust(FRAME, b"\0")] + a, [one]
    yield "a payload of 61 bytes", [b"5\0\x3d" + pattern(60)] + a, [one]
    yield "a payload of 61 bytes in a message", b[:1] + [b"5\0\x3d" + pattern(60)] + a, [one]
    yield "a payload of 65535 bytes", [b"5\xff\xff" + pattern(60)] + a, [one]
    yield "a payload that ends before its size", [b"5\0\6" + pattern(5)] + a, [one]
    yield "size with its bytes exchanged", [b"5\5\0" + one] + a, [one]
    yield "short frames in front", [b"3\0\1x", b"4\0\2yz", b"5\0\1!"] + a, [b"xyz!", one]
    first, between = cut(pattern(LIMIT))[:2]
    assert 546 * ROOM + 8 == LIMIT
    yield "a byte too many", [first] + [between] * 545 + [b"5\0\x09" + pattern(9)] + a, [one]
    yield "a message that does not end", [first] + [between] * 546 + a, [one]


def shortened(frames):
    """Hexadecimal texts; runs of the same frame as one."""
    return [frame.hex() + (f"*{count}" if count > 1 else "")
            for frame, count in ((frame, len(list(run))) for frame, run in itertools.groupby(frames))]


def bad_messages():
    good = message("TarvekMessage", said(addUserIR={"name": "Big room", "irData": response_data(100)}))
    yield "cut short", good[:-1]
    yield "a length beyond the end", b"\x08\x01\x9a\x01\x7f\x0a"
    yield "a length of two gigabytes", b"\x08\x01\x9a\x01\xff\xff\xff\xff\x07"
    yield "a varint without an end", b"\x08" + b"\xff" * 11
    yield "field number 0", b"\x00\x01"
    yield "a group without an end", b"\x0b"
    yield "an end of a group", b"\x0c"
    yield "wire type 7", b"\x0f\x01"
    yield "a name that is not UTF-8", b"\x08\x01" + length_delimited(20, length_delimited(1, b"\xff\xfe"))
    yield "an overlong character", b"\x08\x01" + length_delimited(20, length_delimited(1, b"\xc0\xaf"))


def build():
    messages = []
    for about, content in message_list():
        data = message("TarvekMessage", content)
        assert 0 < len(data) <= LIMIT and receive(cut(data)) == [data], about
        messages.append({"about": about, "message": content, "bytes": data.hex(), "frames": [f.hex() for f in cut(data)]})
    assert len(messages) == len({entry["about"] for entry in messages})
    assert max(len(entry["bytes"]) // 2 for entry in messages) == LIMIT
    shown = {name for entry in messages for name in entry["message"]}
    assert {name for _, name, _ in SCHEMA["TarvekMessage"]} == shown
    cuts = []
    for size in (1, 59, 60, 61, 119, 120, 121, 255, 256, 600):
        data = bytes(range(256)) * 3
        cuts.append({"bytes": data[:size].hex(), "frames": [f.hex() for f in cut(data[:size])]})
    flows = []
    for about, frames, expected in streams():
        assert receive(frames) == expected, about
        flows.append({"about": about, "frames": shortened(frames), "messages": [m.hex() for m in expected]})
    reports = []
    for frame in (cut(b"\x08\x01")[0], cut(bytes(range(61)))[0], cut(bytes(range(61)))[1]):
        to_device = pad(frame) + b"\0"
        reports.append({"frame": frame.hex(), "toHost": (b"\0" + pad(frame)).hex(), "toDevice": to_device.hex(),
                        "hidraw": (b"\0" + to_device).hex()})
        assert len(to_device) == REPORT
    return {"messages": messages, "cuts": cuts, "uncut": [0, LIMIT + 1, 65536], "streams": flows,
            "bad": [{"about": about, "bytes": data.hex()} for about, data in bad_messages()], "reports": reports}


if __name__ == "__main__":
    vectors.main(__doc__, "client/hid_vectors.json", build)
