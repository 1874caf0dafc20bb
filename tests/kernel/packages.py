"""Debian packages that are unpacked instead of installed, and the kernel in them."""

import gzip
import lzma
import re
import shutil
import struct
import subprocess
from pathlib import Path

KERNEL = "linux-image-amd64"  # depends on the kernel of the day; the "cloud" flavour has no USB


class Problem(Exception):
    """What hinders the run, for the user."""


def run(*command, cwd=None):
    done = subprocess.run(command, cwd=cwd, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise Problem(f"{' '.join(map(str, command))}: {done.stderr.strip() or done.stdout.strip()}")
    return done.stdout


def kernel_package():
    found = re.search(r"Depends: (linux-image-\S+)", run("apt-cache", "depends", KERNEL))
    if not found:
        raise Problem(f"apt-get knows no {KERNEL}; run apt-get update as root")
    return found[1]


def unpack(packages, cache):
    """Folders of the unpacked packages, downloaded if a former run has not left them in `cache`."""
    folders = {}
    for package in packages:
        version = re.search(r"Candidate: (\S+)", run("apt-cache", "policy", package) or "")
        if not version or version[1] == "(none)":
            raise Problem(f"apt-get knows no package {package}; run apt-get update as root")
        folder = cache / f"{package}_{version[1].replace(':', '%3a')}"
        if not folder.is_dir():
            print(f"   {package} {version[1]}", flush=True)
            for old in cache.glob(f"{package}_*"):
                shutil.rmtree(old)
            download = cache / "download"
            shutil.rmtree(download, ignore_errors=True)
            download.mkdir(parents=True)
            run("apt-get", "download", "-q", package, cwd=download)
            fresh = cache / "fresh"
            shutil.rmtree(fresh, ignore_errors=True)
            run("dpkg-deb", "-x", next(download.glob("*.deb")), fresh)
            shutil.rmtree(download)
            fresh.rename(folder)
        folders[package] = folder
    return folders


def decompress(data):
    if data.startswith(b"\xfd7zXZ"):
        return lzma.decompress(data)
    if data.startswith(b"\x1f\x8b"):
        return gzip.decompress(data)
    if data.startswith(b"\x28\xb5\x2f\xfd"):
        return subprocess.run(["zstd", "-dc"], input=data, capture_output=True, check=True).stdout
    return data


def extract_kernel(compressed, to):
    """The kernel proper out of a bzImage: it boots twice as fast without decompressing itself under emulation."""
    image = compressed.read_bytes()
    setup_sectors = image[0x1F1] or 4
    offset, length = struct.unpack_from("<II", image, 0x248)
    start = (setup_sectors + 1) * 512 + offset
    payload = image[start:start + length]
    if payload.startswith(b"\xfd7zXZ"):  # four bytes of size follow the stream
        to.write_bytes(lzma.LZMADecompressor().decompress(payload))
    else:
        to.write_bytes(decompress(payload))
