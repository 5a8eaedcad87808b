#!/usr/bin/env python3
"""Writes two short Standard MIDI files (format 0) for the sound archive: a little tune on a
piano and a brass fanfare. Usage: make_midi.py <folder>"""
import os
import struct
import sys

TICKS = 96  # ticks per quarter note


def var_len(value):
    out = [value & 0x7F]
    value >>= 7
    while value:
        out.insert(0, (value & 0x7F) | 0x80)
        value >>= 7
    return bytes(out)


def track(program, tempo_us, notes):
    """notes: (pitch or None for a rest, length in ticks, velocity)"""
    events = bytearray()
    events += var_len(0) + b"\xff\x51\x03" + tempo_us.to_bytes(3, "big")
    events += var_len(0) + bytes([0xC0, program])
    delay = 0
    for pitch, length, velocity in notes:
        if pitch is None:
            delay += length
            continue
        events += var_len(delay) + bytes([0x90, pitch, velocity])
        events += var_len(length) + bytes([0x80, pitch, 0])
        delay = 0
    events += var_len(delay) + b"\xff\x2f\x00"
    return b"MTrk" + struct.pack(">I", len(events)) + bytes(events)


def write(path, program, tempo_us, notes):
    header = b"MThd" + struct.pack(">IHHH", 6, 0, 1, TICKS)
    with open(path, "wb") as f:
        f.write(header + track(program, tempo_us, notes))


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else "."
    q, e, h = TICKS, TICKS // 2, TICKS * 2
    tune = [(60, e, 90), (62, e, 90), (64, e, 90), (65, e, 90), (67, q, 100), (67, q, 100),
            (69, e, 90), (69, e, 90), (69, e, 90), (69, e, 90), (67, h, 100)]
    fanfare = [(60, e, 110), (64, e, 110), (67, e, 110), (72, q, 120), (None, e, 0),
               (67, e, 110), (72, h, 127)]
    write(os.path.join(folder, "Little tune.mid"), 0, 500000, tune)
    write(os.path.join(folder, "Fanfare.mid"), 56, 400000, fanfare)


if __name__ == "__main__":
    main()
