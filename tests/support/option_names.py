#!/usr/bin/env python3
"""Prints how many PPD files of driver archives and directories have each option, most first.

usage: option_names.py SOURCE...

Each line is a number of files and a keyword.
Options of installed parts do not count: they say what the printer has, not what a job asks for.
"""

import collections
import importlib.machinery
import importlib.util
import os
import pathlib
import re
import sys

OPENING = re.compile(rb"^\*(?:JCL)?OpenUI:? *\*([^/:\s]+)", re.M)
INSTALLED = re.compile(rb"^\*OpenGroup: *InstallableOptions.*?^\*CloseGroup: *InstallableOptions",
                       re.M | re.S)


def sampler():
    sys.dont_write_bytecode = True
    path = str(pathlib.Path(__file__).with_name("sample_ppds.py"))
    loader = importlib.machinery.SourceFileLoader("sample_ppds", path)
    module = importlib.util.module_from_spec(
        importlib.util.spec_from_loader("sample_ppds", loader))
    loader.exec_module(module)
    return module


def main():
    sources = sampler()
    counts = collections.Counter()
    for source in sys.argv[1:]:
        read = sources.of_directory if os.path.isdir(source) else sources.of_archive
        for _, _, text in read(source):
            counts.update(set(OPENING.findall(INSTALLED.sub(b"", text))))
    for keyword, count in counts.most_common():
        print(count, keyword.decode("latin-1"))


if __name__ == "__main__":
    main()
