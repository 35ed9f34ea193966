#!/usr/bin/env python3
"""Writes every PPD file of a compressed driver archive into a directory.

usage: extract_ppds.py ARCHIVE DIRECTORY

The archive program itself hands out one file a call and unpacks everything for it; this unpacks
once.
"""

import base64
import importlib.machinery
import importlib.util
import lzma
import os
import sys


def files_of(archive):
    """(name, text) of every file of an archive program."""
    sys.dont_write_bytecode = True
    loader = importlib.machinery.SourceFileLoader("archive", archive)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("archive", loader))
    loader.exec_module(module)
    ppds = module.load()
    data = lzma.decompress(base64.b64decode(ppds.pop("ARCHIVE")))
    for name, (start, length, _) in ppds.items():
        yield name, data[start:start + length]


def main():
    archive, directory = sys.argv[1:]
    for name, text in files_of(archive):
        with open(os.path.join(directory, os.path.basename(name)), "wb") as out:
            out.write(text)


if __name__ == "__main__":
    main()
