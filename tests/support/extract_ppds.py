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


def main():
    archive, directory = sys.argv[1:]
    sys.dont_write_bytecode = True
    loader = importlib.machinery.SourceFileLoader("archive", archive)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("archive", loader))
    loader.exec_module(module)
    ppds = module.load()
    data = lzma.decompress(base64.b64decode(ppds.pop("ARCHIVE")))
    for name, (start, length, _) in ppds.items():
        with open(os.path.join(directory, os.path.basename(name)), "wb") as out:
            out.write(data[start:start + length])


if __name__ == "__main__":
    main()
