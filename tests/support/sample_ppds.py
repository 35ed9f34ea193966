#!/usr/bin/env python3
"""Writes a sample of the PPD files of compressed driver archives and directories into a directory.

usage: sample_ppds.py SEED COUNT DIRECTORY SOURCE...

The same seed draws the same files. The makers, which are the directories the files lie in, take
turns, so that a small sample has many of them. Files are called <number>-<maker>.ppd.
"""

import os
import pathlib
import random
import sys

sys.dont_write_bytecode = True
import extract_ppds

# Makers that are left out.
SKIPPED = ("InfoPrint", "IBM", "Oce")


def of_archive(path):
    """(maker, name, text) of every file of an archive program."""
    for name, text in extract_ppds.files_of(path):
        parts = [part for part in name.split("/") if part and not part.isdigit()]
        maker = next((p for p in parts[:-1] if p not in ("ppd", "openprinting", "hplip")), "other")
        if maker not in SKIPPED and not set(parts) & set(SKIPPED):
            yield maker, name, text


def of_directory(path):
    for file in pathlib.Path(path).rglob("*.ppd"):
        if not set(file.parts) & set(SKIPPED):
            yield file.parent.name, str(file), file.read_bytes()


def main():
    seed, count, directory, *sources = sys.argv[1:]
    makers = {}
    for source in sources:
        files = of_directory(source) if os.path.isdir(source) else of_archive(source)
        for maker, name, text in files:
            makers.setdefault(maker, []).append((name, text))
    chance = random.Random(int(seed))
    turns = sorted(makers)
    chance.shuffle(turns)
    for maker in turns:
        makers[maker].sort()
        chance.shuffle(makers[maker])
    written = 0
    while written < int(count) and any(makers.values()):
        for maker in turns:
            if makers[maker] and written < int(count):
                name = f"{written:03d}-{maker}.ppd"
                with open(os.path.join(directory, name), "wb") as out:
                    out.write(makers[maker].pop()[1])
                written += 1


if __name__ == "__main__":
    main()
