#!/usr/bin/env python3
"""Writes the seed corpus of the preference file fuzzer into corpus/prf."""
import os
import struct

HERE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus", "prf")


def image(records=615):
    return bytearray(records * 14)


def record(img, number, value=0, flags=(0, 0, 0, 0, 0)):
    offset = (number - 1) * 14
    if len(img) < offset + 14:
        img.extend(bytes(offset + 14 - len(img)))
    img[offset:offset + 14] = struct.pack("<i5h", value, *flags)


def pin(img, number, state):
    flags = [0] * 5
    flags[{"IN": 1, "P": 2, "0": 3, "1": 4}[state]] = 1
    record(img, number, 0, tuple(flags))


def defaults(img, processor):
    for number, value in [(600, 65279), (601, 254), (607, 1), (610, 460800), (611, 32768),
                          (612, 1), (613, processor), (614, 0 if processor == 1 else 1),
                          (615, 16)]:
        record(img, number, value)


def main():
    os.makedirs(HERE, exist_ok=True)
    for processor in (1, 2, 3):
        img = image()
        for number in range(1, 41):
            pin(img, number, "IN")
        defaults(img, processor)
        open(os.path.join(HERE, f"default-kv{processor}0.prf"), "wb").write(img)
    img = image()
    states = ["0", "1", "IN", "P"]
    for number in range(1, 41):
        pin(img, number, states[number % 4])
    defaults(img, 1)
    for number in range(602, 607):
        record(img, number, 1)
    record(img, 609, 1)
    record(img, 610, 19200)
    record(img, 611, 8192)
    open(os.path.join(HERE, "mixed-kv10.prf"), "wb").write(img)
    img = image(611)
    for number in range(1, 41):
        pin(img, number, "1")
    open(os.path.join(HERE, "short-611.prf"), "wb").write(img)
    open(os.path.join(HERE, "empty.prf"), "wb").write(b"")


if __name__ == "__main__":
    main()
