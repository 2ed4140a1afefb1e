#!/usr/bin/env python3
"""Writes the seeds under fuzz/corpus/, each named after what it tries. To be run again when the messages' layout
changes (platform/socket/Message.h)."""

import pathlib
import struct

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

for target, seeds in ("fuzz-parcel", parcels), ("fuzz-transaction", transactions), ("fuzz-information", calls), ("fuzz-registry", names):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    for stale in folder.iterdir():
        stale.unlink()
    for name, data in seeds.items():
        (folder / name).write_bytes(data)
