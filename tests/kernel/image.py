"""The guest's only file system: an archive that the kernel unpacks into memory."""

import os
import re
import stat
import subprocess
from pathlib import Path


class Image:
    """Collects files under their names in the guest and writes them as cpio ("newc"), all owned by root."""

    def __init__(self, strip_folder):
        self.entries = {}
        self.libraries = set()
        self.strip_folder = strip_folder
        strip_folder.mkdir(parents=True, exist_ok=True)

    def add_bytes(self, name, data, mode=0o644):
        for folder in reversed(Path(name).parents):
            if str(folder) not in (".", "/"):
                self.entries.setdefault(str(folder), (stat.S_IFDIR | 0o755, b""))
        self.entries[name] = (stat.S_IFREG | mode, data)

    def add(self, name, path):
        self.add_bytes(name, Path(path).read_bytes(), 0o755 if os.access(path, os.X_OK) else 0o644)

    def link(self, name, target):
        self.entries[name] = (stat.S_IFLNK | 0o777, target.encode())

    def add_program(self, name, path, search=()):
        """A program or shared library without its symbols, and every library that it needs."""
        stripped = self.strip_folder / f"{Path(path).name}-{Path(path).stat().st_mtime_ns}"
        if not stripped.exists():
            subprocess.run(["strip", "-o", stripped, path], check=True)
        self.add_bytes(name, stripped.read_bytes(), 0o755)
        environment = {**os.environ, "LD_LIBRARY_PATH": ":".join(map(str, search))}
        needed = subprocess.run(["ldd", path], capture_output=True, text=True, check=False, env=environment).stdout
        missing = re.findall(r"(\S+) => not found", needed)
        if missing:
            raise FileNotFoundError(f"{path} needs {', '.join(missing)}")
        for line in needed.splitlines():
            found = re.search(r"(?:=> )?(/\S+) \(0x", line)
            if not found or found[1] in self.libraries or "/sdk/lib/" in found[1]:
                continue
            self.libraries.add(found[1])
            # Programs ask for the loader by its full name and for all others by their short one.
            if "ld-linux" in found[1]:
                self.add(found[1].lstrip("/"), found[1])
            else:
                self.add("lib/" + Path(found[1]).name, found[1])

    def write(self, to):
        with open(to, "wb") as archive:
            for number, (name, (mode, data)) in enumerate([*self.entries.items(), ("TRAILER!!!", (0, b""))], 1):
                fields = [number, mode, 0, 0, 1, 0, len(data), 0, 0, 0, 0, len(name) + 1, 0]
                head = b"070701" + b"".join(b"%08X" % field for field in fields) + name.encode() + b"\0"
                archive.write(head + bytes(-len(head) % 4) + data + bytes(-len(data) % 4))
