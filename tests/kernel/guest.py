#!/usr/bin/env python3
"""Boots Debian's kernel in QEMU, plugs this build's virtual cameras into it and tries them from there.

Usage: guest.py BUILD_FOLDER [STEP...]     STEPs of the table below; default: all of them.
       guest.py BUILD_FOLDER --bench       our host beside Aravis's on the same camera, as ratios
Needs neither root nor network nor KVM, only packages, which it keeps in BUILD_FOLDER/kernel-guest.
"""

import re
import statistics
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path

from image import Image
from packages import Problem, decompress, extract_kernel, kernel_package, unpack

HERE = Path(__file__).resolve().parent
MODULES = ["common/usb-common", "core/usbcore", "usbip/usbip-core", "usbip/vhci-hcd"]
GUEST_LIMIT = 1200  # seconds; a guest that takes as long hangs, whatever else the machine does


@dataclass
class Step:
    name: str
    what: str
    limit: int  # seconds on a machine that is busy with other things
    command: str


STEPS = [
    Step("attach", "two virtual cameras in the kernel's USB", 60,
         "orvi-vcam-usbip --attach --cameras 2 >/tmp/exporter.log 2>&1 & "
         "for i in $(seq 300); do [ $(grep -c plugged /tmp/exporter.log) = 2 ] && exit; sleep 0.1; done; "
         "cat /tmp/exporter.log; dmesg | tail; exit 1"),
    Step("same", "one application, in-process and over USB: 1000 images, all features", 300,
         "for road in virtual usb; do export ORVI_TRANSPORT=$road ORVI_E2E_LINK=$road; "
         "{ ORVI_VIRTUAL_CAMERAS=2 orvicam list && ORVI_VIRTUAL_CAMERAS=2 orvicam -c VC000001 --json features --all && "
         "ORVI_VIRTUAL_CAMERAS=2 orvicam -c VC000002 --json values && "
         "effect_test --gtest_color=no --gtest_filter='ThousandImages*' | "
         "tee /tmp/images | grep ' sum '; } >/tmp/$road || { cat /tmp/$road /tmp/images; exit 1; }; done; "
         "wc -l /tmp/virtual /tmp/usb; grep ' sum ' /tmp/usb; diff /tmp/virtual /tmp/usb"),
    Step("nodes", "features by function, register and node", 300,
         "ORVI_E2E_LINK=usb effect_test --gtest_color=no --gtest_filter='Road*'"),
    Step("e2e", "the library's tests of whole applications", 400,
         "ORVI_E2E_LINK=usb e2e_test --gtest_color=no --gtest_filter=-WrongHandleTest.*"),
    Step("faults", "the library's tests of failing cameras", 400,
         "ORVI_E2E_LINK=usb fault_test --gtest_color=no"),
    Step("aravis-discovery", "arv-tool finds both", 30,
         "arv-tool-0.8 | tee /tmp/out; [ $(grep -c 'Orvi-ORVIVC00000[12]-VC00000[12]' /tmp/out) = 2 ]"),
    Step("aravis-features", "arv-tool reads and sets features", 90,
         "arv-tool-0.8 -n Orvi-VC000001 control Width=640 Height=480 PixelFormat=Mono8 ExposureTime=5000 Gain=6 "
         "DeviceSerialNumber | tee /tmp/out; for line in 'Width = 640 ' 'Height = 480 ' 'PixelFormat = Mono8' "
         "'ExposureTime = 5000 ' 'Gain = 6 ' 'DeviceSerialNumber = VC000001'; do "
         "grep -q \"^$line\" /tmp/out || { echo \"no $line\"; exit 1; }; done"),
    Step("aravis-stream", "arv-camera-test, sync: 100 images, no failure", 200,
         "all=0; for i in $(seq 20); do "
         "arv-camera-test-0.8 -n Orvi-VC000002 -s sync -w 640 -h 480 -f 20 --duration=6 >/tmp/out; cat /tmp/out; "
         "grep -q 'n_failures *= 0$' /tmp/out || exit 1; all=$((all + $(sed -n 's/n_completed_buffers *= //p' /tmp/out))); "
         "[ $all -lt 100 ] || exit 0; done; echo only $all images; exit 1"),
    Step("detach", "the exporter ends and takes its cameras along", 60,
         "kill -INT $(pidof orvi-vcam-usbip) && for i in $(seq 300); do "
         "[ -z \"$(pidof orvi-vcam-usbip)\" ] && break; sleep 0.1; done; cat /tmp/exporter.log; "
         "[ $(grep -c 'pulled out' /tmp/exporter.log) = 2 ] && ! ls /sys/bus/usb/devices/2-1 2>/dev/null && "
         "! grep -v ' 004 ' /sys/devices/platform/vhci_hcd.0/status | grep '^[hs]s'"),
]

# The two take turns, so that what else the machine does meets both.
HOSTS = {"ours": "orvi_host_bench", "aravis": "aravis_host_bench"}
BENCH_STEPS = [STEPS[0]] + [
    Step(f"{host}-{turn}", f"the host of {host}", 300, f"ORVI_TRANSPORT=usb {program}")
    for turn in (1, 2, 3) for host, program in HOSTS.items()]


def build_image(build, folder, steps):
    sdk = build / "sdk"
    print("== Packages", flush=True)
    kernel = kernel_package()
    packages = unpack([kernel, "udev", "busybox-static", "aravis-tools", "aravis-tools-cli"], folder / "packages")
    vmlinux = folder / f"vmlinux-{packages[kernel].name}"
    if not vmlinux.exists():
        extract_kernel(next(packages[kernel].glob("boot/vmlinuz-*")), vmlinux)

    image = Image(folder / "stripped")
    image.add("init", HERE / "init")
    image.add("bin/busybox", packages["busybox-static"] / "bin/busybox")
    image.add_program("sbin/udevd", packages["udev"] / "bin/udevadm")
    for module in MODULES:
        path = next(packages[kernel].glob(f"lib/modules/*/kernel/drivers/usb/{module}.ko*"))
        image.add_bytes(f"modules/{Path(module).name}.ko", decompress(path.read_bytes()))
    for tool in ["arv-tool-0.8", "arv-camera-test-0.8"]:
        where = next(p for p in packages.values() if (p / "usr/bin" / tool).exists())
        image.add_program(f"bin/{tool}", where / "usr/bin" / tool)
    for program in ["orvicam", "orvi-vcam-usbip"]:
        image.add_program(f"sdk/bin/{program}", sdk / "bin" / program)
    for library in ["libOrviCamApi_64.so.1", "libOrviU3vCamApi_64.so"]:
        image.add_program(f"sdk/lib/{library}", sdk / "lib" / library)
    for test in ["e2e/e2e_test", "e2e/fault_test", "effects/effect_test"]:
        image.add_program(f"bin/{Path(test).name}", build / "tests" / test, search=[sdk / "lib"])
    for host in HOSTS.values():
        if (build / "bench/kernel" / host).exists():
            image.add_program(f"bin/{host}", build / "bench/kernel" / host, search=[sdk / "lib"])
    image.add_bytes("limit", b"%d\n" % GUEST_LIMIT)
    image.add_bytes("steps", "".join(f"{s.limit} {s.name} {s.command}\n" for s in steps).encode())
    initrd = folder / "initrd"
    image.write(initrd)
    return vmlinux, initrd


def boot(vmlinux, initrd):
    """The guest's lines as they come, then its exit code."""
    # On a busy machine the kernel's check of the emulated timer fails now and then, which would be its end.
    kernel_options = "console=ttyS0 quiet panic=-1 no_timer_check"
    command = ["qemu-system-x86_64", "-M", "q35", "-accel", "tcg,thread=multi", "-cpu", "qemu64", "-smp", "2",
               "-m", "768", "-nodefaults", "-no-reboot", "-display", "none", "-net", "none", "-serial", "stdio",
               "-device", "isa-debug-exit,iobase=0x501,iosize=1",
               "-kernel", vmlinux, "-initrd", initrd, "-append", kernel_options]
    with subprocess.Popen(["timeout", "-k", "5", str(GUEST_LIMIT + 30), *command], stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT) as qemu:
        for line in qemu.stdout:
            yield line.decode(errors="replace").rstrip()
        yield qemu.wait()


def main():
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        print(__doc__)
        return 2
    build, wanted = Path(sys.argv[1]).resolve(), sys.argv[2:]
    unknown = set(wanted) - {s.name for s in STEPS} - {"--bench"}
    if unknown:
        print(f"guest.py: no step {', '.join(unknown)}; there are {', '.join(s.name for s in STEPS)}", file=sys.stderr)
        return 2
    is_bench = "--bench" in wanted
    steps = BENCH_STEPS if is_bench else [s for s in STEPS if not wanted or s.name in wanted or s.name == "attach"]
    folder = build / "kernel-guest"
    try:
        vmlinux, initrd = build_image(build, folder, steps)
    except (Problem, OSError) as problem:
        print(f"guest.py: {problem}", file=sys.stderr)
        return 1

    print(f"== Guest: {vmlinux.name}, {initrd.stat().st_size >> 20} MB", flush=True)
    results, output, code, figures = {}, [], None, {}
    with open(folder / "console.log", "w", encoding="utf-8") as log:
        for line in boot(vmlinux, initrd):
            if isinstance(line, int):
                code = line
                break
            log.write(line + "\n")
            log.flush()
            if begun := re.match(r"@@ begin (\S+)", line):
                name, output = begun[1], []
                print(f"-- {name}", flush=True)
            elif ended := re.match(r"@@ end (\S+) (\d+) (\S+) (\S+)", line):
                results[ended[1]] = (int(ended[2]), float(ended[4]) - float(ended[3]))
                if ended[2] != "0":
                    print("\n".join(output))
            else:
                output.append(line)
                if figure := re.match(r"figure (\S+) (\S+)", line):
                    figures.setdefault(figure[1], {}).setdefault(name.split("-")[0], []).append(float(figure[2]))
    good = code == 1 and all(results.get(s.name, (1,))[0] == 0 for s in steps)
    print("== Result")
    for step in steps:
        status, seconds = results.get(step.name, (None, 0))
        text = {None: "not run", 0: "ok", 124: "TIMEOUT"}.get(status, f"FAILED ({status})")
        print(f"{text:12} {seconds:6.1f} s  {step.name:18} {step.what}")
    if is_bench and good:
        print(f"{'ratio':>8}  {'ours':>12}  {'Aravis':>12}     medians of three turns; figures of an emulated machine")
        for what, hosts in figures.items():
            ours, peer = statistics.median(hosts["ours"]), statistics.median(hosts["aravis"])
            print(f"{ours / peer:8.2f}  {ours:12.1f}  {peer:12.1f}     {what}")
    print(f"The console is in {folder / 'console.log'}.")
    if not good:
        print(f"guest.py: the guest's verdict is {code} instead of 1" if code != 1 else "guest.py: a step failed",
              file=sys.stderr)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
