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


# A description file of cameras, and the descriptions that it names.
CAMERA_FILES = ["kernel/cameras.toml", "e2e/every_kind.xml", "genapi/descriptions/Inspection.xml",
                "genapi/descriptions/Thermal.xml", "vcam/foreign/selectors.xml", "vcam/foreign/big_endian.xml"]

# What the commands of the steps use besides programs. Only a failure waits as long as await() does.
FUNCTIONS = r"""
await() { # await CONDITION
    for i in $(seq 300); do eval "$1" && return; sleep 0.1; done
    echo "in vain: $1"; tail /tmp/*.log; dmesg | tail; return 1
}
plug() { # plug LOG COUNT OPTION...
    log=$1 count=$2; shift 2
    orvi-vcam-usbip "$@" >$log 2>&1 & exporter=$!
    await "[ \$(grep -c plugged $log) = $count ]"
}
plug_more() { # plug_more LOG COUNT OPTION...: no longer than for this step
    trap 'kill -KILL $exporter 2>/dev/null' EXIT
    plug "$@"
}
unplug() { # unplug LOG COUNT
    kill -INT $exporter && await "[ ! -d /proc/$exporter ]" && await "[ \$(grep -c 'pulled out' $1) = $2 ]"
}
same_images() { # same_images SERIAL: in-process and over USB
    for road in virtual usb; do
        rm -rf /tmp/of-$road
        ORVI_TRANSPORT=$road ORVI_VIRTUAL_CAMERAS=$cameras orvicam -c $1 grab --count 10 --format raw \
            --set Width=320 Height=240 AcquisitionFrameRate=10 --output /tmp/of-$road || return 1
        rm /tmp/of-$road/*.json # which tell times
    done
    diff -r /tmp/of-virtual /tmp/of-usb && [ $(ls /tmp/of-usb | wc -l) = 10 ]
}
port_of() { usbip port 2>/dev/null | awk -v id="$1" '/^Port/ { port = $2 + 0 } $NF == id { print port }'; }
as() { # as USER COMMAND
    su -s /bin/sh $1 -c "ORVI_TRANSPORT=usb $2"
}
sudo() { "$@"; }
cameras=/tests/kernel/cameras.toml
"""

STEPS = [
    Step("attach", "two virtual cameras in the kernel's USB", 60, "plug /tmp/exporter.log 2 --attach --cameras 2"),
    Step("permission", "a user without rights is told of the udev rule; with it, members of plugdev may", 60,
         "mkdir -p /etc/udev/rules.d; "
         "as visitor 'orvicam list' | tee /tmp/out; "
         "[ $(grep -c 'cannot be opened: no permission, see 70-u3v.rules' /tmp/out) = 2 ] || exit 1; "
         "if as visitor 'orvicam -c VC000001 get Width' 2>/tmp/out; then exit 1; fi; cat /tmp/out; "
         "grep -q 'EACCES.*70-u3v.rules' /tmp/out || exit 1; "
         "if as visitor 'orvicam doctor' >/tmp/out; then exit 1; fi; cat /tmp/out; "
         "remedy=$(sed -n '/^FAIL *permission of VC000001/{n;s/^ *-> //p}' /tmp/out); eval \"$remedy\" && "
         "udevadm settle && as visitor 'orvicam -c VC000001 get Width' && "
         "as visitor 'orvicam doctor' | tee /tmp/out; grep -q '^OK *udev rule' /tmp/out && "
         "grep -q '^OK *permission of VC000002' /tmp/out || exit 1; "
         "as nobody 'orvicam doctor' | tee /tmp/out; grep -q -- '-> sudo usermod -aG plugdev nobody' /tmp/out && "
         "ls /dev/u3v/by-id/*VC000001 && udevadm info /dev/u3v/by-id/*VC000001 | grep 'TAGS=.*:uaccess:'"),
    Step("same", "one application, in-process and over USB: 1000 images, all features", 300,
         "for road in virtual usb; do export ORVI_TRANSPORT=$road ORVI_E2E_LINK=$road; "
         "{ ORVI_VIRTUAL_CAMERAS=2 orvicam list && ORVI_VIRTUAL_CAMERAS=2 orvicam -c VC000001 --json features --all && "
         "ORVI_VIRTUAL_CAMERAS=2 orvicam -c VC000002 --json values && "
         "effect_test --gtest_color=no --gtest_filter='ThousandImages*' | "
         "tee /tmp/images | grep ' sum '; } >/tmp/$road || { cat /tmp/$road /tmp/images; exit 1; }; done; "
         "wc -l /tmp/virtual /tmp/usb; grep ' sum ' /tmp/usb; diff /tmp/virtual /tmp/usb"),
    Step("nodes", "features by function, register and node", 300,
         "ORVI_E2E_LINK=usb effect_test --gtest_color=no --gtest_filter='Road*'"),
    Step("effects", "features and the images that they give", 300,
         "ORVI_E2E_LINK=usb effect_test --gtest_color=no --gtest_filter='Format*:Geometry*:Tone*:Defect*:Colour*:"
         "Trigger*:UserSet*:-*LookUpTable*:*IsNeverDone*:*DelayLies*:*WidthOfTheTrigger*'"),
    Step("e2e", "the library's tests of whole applications", 400,
         "ORVI_E2E_LINK=usb e2e_test --gtest_color=no --gtest_filter=-WrongHandleTest.*"),
    Step("faults", "the library's tests of failing cameras", 400,
         "ORVI_E2E_LINK=usb fault_test --gtest_color=no"),
    Step("busy", "a camera of another program is told of as in use", 60,
         "orvicam -c VC000001 events --no-stream Test >/tmp/events.log 2>&1 & holder=$!; "
         "await 'readlink /sys/bus/usb/devices/2-1:1.0/driver | grep -q usbfs' && orvicam list | tee /tmp/out; "
         "grep -q 'VC000001 cannot be opened: in use by another program' /tmp/out && "
         "[ $(grep -c 'cannot be opened' /tmp/out) = 1 ] || exit 1; "
         "if orvicam -c VC000001 get Width 2>/tmp/out; then exit 1; fi; cat /tmp/out; "
         "grep -q 'another program has the camera open; close that one first' /tmp/out && "
         "orvicam doctor >/tmp/out; grep 'WARN *driver of VC000001 *a program is using the camera' /tmp/out || exit 1; "
         "kill -INT $holder; wait $holder; orvicam -c VC000001 get Width"),
    Step("kinds", "nodes of every kind, in-process and over USB", 200,
         "plug_more /tmp/kinds.log 7 --attach --config $cameras || exit 1; "
         "for road in virtual usb; do ORVI_E2E_LINK=$road ORVI_VIRTUAL_CAMERAS=$cameras "
         "described_camera_test --gtest_color=no --gtest_filter='EveryKind*' >/tmp/out || { cat /tmp/out; exit 1; }; "
         "grep '^seen' /tmp/out >/tmp/$road; done; "
         "wc -l /tmp/virtual /tmp/usb; diff /tmp/virtual /tmp/usb && [ $(wc -l </tmp/usb) -gt 200 ] && "
         "unplug /tmp/kinds.log 7"),
    Step("usb2", "a camera at 480 Mbit/s: its images, and what the doctor says of it", 100,
         "plug_more /tmp/usb2.log 7 --attach --config $cameras && same_images USB2 && "
         "orvicam doctor >/tmp/out; cat /tmp/out; "
         "grep 'WARN *link of USB2 *480 Mbit/s at port 1-1: a USB 2 link' /tmp/out && "
         "grep 'OK *link of SUPER *5000 Mbit/s' /tmp/out && unplug /tmp/usb2.log 7"),
    Step("served", "Debian's usbip takes a camera over TCP, gives it back, and takes it again", 100,
         "trap 'kill -KILL $exporter 2>/dev/null' EXIT; ip link set lo up; orvi-vcam-usbip --serve --config $cameras >/tmp/served.log 2>&1 & exporter=$!; "
         "await 'grep -q offered.as.1-7 /tmp/served.log' && usbip list -r 127.0.0.1 2>&1 | tee /tmp/out; "
         "[ $(grep -c '1-[1-7]: .*(1209:0001)' /tmp/out) = 7 ] || exit 1; "
         "for round in 1 2; do usbip attach -r 127.0.0.1 -b 1-7 && "
         "await 'ORVI_TRANSPORT=usb orvicam list | grep -q SUPER' && "
         "port=$(port_of usbip://127.0.0.1:3240/1-7); "
         "if usbip list -r 127.0.0.1 2>&1 | grep 1-7:; then exit 1; fi; "
         "same_images SUPER && usbip detach -p $port && "
         "await \"[ \\$(grep -c 'given back' /tmp/served.log) = $round ]\" && "
         "await '! ORVI_TRANSPORT=usb orvicam list | grep -q SUPER' || exit 1; done; "
         "kill -INT $exporter && await \"[ ! -d /proc/$exporter ]\""),
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
         "exporter=$(pidof orvi-vcam-usbip); unplug /tmp/exporter.log 2; status=$?; cat /tmp/exporter.log; "
         "[ $status = 0 ] && ! ls /sys/bus/usb/devices/2-1 2>/dev/null && "
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
    packages = unpack([kernel, "udev", "busybox-static", "usbip", "libwrap0", "aravis-tools",
                       "aravis-tools-cli"], folder / "packages")
    vmlinux = folder / f"vmlinux-{packages[kernel].name}"
    if not vmlinux.exists():
        extract_kernel(next(packages[kernel].glob("boot/vmlinuz-*")), vmlinux)

    image = Image(folder / "stripped")
    image.add("init", HERE / "init")
    image.add("bin/busybox", packages["busybox-static"] / "bin/busybox")
    image.add_program("sbin/udevd", packages["udev"] / "bin/udevadm")
    image.link("bin/udevadm", "/sbin/udevd")
    rules = "usr/lib/udev/rules.d/50-udev-default.rules"
    image.add(rules, next(packages["udev"].glob(f"**/{Path(rules).name}")))
    image.add("sdk/share/udev/rules.d/70-u3v.rules", sdk / "share/udev/rules.d/70-u3v.rules")
    image.add_bytes("etc/passwd", b"root:x:0:0::/root:/bin/sh\nnobody:x:65534:65534::/tmp:/bin/sh\n"
                                  b"visitor:x:1000:1000::/tmp:/bin/sh\n")
    image.add_bytes("etc/group", b"root:x:0:\nplugdev:x:46:visitor\nvisitor:x:1000:\nnogroup:x:65534:\n")
    for module in MODULES:
        path = next(packages[kernel].glob(f"lib/modules/*/kernel/drivers/usb/{module}.ko*"))
        image.add_bytes(f"modules/{Path(module).name}.ko", decompress(path.read_bytes()))
    for tool in ["arv-tool-0.8", "arv-camera-test-0.8"]:
        where = next(p for p in packages.values() if (p / "usr/bin" / tool).exists())
        image.add_program(f"bin/{tool}", where / "usr/bin" / tool)
    image.add_program("bin/usbip", packages["usbip"] / "usr/sbin/usbip",
                      search=list(packages["libwrap0"].glob("usr/lib/*")))
    for program in ["orvicam", "orvi-vcam-usbip"]:
        image.add_program(f"sdk/bin/{program}", sdk / "bin" / program)
    for library in ["libOrviCamApi_64.so.1", "libOrviU3vCamApi_64.so"]:
        image.add_program(f"sdk/lib/{library}", sdk / "lib" / library)
    for test in ["e2e/e2e_test", "e2e/fault_test", "e2e/described_camera_test", "effects/effect_test"]:
        image.add_program(f"bin/{Path(test).name}", build / "tests" / test, search=[sdk / "lib"])
    for host in HOSTS.values():
        if (build / "bench/kernel" / host).exists():
            image.add_program(f"bin/{host}", build / "bench/kernel" / host, search=[sdk / "lib"])
    for file in CAMERA_FILES:
        image.add(f"tests/{file}", HERE.parent / file)
    image.add_bytes("functions", FUNCTIONS.encode())
    image.add_bytes("limit", b"%d\n" % GUEST_LIMIT)
    image.add_bytes("steps", "".join(f"{s.limit} {s.name} {s.command}\n" for s in steps).encode())
    initrd = folder / "initrd"
    image.write(initrd)
    return vmlinux, initrd


def boot(vmlinux, initrd, processors):
    """The guest's lines as they come, then its exit code."""
    # On a busy machine the kernel's check of the emulated timer fails now and then, which would be its end.
    # Without tsc=reliable the clock is a device of QEMU's, which takes long to ask. The rest saves work that an emulator
    # does slowly.
    kernel_options = "console=ttyS0 quiet panic=-1 no_timer_check tsc=reliable mitigations=off init_on_alloc=0"
    command = ["qemu-system-x86_64", "-M", "q35", "-accel", "tcg,thread=multi", "-cpu", "qemu64", "-smp", str(processors),
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
        # Camera and host wait for each other: a second emulated processor makes the tests four times slower. What is
        # measured is that of a machine with several.
        for line in boot(vmlinux, initrd, 2 if is_bench else 1):
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
