#!/usr/bin/env python3
"""Writes the README's first program to the file named by the argument, so that a test can build what readers copy."""

import sys
import textwrap
from pathlib import Path

readme = (Path(__file__).resolve().parents[2] / "README.md").read_text(encoding="utf-8")
section = readme.split("## A first program\n", 1)[1]
lines = []
for line in section.lstrip("\n").splitlines():
    if line and not line.startswith("    "):
        break
    lines.append(line)
Path(sys.argv[1]).write_text(textwrap.dedent("\n".join(lines)) + "\n", encoding="utf-8")
