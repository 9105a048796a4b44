#!/usr/bin/env python3
"""Writes the seeds of the LV2 fuzz targets into fuzz/seeds/fuzz_<name>/.

The URID numbers are the fixed ones of fuzz/FuzzLV2.h (kFixedURIs). Run it
again after changing the input layout of fuzz_dsp_atoms, fuzz_dsp_state or
fuzz_ui_atoms.
"""
import os
import struct

SEQUENCE, OBJECT, BLANK, STRING, INT, BOOL, URID, SET, GET, PROPERTY, VALUE, PRESET_NAME, THEME, THEME_TOGGLE, \
    ZOOM, CHANNELS_IN, CHANNELS_OUT, EVENT_TRANSFER, FLOAT = range(1, 20)

HERE = os.path.dirname(os.path.abspath(__file__))


def pad8(b):
    return b + b"\0" * (-len(b) % 8)


def atom(type_, body):
    return struct.pack("<II", len(body), type_) + body


def prop(key, value_atom):
    return struct.pack("<II", key, 0) + pad8(value_atom)


def obj(otype, props, type_=OBJECT):
    return atom(type_, struct.pack("<II", 0, otype) + b"".join(props))


def set_msg(key, value_atom, type_=OBJECT):
    return obj(SET, [prop(PROPERTY, atom(URID, struct.pack("<I", key))), prop(VALUE, value_atom)], type_)


def get_msg(key=None):
    return obj(GET, [] if key is None else [prop(PROPERTY, atom(URID, struct.pack("<I", key)))])


def string(text):
    return atom(STRING, text.encode() + b"\0")


def integer(n, type_=INT):
    return atom(type_, struct.pack("<i", n))


def sequence_body(messages):
    # The sequence body after its atom header: unit and pad, then the events.
    return struct.pack("<II", 0, 0) + b"".join(pad8(struct.pack("<q", 0) + m) for m in messages)


def write(target, name, data):
    folder = os.path.join(HERE, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def dsp_atoms():
    head = lambda mode, capacity: bytes([mode]) + struct.pack("<H", capacity)
    cases = {
        "get-all": (0x10, 2048, [get_msg()]),
        "get-each": (0x21, 1024, [get_msg(k) for k in (PRESET_NAME, THEME, ZOOM, CHANNELS_IN, CHANNELS_OUT)]),
        "set-name": (0x04, 512, [set_msg(PRESET_NAME, string("Telephone")), get_msg(PRESET_NAME)]),
        "set-theme-zoom": (0x06, 300, [set_msg(THEME_TOGGLE, integer(1, BOOL)), set_msg(ZOOM, integer(150)), get_msg()]),
        "blank-object": (0x08, 200, [set_msg(ZOOM, integer(175), BLANK), get_msg(ZOOM)]),
        "small-notify": (0x02, 80, [set_msg(PRESET_NAME, string("A" * 255)), get_msg()]),
    }
    for name, (mode, capacity, messages) in cases.items():
        write("fuzz_dsp_atoms", name, head(mode, capacity) + sequence_body(messages))


def dsp_state():
    def record(key, type_, value, flags=3):
        value = value + b"\0" * (len(value) % 2)  # sizes are counted in pairs of bytes
        return bytes([key, type_, flags, len(value) // 2]) + value
    write("fuzz_dsp_state", "all-three",
          record(PRESET_NAME, STRING, b"Dusty Vinyl\0") + record(THEME, INT, struct.pack("<i", 1)) +
          record(ZOOM, INT, struct.pack("<i", 150)))
    write("fuzz_dsp_state", "wrong-shapes",
          record(PRESET_NAME, INT, struct.pack("<i", 5)) + record(THEME, STRING, b"1\0") +
          record(ZOOM, INT, struct.pack("<q", 150)))
    write("fuzz_dsp_state", "utf8-name", record(PRESET_NAME, STRING, "Bänd — 12-Bit\0".encode()))


def ui_atoms():
    def event(port, fmt, payload):
        return bytes([port, fmt]) + struct.pack("<H", len(payload)) + payload
    notify = 14
    write("fuzz_ui_atoms", "controls",
          b"".join(event(p, 0, struct.pack("<f", v)) for p, v in ((4, 300.0), (5, 5000.0), (1, 50.0), (8, 2.0))))
    write("fuzz_ui_atoms", "notify",
          event(notify, 1, set_msg(PRESET_NAME, string("AM Radio"))) + event(notify, 1, set_msg(THEME, integer(1))) +
          event(notify, 1, set_msg(ZOOM, integer(125))) + event(notify, 1, set_msg(CHANNELS_IN, integer(1))) +
          event(notify, 1, set_msg(CHANNELS_OUT, integer(2))))


dsp_atoms()
dsp_state()
ui_atoms()
