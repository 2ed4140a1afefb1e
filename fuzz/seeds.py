#!/usr/bin/env python3
"""Writes the seeds under fuzz/corpus/, each named after what it tries. To be run again when the messages' layout
changes (platform/socket/Message.h)."""

import pathlib
import struct
import zlib

CORPUS = pathlib.Path(__file__).parent / "corpus"
NO_PARENT = 0xFFFFFFFF
IS_OBJECT = 0xFFFFFFFE
CALL, ONE_WAY = 3, 5


def padded(data, unit=8):
    return data + bytes(-len(data) % unit)


def message(code, scalars=b"", pieces=(), kind=CALL, magic=0x325A5448, total=None, count=None, objects=None,
            scalar_bytes=None):
    """pieces: of a buffer (bytes, parent, offset of the pointer in the parent); of an object its number, 0 for null."""
    buffers = [(b"", IS_OBJECT, 0) if isinstance(piece, int) else piece for piece in pieces]
    sizes = [min(piece, 1) if isinstance(piece, int) else len(piece[0]) for piece in pieces]
    table = b"".join(struct.pack("<4I", size, parent, offset, 0)
                     for size, (_, parent, offset) in zip(sizes, buffers))
    references = [struct.pack("<16s2Q", b"endpoint", piece, 1) for piece in pieces if isinstance(piece, int) and piece]
    body = table + b"".join(references) + padded(scalars) + b"".join(padded(data) for data, _, _ in buffers)
    head = struct.pack("<4I2Qi3I", magic, 48 + len(body) if total is None else total, kind, code, 1, 2, 0,
                       len(scalars) if scalar_bytes is None else scalar_bytes,
                       len(pieces) if count is None else count, len(references) if objects is None else objects)
    return head + body


def record(size, owns=0):
    """A text or vector as it lies in a message: a pointer, a size, whether it owns the memory."""
    return struct.pack("<QIB3x", 0xDEADBEEFDEADBEEF, size, owns)


def texts(*values):
    buffers = []
    for value in values:
        buffers += [(record(len(value), owns=1), NO_PARENT, 0), (value + b"\0", len(buffers), 0)]
    return buffers


def parcel(reads, scalars=b"", pieces=(), **head):
    return bytes(reads).ljust(16, b"\0") + message(1, scalars, pieces, **head)


NUMBER, TEXT, BUFFER_16, NUMBERS, TEXTS, OBJECT, NATIVE = 0, 1, 2 + 7 * 2, 3, 4, 5, 6
two_texts = [(record(2), NO_PARENT, 0), (record(1) + record(0), 0, 0), (b"a\0", 1, 0), (b"\0", 1, 16)]

parcels = {
    "numbers_then_text": parcel([NUMBER, NUMBER, TEXT], struct.pack("<2I", 1, 2) + padded(b"text\0", 4)),
    "text_without_end": parcel([TEXT], b"text"),
    "buffer": parcel([BUFFER_16], pieces=[(bytes(16), NO_PARENT, 0)]),
    "buffer_of_another_size": parcel([BUFFER_16], pieces=[(bytes(24), NO_PARENT, 0)]),
    "vector": parcel([NUMBERS], pieces=[(record(3), NO_PARENT, 0), (bytes(6), 0, 0)]),
    "vector_longer_than_its_buffer": parcel([NUMBERS], pieces=[(record(4), NO_PARENT, 0), (bytes(6), 0, 0)]),
    "vector_whose_size_overflows": parcel([NUMBERS], pieces=[(record(0x80000000), NO_PARENT, 0), (b"", 0, 0)]),
    "vector_that_owns_foreign_memory": parcel([NUMBERS], pieces=[(record(0, 1), NO_PARENT, 0), (b"", 0, 0)]),
    "vector_of_texts": parcel([TEXTS], pieces=two_texts),
    "vector_of_texts_read_twice": parcel([TEXTS, TEXTS], pieces=two_texts),
    "pointer_beyond_its_parent": parcel([NUMBERS], pieces=[(record(3), NO_PARENT, 0), (bytes(6), 0, 16)]),
    "parent_after_its_child": parcel([NUMBERS], pieces=[(bytes(6), 1, 0), (record(3), NO_PARENT, 0)]),
    "parent_that_is_the_child": parcel([NUMBERS], pieces=[(record(3), 0, 0)]),
    "objects": parcel([OBJECT, OBJECT, OBJECT], pieces=[1, 0, 2]),
    "objects_that_nobody_reads": parcel([OBJECT], pieces=[1, (bytes(16), NO_PARENT, 0), 0, 2]),
    "object_without_a_reference": parcel([OBJECT], pieces=[1, 0], objects=0),
    "reference_without_an_object": parcel([OBJECT], bytes(32), pieces=[0], objects=1, scalar_bytes=0),
    "object_as_a_parent": parcel([OBJECT, BUFFER_16], pieces=[1, (bytes(16), 0, 0)]),
    "length_too_large": parcel([NUMBER], bytes(8), total=0x110008),
    "length_too_small": parcel([NUMBER], bytes(8), total=40),
    "table_larger_than_message": parcel([NUMBER], bytes(8), count=0x10000000),
    "scalars_larger_than_message": parcel([NUMBER], bytes(8), scalar_bytes=0xFFFFFFFF),
    "wrong_magic": parcel([NUMBER], bytes(8), magic=0),
}

# As the binder driver delivers them; its forms are in linux/android/binder.h.
FORM_BINDER, FORM_HANDLE, FORM_BUFFER, FORM_DESCRIPTOR, FORM_DESCRIPTORS = (
    int.from_bytes(t + b"\x85", "big") for t in (b"sb*", b"sh*", b"pt*", b"fd*", b"fda"))
NULL = struct.pack("<2I2Q", FORM_BINDER, 0, 0, 0)


def handle(number, form=FORM_HANDLE):
    return struct.pack("<2I2Q", form, 0, number, 0)


def buffer(data, parent=None, offset=0, flags=None, length=None, address=0):
    """A form, and what it stands for."""
    flags = int(parent is not None) if flags is None else flags
    return struct.pack("<2I4Q", FORM_BUFFER, flags, address, len(data) if length is None else length, parent or 0, offset), data


def native(says, has, version=12):
    """A native handle with its size before it; the form's second part is the buffer."""
    content = struct.pack("<3i", version, says, 1) + bytes(4 * (has + 1))
    return [struct.pack("<Q", len(content))], buffer(content)


def descriptors(count, parent, offset=12):
    return struct.pack("<2I3Q", FORM_DESCRIPTORS, 0, count, parent, offset)


def transaction(reads, *parts, places=None, data_bytes=None):
    """parts: scalars and forms in the order of writing; a list holds what the table does not name."""
    data, table, buffers = b"", [], b""
    for part in parts:
        form, content = part if isinstance(part, tuple) else (part, b"")
        if isinstance(form, list):
            data += form[0]
            continue
        table.append(len(data))
        data += form
        buffers += padded(content)
    table = table if places is None else places
    sizes = struct.pack("<2I", len(data) if data_bytes is None else data_bytes, 8 * len(table))
    return (bytes(reads).ljust(16, b"\0") + sizes + padded(data) + struct.pack(f"<{len(table)}Q", *table) + buffers)


two = [struct.pack("<I", 2)]
transactions = {
    "numbers_then_text": transaction([NUMBER, TEXT], two, [padded(b"text\0", 4)]),
    "text_without_end": transaction([TEXT], [b"text"]),
    "buffer": transaction([NUMBER, BUFFER_16], two, buffer(bytes(16))),
    "vector": transaction([NUMBER, NUMBERS, NUMBER], two, buffer(record(3)), buffer(bytes(6), 0), two),
    "vector_of_texts": transaction([NUMBER, TEXTS], two, *(buffer(d, None if p == NO_PARENT else p, o)
                                                            for d, p, o in two_texts)),
    "vector_whose_buffer_was_not_sent": transaction([NUMBER, NUMBERS], two, buffer(record(3))),
    "pointer_over_the_length": transaction([NUMBER, NUMBERS], two, buffer(record(3)), buffer(bytes(6), 0, 8)),
    "pointer_between_two_fields": transaction([NUMBER, NUMBERS], two, buffer(record(3)), buffer(bytes(6), 0, 4)),
    "parent_that_is_the_child": transaction([NUMBER, NUMBERS], two, buffer(record(3), 0)),
    "parent_far_away": transaction([NUMBER, NUMBERS], two, buffer(record(3)), buffer(bytes(6), 1 << 40)),
    "buffer_longer_than_the_message": transaction([NUMBER, NUMBERS], two, buffer(bytes(16), length=1 << 32)),
    "buffer_at_another_place": transaction([NUMBER, BUFFER_16], two, buffer(bytes(16), address=8)),
    "buffer_with_unknown_flags": transaction([NUMBER, BUFFER_16], two, buffer(bytes(16), flags=2)),
    "objects_and_nulls": transaction([NUMBER, OBJECT, OBJECT, OBJECT, NUMBER], two, [NULL], handle(1), [NULL], two),
    "object_then_null": transaction([NUMBER, OBJECT, OBJECT], two, handle(1), [NULL]),
    "object_of_ours": transaction([NUMBER, OBJECT], two, handle(1, FORM_BINDER)),
    "object_that_is_gone": transaction([NUMBER, OBJECT, OBJECT], two, handle(1), handle(7)),
    "objects_that_nobody_reads": transaction([NUMBER], two, handle(1), handle(2)),
    "object_as_a_parent": transaction([NUMBER, OBJECT], two, handle(1), buffer(bytes(16), 0)),
    "descriptor": transaction([NUMBER, OBJECT], two, handle(1, FORM_DESCRIPTOR)),
    "descriptors_by_themselves": transaction([NUMBER], two, handle(1, FORM_DESCRIPTOR), handle(1), handle(2, FORM_DESCRIPTOR)),
    "native_handle": transaction([NATIVE, NUMBER], *native(2, 2), descriptors(2, 0), two),
    "native_handle_of_none": transaction([NATIVE], *native(0, 0), descriptors(0, 0)),
    "native_handle_that_nobody_reads": transaction([NUMBER], *native(2, 2), descriptors(2, 0)),
    "native_handle_as_a_buffer": transaction([NUMBER, NUMBER, BUFFER_16], *native(0, 0), descriptors(0, 0)),
    "native_handle_of_another_version": transaction([NATIVE], *native(1, 1, 13), descriptors(1, 0)),
    "native_handle_without_descriptors": transaction([NATIVE], *native(1, 1)),
    "native_handle_that_says_more": transaction([NATIVE], *native(3, 2), descriptors(2, 0)),
    "native_handle_that_says_less": transaction([NATIVE], *native(1, 2), descriptors(2, 0)),
    "native_handles_with_too_many": transaction([NATIVE, NATIVE], *native(9, 9), descriptors(9, 0), *native(9, 9), descriptors(9, 2)),
    "descriptors_beyond_their_buffer": transaction([NATIVE], *native(1, 1), descriptors(1 << 62, 0)),
    "descriptors_elsewhere_in_their_buffer": transaction([NATIVE], *native(1, 1), descriptors(1, 0, 8)),
    "descriptors_of_no_buffer": transaction([NATIVE], two, handle(1), descriptors(1, 0)),
    "descriptors_of_an_earlier_buffer": transaction([NATIVE], *native(1, 1), buffer(bytes(8)), descriptors(1, 0)),
    "descriptors_twice": transaction([NATIVE], *native(2, 2), descriptors(2, 0), descriptors(2, 0)),
    "places_that_overlap": transaction([NUMBER, OBJECT, OBJECT], two, handle(1), handle(1), places=[4, 8]),
    "places_backwards": transaction([NUMBER, OBJECT, OBJECT], two, handle(1), handle(1), places=[28, 4]),
    "place_beyond_the_data": transaction([NUMBER, OBJECT], two, handle(1), places=[1 << 33]),
    "place_cuts_the_form": transaction([NUMBER, OBJECT], two, handle(1), data_bytes=20),
    "more_data_than_memory": transaction([NUMBER], two, data_bytes=1 << 20),
}

token = padded(b"vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiInformation\0", 4)
base = padded(b"android.hidl.base@1.0::IBase\0", 4)
GET_INI, SET_INI, IP_STATUS, VERSION = 1, 2, 3, 4
CHAIN, DESCRIPTOR, PING = (0x0F000000 | sum(ord(c) << s for c, s in zip(n, (16, 8, 0))) for n in ("CHN", "DSC", "PNG"))

calls = {
    "get_ini": message(GET_INI, token, texts(b"panel", b"backlight:default")),
    "get_ini_outside_the_folder": message(GET_INI, token, texts(b"../identity", b"serial")),
    "get_ini_one_text_missing": message(GET_INI, token, texts(b"panel")),
    "get_ini_text_without_end": message(GET_INI, token, [(record(5), NO_PARENT, 0), (b"panel!", 0, 0)]),
    "get_ini_text_longer_than_its_buffer": message(GET_INI, token, [(record(99), NO_PARENT, 0), (b"panel\0", 0, 0)]),
    "set_ini": message(SET_INI, token, texts(b"panel", b"backlight:level", b"80")),
    "set_ini_value_with_line_end": message(SET_INI, token, texts(b"panel", b"a:b", b"1\n[c]\nd = 2")),
    "set_ini_value_with_nul": message(SET_INI, token, texts(b"panel", b"a:b", b"1\x002")),
    "set_ini_value_too_long": message(SET_INI, token, texts(b"panel", b"a:b", b"v" * 2048)),
    "ip_status": message(IP_STATUS, token + struct.pack("<I", 3)),
    "ip_status_out_of_range": message(IP_STATUS, token + struct.pack("<I", 0xFFFFFFFF)),
    "ip_status_without_number": message(IP_STATUS, token),
    "version": message(VERSION, token),
    "version_as_one_way": message(VERSION, token, kind=ONE_WAY),
    "token_of_another_interface": message(VERSION, base),
    "method_that_does_not_exist": message(5, token),
    "interface_chain": message(CHAIN, base),
    "interface_descriptor": message(DESCRIPTOR, base),
    "ping": message(PING, base),
}

# Two bytes for the library behind the interface, then calls of its methods: the number, how many bytes choose the
# arguments, how many spoil the message, and these (fuzz/Stubs.cpp).
def all_methods(argument, outputs=0, results=0, spoil=b""):
    return bytes([outputs, results]) + b"".join(
        bytes([number, 64, len(spoil), *[argument] * 64]) + spoil for number in range(48))


calls.update({
    "all_methods_plainest": all_methods(0),
    "all_methods_greatest": all_methods(1),
    "all_methods_least": all_methods(2),
    "all_methods_with_words": all_methods(7),
    "all_methods_any_numbers": all_methods(0xEE),
    "all_methods_outputs_full": all_methods(0, outputs=0xFF),
    "all_methods_outputs_any": all_methods(4, outputs=1),
    "all_methods_refused": all_methods(0, results=4),
    "all_methods_through_the_driver": all_methods(4, outputs=0xFF, results=128),
    "all_methods_greatest_through_the_driver": all_methods(1, results=128),
    "events_of_all_modules": bytes(2) + b"".join(
        bytes([255, 9, 0, module, 5, 0, module % 16, 0]) + b"text" for module in (*range(8), *range(128, 136))),
    "all_methods_any_results": all_methods(4, outputs=0x41, results=1),
    "all_methods_first_scalar_spoiled": all_methods(4, spoil=bytes([144, 0, 255])),
    "all_methods_piece_spoiled": all_methods(4, spoil=bytes([48, 0, 255])),
})


def checksummed(block):
    return block + bytes([-sum(block) % 256])


def firmware(target, version, payload):
    head = struct.pack("<8sIII24s", b"BOARDFW1", target, len(payload), zlib.crc32(payload), version)
    return head + struct.pack("<I", zlib.crc32(head)) + payload


def bitmap(width, height, bits, size=None):
    pixels = bytes(range(256)) * 16
    head = struct.pack("<2sIHHI", b"BM", 54 + len(pixels), 0, 0, 54)
    return head + struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, 0, len(pixels), 0, 0, 0, 0) + pixels[:size]


def hdcp(bytes_before):
    return bytes_before + struct.pack(">I", zlib.crc32(bytes_before))


# The first byte chooses file and reader by its place in fuzz/Files.cpp; beyond its table are orders and EDIDs.
EVENT, FORCE, DUMP, EDID = 30, 62, 94, 31
files = {
    "settings_of_sound": (0, b"[audio]\nvolume = 10\nbalance = -3\nmute = 1\n"),
    "table_of_volumes": (1, b"a table\n0\n1\n65535\n"),
    "table_of_volumes_too_large_a_gain": (1, b"a table\n65536\n"),
    "aq_kept": (2, b"[aq]\nformat = 1\nname = hall\n[drc]\nratio = 35\n[speaker_eq]\nband9 = 80 -15 300\n"),
    "aq_loaded": (3, b"[aq]\nformat = 1\nname = hall\n[drc]\nratio = 35\n[speaker_eq]\nband9 = 80 -15 300\n"),
    "aq_of_another_format": (3, b"[aq]\nformat = 2\n"),
    "settings_of_the_display": (4, b"[display]\nbrightness = 50\ncontrast = 101\n"),
    "panel": (5, b"name = A\n[backlight]\npwm_min = 5\npwm_max = 4\n[tcon]\nversion = 4294967296\n[frc]\npresent = 2\n"),
    "picture_quality": (6, b"[range]\nhue_min = 10\nhue_max = -10\n[version]\nmain_basic = 1.0.0\n"),
    "bitmap_24": (7, bitmap(20, 20, 24)),
    "bitmap_32_top_down": (7, bitmap(32, -30, 32)),
    "bitmap_widest": (7, bitmap(4096, 0x7FFFFFFF, 24)),
    "bitmap_cut": (7, bitmap(20, 20, 24, 700)),
    "converter_firmware_too_short": (8, b"VEXA" + struct.pack("<III", 0x010203, 4, zlib.crc32(b"abcd")) + b"abcd"),
    "settings_of_inputs": (9, b"[inputs]\nsource = 3\n"),
    "tuner": (10, b"[channels]\n1 = 48250\n"),
    "blocks": (11, b"[ip]\nav1 = 1\nhevc = 0\nmpeg2 = 2\n"),
    "parameter_twice": (12, b"\xef\xbb\xbf[section]\r\nkey = 1\r\n[section]\r\nkey = \"2\"\r\n"),
    "parameter_without_section": (12, b"key = 1\nsection:key = 2\n[section\nkey = 3"),
    "remotes": (13, b"[remotes]\nfuzz = sirc\nhotel = rc7\n"),
    "edid_version_kept": (14, b"[hdmi]\nedid_version_1 = 0\n"),
    "edid_kept": (15, checksummed(bytes.fromhex("00ffffffffffff00") + bytes(119))),
    "hdcp_kept": (16, hdcp(bytes(858))),
    "eeprom": (17, bytes(range(256))),
    "hdcp_loaded": (18, hdcp(bytes(288))),
    "firmware": (19, firmware(1, b"7.1.0", b"payload")),
    "firmware_of_another_target": (19, firmware(2, b"7.1.0", b"payload")),
    "system_key": (20, bytes(32)),
    "variables": (21, b"rtc_offset=5\ndataindex_path=/a\nfuzz=1\nfuzz=2\n"),
    "area": (22, firmware(0, b"1.0.0", b"payload")),
    "identity": (23, b"model = A\nserial = 1\ncustomer = B\n"),
    "event_with_records": (EVENT, b"disp 0x40005 value=3 text=\"no signal\\x00\" | - | bytes=6869 (\"hi\") | -"),
    "event_with_short_records": (EVENT, b"disp 0x10005 value=3,text=signal - bytes=00ff"),
    "order_of_a_signal": (EVENT, b"signal hdmi1 lock 1920x1080i@50"),
    "order_of_a_lost_signal": (EVENT, b"signal hdmi1 lost"),
    "status_forced": (FORCE, b"sys_check_file -77 3"),
    "not_ready": (FORCE, b"not-ready 86400000"),
    "state_printed": (DUMP, b"disp"),
    "edid_sent": (EDID, checksummed(bytes.fromhex("00ffffffffffff00") + bytes(118) + b"\1") + checksummed(bytes(127))),
}
files = {name: bytes([place]) + content for name, (place, content) in files.items()}


# One of a few connections, and what is done on it (fuzz/Connections.cpp).
def sent(connection, kind, target=0, code=0, content=0, reference=0, lie=0):
    return bytes([connection, kind, target, code, 0, content, reference, lie])


HELLO_CALL, HELLO_CONTROL, CALL_KIND, REPLY, ONE_WAY_KIND, HAND_OVER, RELEASE, WELCOME, DESCRIPTORS = range(1, 10)
READ, SHUTDOWN, CLOSE, BYTES = 16, 20, 24, 28
hello = sent(0, HELLO_CALL, content=1)
connections = {
    "hello_and_calls": hello + b"".join(sent(0, CALL_KIND, code=code) for code in range(8)) + bytes([READ]),
    "call_before_hello": sent(0, CALL_KIND),
    "hello_twice": hello + hello,
    "hello_of_the_server": sent(0, HELLO_CALL, content=7),
    "two_processes_of_one_name": hello + sent(1, HELLO_CONTROL, content=1) + sent(2, HELLO_CONTROL, content=1),
    "one_way_messages": sent(0, HELLO_CONTROL, content=1) + sent(0, ONE_WAY_KIND) * 8,
    "reply_to_nothing": hello + sent(0, REPLY),
    "objects_of_nobody": hello + sent(0, CALL_KIND, code=1, content=3, reference=9),
    "objects_of_the_server": hello + sent(0, CALL_KIND, code=1, content=3),
    "object_that_is_not": hello + sent(0, CALL_KIND, target=130),
    "handed_over": sent(0, HELLO_CONTROL, content=1) + sent(0, HAND_OVER, content=2) + sent(0, RELEASE, code=200),
    "descriptors": hello + sent(0, DESCRIPTORS) + bytes([READ]) + sent(0, CALL_KIND, lie=2),
    "half_a_message": hello + sent(0, CALL_KIND, content=250, lie=112) + bytes([SHUTDOWN, 1]),
    "end_before_the_answer": hello + sent(0, CALL_KIND, code=7) + bytes([CLOSE]),
    "no_message": bytes([BYTES, 8]) + b"GET / HT",
    "head_that_lies": hello + sent(0, CALL_KIND, lie=132) + bytes([255]),
}

WORDS, JSON, COMMAND, SESSION = range(4)
tool = {
    "words_as_arguments": (WORDS, b"u32Value=0x10\n-1"),
    "record_in_a_word": (WORDS, b"stObj.a=1\n{\"b\": [1, 2]}"),
    "bytes_in_a_word": (WORDS, b"de:ad:be:ef"),
    "list_of_arguments": (JSON, b'[1, "a", true, null, [1.5], {"a": {}}]'),
    "arguments_by_name": (JSON, b'{"u32Value": "0xffffffffffffffff", "u32Value": 1}'),
    "json_nested": (JSON, b"[" * 500 + b"]" * 500),
    "command_call": (COMMAND, b"call\nsystem\nget_rtc_time\n--json=pretty"),
    "command_post": (COMMAND, b"post\n0x40005\nvalue=3,text=a\n-\n--timeout"),
    "command_introspect": (COMMAND, b"introspect\ndisp*\n--json"),
    "session_call": (SESSION, b'{"jsonrpc": "2.0", "id": 1, "method": "call", "params": {"interface": "system", '
                              b'"method": "get_rtc_time", "arguments": {}}}'),
    "session_watch": (SESSION, b'{"jsonrpc": "2.0", "id": 1, "method": "watch", "params": {"match": ["value=3"]}}'),
    "session_batch": (SESSION, b'[{"jsonrpc": "2.0", "method": "list"}, 1, {"jsonrpc": "2.0", "id": [], "method": 5}]'),
}
tool = {name: bytes([what, 20]) + content for name, (what, content) in tool.items()}

names = {
    "a_name": b"vendor.example@1.0::IThing\ndefault\n",
    "separator_in_the_instance": b"vendor.example@1.0::IThing\na+b\n",
    "path_in_the_instance": b"vendor.example@1.0::IThing\n../default\n",
    "nul_in_the_interface_name": b"vendor.example@1.0::IThing\0\ndefault\n",
    "no_instance": b"vendor.example@1.0::IThing\n\n",
    "longest_name": b"I" * 246 + b"\ninstance\n",
    "one_byte_too_long": b"I" * 247 + b"\ninstance\n",
    "record_of_another_version": b"a@1.0::I\nb\n" + struct.pack("<2I", 0x4E5A5448, 2),
    "record_with_bytes_behind": b"a@1.0::I\nb\n",
}

for target, seeds in ("fuzz-parcel", parcels), ("fuzz-transaction", transactions), ("fuzz-calls", calls), ("fuzz-registry", names), \
        ("fuzz-files", files), ("fuzz-connections", connections), ("fuzz-tool", tool):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    for stale in folder.iterdir():
        stale.unlink()
    for name, data in seeds.items():
        (folder / name).write_bytes(data)
