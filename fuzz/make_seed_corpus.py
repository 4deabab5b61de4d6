#!/usr/bin/env python3
"""Writes the seed corpora of the fuzzers: the preference file reader's into
corpus/prf and the symbol map reader's into corpus/kvm."""
import os
import struct

CORPUS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus")
HERE = os.path.join(CORPUS, "prf")
KVM = os.path.join(CORPUS, "kvm")


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


def kvm_record(name, address, kind, excluded=False, dimensions=0, end="\r\n", sep=","):
    items = ['"%s"' % name, str(address), str(kind), "#TRUE#" if excluded else "#FALSE#",
             str(dimensions)]
    for bound in range(8):
        items += ["0", "9" if bound < dimensions else "0"]
    return (sep.join(items) + end).encode("utf-8")


def kvm_seeds():
    os.makedirs(KVM, exist_ok=True)
    seeds = {
        "empty.kvm": b"",
        "typical.kvm": b"".join([
            kvm_record("Count", 0, 19), kvm_record("Total", 2, 17),
            kvm_record("Hidden", 4, 20, excluded=True), kvm_record("Buffer", 4, 18, dimensions=1),
            kvm_record("Message", 20, 61), kvm_record("Ticks", 40, 20),
            kvm_record("Big", 44, 21), kvm_record("Ratio", 48, 32),
            kvm_record("Flag", 52, 50), kvm_record("Odd", 53, 99),
            kvm_record("Grid", 60, 19, dimensions=2)]),
        "lf-only.kvm": kvm_record("Count", 10, 19, end="\n") + kvm_record("Flag", 12, 50, end="\n"),
        "item-per-line.kvm": kvm_record("Count", 10, 19, sep="\r\n"),
        "only-string.kvm": kvm_record("Message", 0, 61),
        "cut-off.kvm": kvm_record("Count", 10, 19) + kvm_record("Cut", 12, 20)[:30],
        "overflow.kvm": kvm_record("Count", 10, 19) + kvm_record("Far", 2147483648, 19),
        "forms.kvm": b' "a,b" , +5 ,\t19 , True , 0 ' + b",0" * 16 + b"\r\n" +
                     b"Plain,-7,18,-1,0" + b",0" * 16 + b"\r\n" + b'"E",,,,' + b",0" * 15 + b"\r\n",
        "full-256.kvm": b"".join(kvm_record("V%d" % index, index, 18) for index in range(256)),
    }
    for name, content in seeds.items():
        open(os.path.join(KVM, name), "wb").write(content)


def main():
    kvm_seeds()
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
