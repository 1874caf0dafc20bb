#!/usr/bin/env python3
"""Writes the compile commands that ./dev check lints into BUILD/lint/compile_commands.json.

Those of the product alone, each source once, and without GCC's precompiled headers, which clang-tidy cannot read.
"""

import json
import pathlib
import re
import sys

FOLDERS = ("src", "u3v", "vcam", "tools")


def product_commands(build: pathlib.Path) -> list[dict]:
    # Where an object lies tells whose it is.
    own = re.compile(rf" -o ({'|'.join(FOLDERS)})/")
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        if own.search(entry["command"]) and not entry["file"].endswith("cmake_pch.hxx.cxx"):
            command = re.sub(r" -include \S*/cmake_pch\.hxx\b", "", entry["command"])
            commands.setdefault(entry["file"], {**entry, "command": command})
    return list(commands.values())


def main() -> int:
    if len(sys.argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    build = pathlib.Path(sys.argv[1]).resolve()
    commands = product_commands(build)
    if not commands:
        print(f"{build}/compile_commands.json names no source of the product", file=sys.stderr)
        return 1
    folder = build / "lint"
    folder.mkdir(exist_ok=True)
    (folder / "compile_commands.json").write_text(json.dumps(commands, indent=1))
    return 0


if __name__ == "__main__":
    sys.exit(main())
