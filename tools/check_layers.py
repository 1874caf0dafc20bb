#!/usr/bin/env python3
"""Checks that includes point one way: from a layer to those that it stands on, and never in a circle.

Usage: check_layers.py [ROOT]      ROOT is the repository; default: the one that holds this script.
"""

import fnmatch
import re
import sys
from pathlib import Path

# Name, files, and the layers that it stands on. A layer may include itself, those, and what those stand on. A file
# that several rows name belongs to the row that names it most closely.
LAYERS = [
    ("header", "include/*", ""),
    # what the library and the transport share
    ("shared", "src/foundation/SignalRecord.h src/foundation/TransportStatus.h", "header"),
    ("interface", "src/transport/TransportInterface.h src/transport/TransportRow.h src/transport/TransportEntries.inc",
     "shared"),
    # the library
    ("foundation", "src/foundation/*", "shared"),
    ("log", "src/log/*", "foundation"),
    ("transport", "src/transport/U3vCamApiDLL.*", "log interface"),
    ("frame", "src/transport/*", "transport"),
    ("system", "src/system/* src/log/UNI_LogEx.*", "frame"),
    ("camera", "src/camera/*", "frame"),
    ("node", "src/node/*", "frame"),
    ("features", "src/features/*", "system camera node"),
    ("stream", "src/stream/*", "features"),
    ("event", "src/event/*", "features"),
    # the virtual camera: these headers are all that others see of it
    ("vcam interface",
     "vcam/UsbFunction.h vcam/VirtualCamera.h vcam/Faults.h vcam/ImageSource.h vcam/Complaint.h", ""),
    ("vcam check", "vcam/config/Check.h vcam/config/Mistake.h", ""),
    # it reads other models' descriptions with the runtime, which knows nothing of the host
    ("vcam", "vcam/*", "vcam_interface vcam_check u3v_genapi"),
    # the transport
    ("u3v core", "u3v/core/*", "interface"),
    ("u3v genapi", "u3v/genapi/*", "u3v_core"),
    ("u3v usb", "u3v/usb/*", "u3v_core vcam_interface"),
    ("u3v protocol", "u3v/protocol/*", "u3v_genapi u3v_usb"),
    ("u3v emulation", "u3v/emulation/*", "u3v_protocol"),
    ("u3v parameters", "u3v/parameters/*", "u3v_protocol"),
    ("u3v api", "u3v/api/*", "u3v_parameters u3v_emulation"),
    # the command line sees what applications see; and it checks description files of virtual cameras, which the
    # library knows nothing of, with the reader that makes the cameras: a second one would know other mistakes
    ("tools", "tools/*", "header vcam_check"),
    # the exporter is a USB host adapter like the transport's loopback: it knows the device, not the library
    ("usbip", "tools/vcam-usbip/*", "vcam_interface"),
]
FOLDERS = ["include", "src", "vcam", "u3v", "tools"]
INCLUDE_ROOTS = ["include", "src", "."]
SUFFIXES = {".h", ".c", ".cpp", ".inc"}
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^">]+)[">]')


def stands_on():
    """For each layer the set of all layers that it may include, itself among them."""
    direct = {name: below.split() for name, _, below in LAYERS}
    names = {name.replace(" ", "_"): name for name in direct}

    def close(name):
        return {name}.union(*(close(names[below]) for below in direct[name]))

    return {name: close(name) for name in direct}


def layer_of(path):
    """The layer of a file, None when no row names it."""
    rows = [(len(pattern.rstrip("*")), name) for name, patterns, _ in LAYERS for pattern in patterns.split()
            if fnmatch.fnmatch(path, pattern)]
    return max(rows)[1] if rows else None


def read_includes(root, path):
    """(line number, file) of each include that is a file of the project."""
    found = []
    for number, line in enumerate((root / path).read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        for folder in [path.parent, *map(Path, INCLUDE_ROOTS)]:
            candidate = Path(*(folder / match[1]).parts)
            if (root / candidate).is_file():
                found.append((number, candidate))
                break
    return found


def find_cycles(includes):
    """One message for each circle of includes."""
    state, stack, messages = {}, [], []

    def visit(path):
        state[path] = "open"
        stack.append(path)
        for _, target in includes.get(path, []):
            if state.get(target) == "open":
                circle = stack[stack.index(target):] + [target]
                messages.append(f"{target}: includes itself: " + " -> ".join(map(str, circle)))
            elif target not in state:
                visit(target)
        stack.pop()
        state[path] = "done"

    for path in includes:
        if path not in state:
            visit(path)
    return messages


def main():
    root = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent)
    allowed = stands_on()
    files = sorted(path.relative_to(root) for folder in FOLDERS for path in (root / folder).rglob("*")
                   if path.suffix in SUFFIXES and path.is_file())
    includes = {path: read_includes(root, path) for path in files}
    problems = []
    for path in files:
        layer = layer_of(str(path))
        if layer is None:
            problems.append(f"{path}: belongs to no layer; add it to the table in tools/check_layers.py")
            continue
        for number, target in includes[path]:
            target_layer = layer_of(str(target))
            if target_layer not in allowed[layer]:
                problems.append(f"{path}:{number}: {layer} must not include {target_layer or 'this'} ({target})")
    problems += find_cycles(includes)
    print("\n".join(problems) if problems else f"{len(files)} files in {len(LAYERS)} layers: all includes point one way")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
