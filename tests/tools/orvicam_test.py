#!/usr/bin/env python3
"""orvicam as people and scripts use it: the built program against virtual cameras.

ORVICAM names the program, UNPLUG_PRELOAD the library that pulls the plug.
"""

import json
import os
import pty
import re
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from image_files import read_png, read_pnm

SMALL = ["Width=128", "Height=32"]
HOME = tempfile.TemporaryDirectory()  # the library keeps a cache below it


class Result:
    def __init__(self, code, out, err):
        self.code, self.out, self.err = code, out, err

    def json(self):
        return json.loads(self.out)


def environment(**changes):
    env = {key: value for key, value in os.environ.items() if not key.startswith("ORVI") or key == "ORVICAM"}
    env["HOME"] = HOME.name
    env.update(changes)
    return env


def orvicam(*arguments, **changes):
    done = subprocess.run([os.environ["ORVICAM"], *map(str, arguments)], capture_output=True, text=True, check=False,
                          env=environment(**changes), timeout=120)
    return Result(done.returncode, done.stdout, done.stderr)


class OrvicamTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def succeed(self, *arguments, **changes):
        result = orvicam(*arguments, **changes)
        self.assertEqual((result.code, result.err), (0, ""), result.out)
        return result

    def fail_with(self, code, texts, *arguments, **changes):
        result = orvicam(*arguments, **changes)
        self.assertEqual(result.code, code, result.out + result.err)
        self.assertTrue(result.err.startswith("orvicam: "), result.err)
        self.assertEqual(result.err.count("\n"), 1, result.err)
        for text in texts:
            self.assertIn(text, result.err)
        return result

    def grab(self, *arguments, settings=(), cameras=1):
        return self.succeed("--virtual", cameras, "grab", *arguments, "--set", *SMALL, *settings)

    def files(self):
        return sorted(path.name for path in self.folder.iterdir())


class Errors(OrvicamTest):
    def test_a_command_line_that_is_not_understood(self):
        self.fail_with(2, ["bogus", "orvicam --help"], "bogus")
        self.fail_with(2, ["feature"], "get")
        self.fail_with(2, ["jpg", "png"], "grab", "--format", "jpg")
        self.fail_with(2, ["65"], "--virtual", 65)
        self.fail_with(2, ["--count"], "grab", "--count", 0)
        self.fail_with(2, ["--count"], "events", "Test", "--count", 0)
        self.fail_with(2, ["event"], "events")
        self.fail_with(2, ["feature"], "describe")
        self.fail_with(2, ["file"], "save")
        self.fail_with(2, ["file"], "load")

    def test_help_lists_the_exit_codes(self):
        text = self.succeed("--help").out
        for code in ("0 ", "1 ", "2 ", "3 ", "4 ", "5 ", "6 ", "7 ", "8 ", "130 "):
            self.assertRegex(text, rf"(?m)^  {code} *\w")

    def test_no_transport_names_the_path_that_was_tried(self):
        self.fail_with(3, [f"{self.folder}/lib/libOrviU3vCamApi_64.so", "no such file", "ORVICAMSDK"], "list",
                       ORVICAMSDK=str(self.folder))

    def test_a_transport_that_is_no_library_says_so(self):
        (self.folder / "lib").mkdir()
        transport = self.folder / "lib/libOrviU3vCamApi_64.so"
        transport.write_text("no ELF at all, but long enough for a header " * 4)
        self.fail_with(3, [str(transport), "ELF"], "list", ORVICAMSDK=str(self.folder))

    def test_no_camera_says_how_to_get_a_virtual_one(self):
        usb = re.search("USB: (.*)", self.succeed("info", "--virtual", 1).out)[1]
        hint = "knows virtual cameras only" if usb.startswith("no ") else "plugged in"
        for verb in (["list"], ["info"], ["get", "Width"], ["set", "Width=64"], ["grab"], ["features"], ["values"],
                     ["describe", "Width"], ["events", "Test"], ["save", self.folder / "a"], ["load", "a"]):
            self.fail_with(4, ["no camera", hint, "--virtual 1", "ORVI_VIRTUAL_CAMERAS=1"], "--virtual", 0, *verb)
        self.assertEqual(self.files(), [])

    def test_an_empty_list_is_valid_json(self):
        self.assertEqual(self.fail_with(4, ["no camera"], "--virtual", 0, "list", "--json").json(), [])


class Selection(OrvicamTest):
    def serials(self, *arguments):
        return [camera["serial"] for camera in self.succeed("--virtual", 3, "--json", "list", *arguments).json()]

    def test_by_serial_number_index_and_glob(self):
        self.assertEqual(self.serials(), ["VC000001", "VC000002", "VC000003"])
        self.assertEqual(self.serials("-c", "VC000002"), ["VC000002"])
        self.assertEqual(self.serials("-c", "2"), ["VC000003"])
        self.assertEqual(self.serials("-c", "*[13]"), ["VC000001", "VC000003"])

    def test_several_names_keep_their_order_and_name_a_camera_once(self):
        self.assertEqual(self.serials("-c", "VC000003", "-c", "VC*"), ["VC000003", "VC000001", "VC000002"])

    def test_an_unknown_camera_is_an_error_that_lists_the_known(self):
        self.fail_with(4, ["'VC9'", "VC000001, VC000002"], "--virtual", 2, "list", "-c", "VC9")
        self.fail_with(4, ["'7'"], "--virtual", 2, "get", "Width", "-c", "7")

    def test_a_camera_must_be_named_where_several_are_attached(self):
        for verb in (["get", "Width"], ["set", "Width=64"], ["grab"], ["features"], ["values"], ["describe", "Width"],
                     ["events", "Test"], ["save", self.folder / "a"], ["load", __file__]):
            self.fail_with(4, ["2 cameras", "VC000001, VC000002", "--camera"], "--virtual", 2, *verb)

    def test_options_may_stand_before_and_after_the_verb(self):
        self.assertEqual(self.succeed("get", "Width", "--virtual", 2, "-c", 1).out, "Width=1920\n")


class Doctor(OrvicamTest):
    def put(self, path, text=""):
        file = self.folder / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)

    def test_a_machine_that_is_fine(self):
        self.put("sys/bus/usb/devices/usb2/speed", "5000\n")
        self.put("dev/bus/usb/002/001")
        self.put("sys/module/usbcore/parameters/usbfs_memory_mb", "16\n")
        self.put("etc/udev/rules.d/70-u3v.rules", 'ENV{ID_USB_INTERFACES}=="*:ef0500:*", TAG+="uaccess"\n')
        said = self.succeed("--virtual", 1, "doctor", "--root", self.folder).out
        self.assertEqual({line.split()[0] for line in said.splitlines()}, {"OK"}, said)
        self.assertIn("VC000001", said)

    def test_a_camera_that_cannot_be_opened_ends_with_1_and_says_what_to_do(self):
        device = "sys/bus/usb/devices/2-1"
        for kind, codes in ((f"{device}/bDevice", "ef 02 01"), (f"{device}:1.0/bInterface", "ef 05 00")):
            for part, code in zip(("Class", "SubClass", "Protocol"), codes.split()):
                self.put(kind + part, code + "\n")
        for name, value in (("busnum", "2"), ("devnum", "7"), ("speed", "480"), ("serial", "C1")):
            self.put(f"{device}/{name}", value + "\n")
        self.put("dev/bus/usb/002/001")
        result = orvicam("--virtual", 1, "doctor", "--root", self.folder, "--json")
        self.assertEqual(result.code, 1, result.err)
        said = result.json()
        self.assertEqual(said["verdict"], "fail")
        found = {finding["check"]: finding for finding in said["findings"]}
        self.assertEqual((found["permission of C1"]["verdict"], found["link of C1"]["verdict"]), ("fail", "warn"))
        self.assertIn("/dev/bus/usb/002/007", found["permission of C1"]["text"])
        self.assertIn("C1", found["cameras"]["text"])
        for finding in said["findings"]:
            self.assertEqual(finding["verdict"] == "ok", "remedy" not in finding, finding)
        text = orvicam("--virtual", 1, "doctor", "--root", self.folder)
        self.assertEqual(text.code, 1)
        self.assertIn("FAIL  permission of C1", text.out)

    def test_the_rule_to_install_is_the_one_of_this_sdk(self):
        said = orvicam("doctor", "--root", self.folder, "--json").json()
        remedy = next(finding["remedy"] for finding in said["findings"] if finding["check"] == "udev rule")
        self.assertTrue(Path(remedy.split("'")[1]).is_file(), remedy)

    def test_a_library_without_its_transport_fails(self):
        result = orvicam("doctor", "--root", self.folder, "--json", ORVICAMSDK=self.folder / "nothing")
        found = {finding["check"]: finding for finding in result.json()["findings"]}
        self.assertEqual((result.code, found["transport"]["verdict"]), (1, "fail"))
        self.assertIn(str(self.folder / "nothing"), found["transport"]["text"])
        self.assertEqual(found["transport"]["remedy"], "export ORVICAMSDK=/opt/OrviCamSDK")


COMPLETION = Path(__file__).resolve().parents[2] / "tools/orvicam/completion.bash"


class Completion(OrvicamTest):
    def complete(self, *words):
        """What bash offers for the last word; the words are as bash cuts them, "=" is one of its own."""
        script = (f'source {COMPLETION}; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _orvicam; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        done = subprocess.run(["bash", "-c", script, "bash", os.environ["ORVICAM"], *words], capture_output=True,
                              text=True, check=False, env=environment(), timeout=120)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout.split()

    def test_verbs_are_those_of_the_help(self):
        verbs = re.findall(r"(?m)^  ([a-z]+) ", self.succeed("--help").out.split("Subcommands:")[1].split("\n\n")[0])
        self.assertGreaterEqual(len(verbs), 12)
        self.assertEqual(self.complete(""), verbs)
        self.assertEqual(self.complete("--virtual", "1", "de"), ["describe"])

    def test_options_are_those_of_all_verbs_and_of_the_one(self):
        self.assertIn("--virtual", self.complete("--v"))
        self.assertEqual(self.complete("grab", "--fo"), ["--format", "--force"])
        self.assertEqual(self.complete("list", "--fo"), [])

    def test_cameras_and_features_are_those_that_there_are(self):
        self.assertEqual(self.complete("--virtual", "2", "-c", "VC"), ["VC000001", "VC000002"])
        self.assertEqual(self.complete("--virtual", "1", "get", "PixelFo"), ["PixelFormat"])
        self.assertIn("Width=", self.complete("--virtual", "1", "set", "Wi"))
        self.assertNotIn("SensorWidth=", self.complete("--virtual", "1", "set", "Sensor"))
        self.assertEqual(self.complete("--virtual", "2", "-c", "VC000002", "grab", "--set", "PixelF"),
                         ["PixelFormat="])

    def test_values_are_entries_and_truth(self):
        self.assertEqual(self.complete("--virtual", "1", "set", "PixelFormat", "=", "RG"), ["RGB8"])
        self.assertIn("Mono8", self.complete("--virtual", "1", "set", "PixelFormat", "="))
        self.assertEqual(self.complete("--virtual", "1", "set", "ReverseX", "=", "t"), ["true"])
        self.assertEqual(self.complete("--virtual", "1", "set", "Width", "=", ""), [])

    def test_what_there_is_of_virtual_cameras(self):
        self.assertEqual(self.complete("vcam", ""), ["check"])

    def test_without_a_camera_nothing_is_offered(self):
        self.assertEqual(self.complete("get", "W"), [])


class Vcam(OrvicamTest):
    def file(self, text, name="cameras.toml"):
        path = self.folder / name
        path.write_text(text)
        return path

    def test_check_tells_the_cameras_of_a_file(self):
        path = self.file('[[camera]]\ncount = 2\nserial = "A1"\nmodel = "Eye"\npixel_formats = ["Mono8", "RGB8"]\n')
        self.assertEqual([line.split() for line in self.succeed("vcam", "check", path).out.splitlines()],
                         [["SERIAL", "MODEL", "SENSOR", "PIXEL", "FORMATS", "FAULTS", "IMAGE"]] +
                         [[serial, "Orvi", "Eye", "1920", "x", "1200", "Mono8,", "RGB8", "0", "pattern"]
                          for serial in ("A1", "A2")])
        said = self.succeed("vcam", "check", path, "--json").json()
        self.assertEqual((said["file"], said["mistakes"]), (str(path), []))
        self.assertEqual([camera["serial"] for camera in said["cameras"]], ["A1", "A2"])

    def test_check_tells_all_mistakes_and_ends_with_1(self):
        path = self.file('[[camera]]\nmodle = "Eye"\nsensor_width = 5\nserial = "A"\n[[camera]]\nserial = "A"\n')
        result = self.fail_with(1, [str(path), "3 mistakes"], "vcam", "check", path)
        lines = result.out.splitlines()
        self.assertEqual([line.split(" ")[0] for line in lines], [f"{path}:2:1:", f"{path}:3:16:", f"{path}:6:10:"])
        self.assertIn("there is no key 'modle' in [[camera]]; did you mean 'model'?", lines[0])
        self.assertTrue(lines[1].endswith("sensor_width takes 64 to 16384, not 5"))
        self.assertTrue(lines[2].endswith("serial A is taken by the camera at 4:10"))
        said = self.fail_with(1, ["3 mistakes"], "vcam", "check", path, "--json").json()
        self.assertEqual([(mistake["line"], mistake["column"]) for mistake in said["mistakes"]],
                         [(2, 1), (3, 16), (6, 10)])
        self.assertEqual(said["cameras"], [])

    def test_check_needs_a_file_that_can_be_read(self):
        self.fail_with(2, ["file"], "vcam", "check")
        self.fail_with(2, ["subcommand"], "vcam")
        self.fail_with(8, ["gone.toml", "No such file"], "vcam", "check", self.folder / "gone.toml")
        self.fail_with(8, ["folder"], "vcam", "check", self.folder)

    def test_the_sample_of_the_sdk_is_right(self):
        sample = Path(os.environ["ORVICAM"]).parent.parent / "share/orvi/virtual-cameras.toml"
        self.assertIn("FAULTY01", self.succeed("vcam", "check", sample).out)

    def test_cameras_of_a_file_are_listed_with_who_they_are(self):
        path = self.file('[[camera]]\nserial = "A1"\nvendor = "Acme"\nmodel = "Eye"\nfamily = "Eyes"\nuser_name = "left"\n'
                         'device_version = "2.5"\nmanufacturer_info = "made up"\nlink_speed = "high"\n')
        expected = {"serial": "A1", "manufacturer": "Acme", "model": "Eye", "userName": "left", "linkSpeed": "high",
                    "family": "Eyes", "deviceVersion": "2.5", "manufacturerInfo": "made up"}
        for arguments, changes in (([], {"ORVI_VIRTUAL_CAMERAS": str(path)}), (["--virtual", path], {})):
            camera, = self.succeed("info", "--json", *arguments, **changes).json()
            self.assertEqual({key: camera[key] for key in expected}, expected)

    def test_features_are_those_of_the_file(self):
        path = self.file('[[camera]]\nsensor_width = 640\nsensor_height = 480\nframe_rate_limit = 12.5\n'
                         'pixel_formats = ["RGB8", "Mono8"]\n')
        self.assertEqual(self.succeed("--virtual", path, "get", "Width", "Height", "PixelFormat").out,
                         "Width=640\nHeight=480\nPixelFormat=RGB8\n")
        described = self.succeed("--virtual", path, "describe", "PixelFormat", "AcquisitionFrameRate", "--json").json()
        formats, rate = described[0]["features"]
        self.assertEqual(sorted(formats["entries"]), ["Mono8", "RGB8"])
        self.assertEqual((rate["max"], rate["value"]), (12.5, 12.5))

    def test_images_of_a_folder_are_grabbed_as_they_are(self):
        pixels = [bytes((x * 7 + y * 31 + image * 5) % 256 for y in range(16) for x in range(64)) for image in range(2)]
        for image, name in enumerate(("a.pgm", "b.pgm")):
            (self.folder / name).write_bytes(b"P5 64 16 255\n" + pixels[image])
        path = self.file('[[camera]]\nsensor_width = 64\nsensor_height = 16\n[camera.image]\nsource = "images"\n'
                         'path = "."\n')
        out = self.folder / "out"
        self.succeed("--virtual", path, "grab", "--count", 3, "--format", "raw", "--output", f"{out}/{{n}}.raw")
        files = sorted(out.glob("*.raw"))
        self.assertEqual(len(files), 3)
        for file in files:
            block, = [json.loads(beside.read_text())["blockId"] for beside in out.glob(f"{file.stem}*.json")]
            self.assertEqual(file.read_bytes(), pixels[block % 2])

    def test_a_broken_file_gives_no_cameras_and_says_why(self):
        path = self.file("[[camera]]\nmodle = 1\nvendor = 2\n")
        for verb in (["list"], ["get", "Width"]):
            result = orvicam(*verb, ORVI_VIRTUAL_CAMERAS=str(path))
            self.assertEqual(result.code, 4)
            first, second = result.err.splitlines()
            self.assertTrue(first.startswith(f"{path}:2:1: there is no key 'modle'"), first)
            self.assertTrue(first.endswith(f"1 more; there are no virtual cameras: 'orvicam vcam check {path}' tells all "
                                           "mistakes"), first)
            self.assertTrue(second.startswith("orvicam: no camera found"), second)
        self.fail_with(2, ["two", "neither a number"], "--virtual", "two", "list")


class List(OrvicamTest):
    def test_is_what_no_verb_means(self):
        self.assertEqual(self.succeed("--virtual", 2).out, self.succeed("--virtual", 2, "list").out)

    def test_is_a_table_with_a_line_for_each_camera(self):
        lines = self.succeed("list", "--virtual", 2).out.splitlines()
        self.assertEqual(lines[0].split()[:2], ["INDEX", "SERIAL"])
        self.assertEqual([line.split()[:4] for line in lines[1:]],
                         [["0", "VC000001", "Orvi", "Virtual"], ["1", "VC000002", "Orvi", "Virtual"]])

    def test_the_environment_asks_for_virtual_cameras_too(self):
        self.assertEqual(len(self.succeed("list", "--json", ORVI_VIRTUAL_CAMERAS="2").json()), 2)

    def test_json(self):
        self.assertEqual(self.succeed("list", "--json", "--virtual", 1).json(),
                         [{"index": 0, "serial": "VC000001", "manufacturer": "Orvi", "model": "Virtual Camera",
                           "userName": "", "linkSpeed": "super"}])

    def test_info_tells_more(self):
        camera, = self.succeed("info", "--json", "--virtual", 1).json()
        self.assertEqual(camera["serial"], "VC000001")
        self.assertRegex(camera["u3vVersion"], r"^1\.\d+$")
        self.assertGreater(camera["maxTransferSize"], 0)
        text = self.succeed("info", "--virtual", 1).out
        for expected in ("VC000001", "Virtual Camera", "5 Gbit/s", "library", "transport"):
            self.assertIn(expected, text)


class Features(OrvicamTest):
    def get(self, *arguments):
        return self.succeed("--virtual", 1, "get", *arguments)

    def set(self, *arguments):
        return self.succeed("--virtual", 1, "set", *arguments)

    def refuse(self, texts, *arguments):
        self.fail_with(5, texts, "--virtual", 1, *arguments)

    def test_get_prints_what_set_takes(self):
        text = self.get("Width", "PixelFormat").out
        self.assertEqual(text, "Width=1920\nPixelFormat=Mono8\n")
        self.assertEqual(self.set(*text.split()).out, text)

    def test_get_bare_prints_values_alone(self):
        self.assertEqual(self.get("--bare", "Width", "DeviceSerialNumber").out, "1920\nVC000001\n")

    def test_get_json_has_typed_values(self):
        camera, = self.get("--json", "Width", "Gain", "PixelFormat", "AcquisitionActive").json()
        values = camera["values"]
        self.assertEqual(camera["serial"], "VC000001")
        self.assertEqual(list(values), ["Width", "Gain", "PixelFormat", "AcquisitionActive"])
        self.assertEqual((values["Width"], values["PixelFormat"], values["AcquisitionActive"]), (1920, "Mono8", False))
        self.assertIsInstance(values["Gain"], float)

    def test_several_cameras_are_told_apart(self):
        result = self.succeed("--virtual", 2, "-c", "*", "get", "Width")
        self.assertEqual(result.out, "VC000001 Width=1920\nVC000002 Width=1920\n")

    def test_set_works_in_the_order_given(self):
        # The offset fits only after the width has shrunk, and the width can then not grow again.
        self.assertEqual(self.set("Width=640", "OffsetX=1280").out, "Width=640\nOffsetX=1280\n")
        self.refuse(["OffsetX: 1280 is out of range"], "set", "OffsetX=1280", "Width=640")
        self.refuse(["Width: 1920 is out of range", "to 640"], "set", "Width=640", "OffsetX=1280", "Width=1920")

    def test_set_prints_what_the_camera_holds(self):
        camera, = self.set("--json", "ExposureTime=5000", "TestPattern=ColorBar").json()
        self.assertAlmostEqual(camera["values"]["ExposureTime"], 5000, delta=1)
        self.assertEqual(camera["values"]["TestPattern"], "ColorBar")

    def test_set_executes_commands(self):
        self.assertEqual(self.set("TimestampLatch").out, "")
        self.refuse(["command", "set TimestampLatch"], "set", "TimestampLatch=1")
        self.refuse(["Width", "Width=VALUE"], "set", "Width")

    def test_an_unknown_feature_names_the_closest(self):
        self.refuse(["'Widht'", "Width"], "get", "Widht")
        self.refuse(["'exposuretime'", "ExposureTime"], "set", "exposuretime=3")
        self.refuse(["'Zzzzzzzzzz'"], "get", "Zzzzzzzzzz")

    def test_a_value_out_of_range_names_range_step_and_unit(self):
        result = orvicam("--virtual", 1, "set", "Width=100000")
        self.assertEqual(result.code, 5)
        self.assertRegex(result.err, r"^orvicam: Width: 100000 is out of range; it takes \d+ to 1920 px in steps of \d+\n$")
        self.refuse(["Width: 641 is out of range", "in steps of"], "set", "Width=641")
        result = orvicam("--virtual", 1, "set", "ExposureTime=-5")
        self.assertEqual(result.code, 5)
        self.assertRegex(result.err, r"ExposureTime: -5 is out of range; it takes [\d.]+ to [\d.e+]+ us")

    def test_a_value_that_is_no_number_says_what_is(self):
        self.refuse(["Width: 'wide' is no integer", "to 1920 px"], "set", "Width=wide")
        self.refuse(["Gain: 'loud' is no number", "dB"], "set", "Gain=loud")

    def test_an_unknown_entry_lists_the_entries(self):
        self.refuse(["PixelFormat: 'Mono9'", "Mono8", "Mono12", "BayerRG8", "RGB8"], "set", "PixelFormat=Mono9")

    def test_what_cannot_be_written_names_the_access_mode(self):
        self.refuse(["DeviceSerialNumber", "access mode RO"], "set", "DeviceSerialNumber=1")
        self.refuse(["SensorWidth", "access mode RO"], "set", "SensorWidth=64")

    def test_what_has_no_value_says_so(self):
        self.refuse(["Root", "category"], "get", "Root")
        self.refuse(["TimestampLatch", "command"], "get", "TimestampLatch")


class Units(OrvicamTest):
    def set(self, *arguments):
        return self.succeed("--virtual", 1, "set", *arguments).out

    def refuse(self, texts, assignment):
        self.fail_with(5, texts, "--virtual", 1, "set", assignment)

    def test_a_value_may_have_the_unit_of_the_feature(self):
        self.assertEqual(self.set("ExposureTime=5000us", "Gain=3dB", "AcquisitionFrameRate=50 Hz", "Width=640px"),
                         "ExposureTime=5000\nGain=3\nAcquisitionFrameRate=50\nWidth=640\n")

    def test_units_of_the_same_kind_are_converted(self):
        self.assertEqual(self.set("ExposureTime=5ms", "ExposureTime=0.01s", "ExposureTime=7000000ns",
                                  "AcquisitionFrameRate=0.02kHz"),
                         "ExposureTime=5000\nExposureTime=10000\nExposureTime=7000\nAcquisitionFrameRate=20\n")

    def test_another_unit_is_refused_by_the_name_of_the_own(self):
        self.refuse(["ExposureTime: '5Hz'", "its unit is us", "ms", "20 to"], "ExposureTime=5Hz")
        self.refuse(["Width: '5ms'", "its unit is px", "1920 px"], "Width=5ms")
        self.refuse(["Gain: '3%'", "its unit is dB"], "Gain=3%")
        self.refuse(["Gamma: '1px'", "without a unit"], "Gamma=1px")

    def test_a_converted_value_out_of_range_is_named_as_it_was_given(self):
        self.refuse(["ExposureTime: 5000s is out of range", "to 16000000 us"], "ExposureTime=5000s")

    def test_a_part_of_a_pixel_is_no_integer(self):
        self.refuse(["Width: '64.5px' is no integer"], "Width=64.5px")

    def test_names_of_entries_are_values_and_not_quantities(self):
        self.assertEqual(self.set("PixelFormat=BayerRG12", "ReverseX=on"), "PixelFormat=BayerRG12\nReverseX=true\n")

    def test_a_text_with_a_unit_stays_a_text(self):
        self.assertEqual(self.set("UserDefinedName=5ms"), "UserDefinedName=5ms\n")

    def test_grab_takes_units_too(self):
        self.grab("-o", self.folder, settings=["ExposureTime=1ms"])


class Tree(OrvicamTest):
    def features(self, *arguments):
        camera, = self.succeed("--virtual", 1, "features", "--json", *arguments).json()
        return {feature["name"]: feature for feature in camera["features"]}

    def test_features_is_a_tree_with_values_units_limits_and_access(self):
        lines = self.succeed("--virtual", 1, "features").out.splitlines()
        self.assertIn("ImageFormatControl", lines)
        width = next(line for line in lines if line.strip().startswith("Width "))
        self.assertRegex(width, r"^  Width +RW  1920 px +16 to 1920 in steps of \d+$")
        self.assertGreater(lines.index(width), lines.index("ImageFormatControl"))
        self.assertLess(lines.index(width), lines.index("AcquisitionControl"))
        self.assertTrue(any(re.match(r"^  ExposureTime +RW  10000 us +[\d.]+ to \d+$", line) for line in lines))
        self.assertTrue(any(re.match(r"^  DeviceSerialNumber +RO  VC000001$", line) for line in lines))
        self.assertTrue(any(re.match(r"^  TimestampLatch +\w\w$", line) for line in lines))
        self.assertFalse(any(line.endswith(" ") for line in lines))

    def test_features_json_has_the_same_typed(self):
        width = self.features()["Width"]
        self.assertEqual((width["type"], width["access"], width["value"], width["unit"], width["min"], width["max"]),
                         ("Integer", "RW", 1920, "px", 16, 1920))
        self.assertGreater(width["increment"], 1)
        self.assertEqual(width["categories"], ["ImageFormatControl"])

    def test_all_shows_what_is_hidden(self):
        few, many = self.features(), self.features("--all")
        self.assertLess(few.keys(), many.keys())
        self.assertLessEqual({feature["visibility"] for feature in few.values()}, {"Beginner", "Expert"})
        self.assertTrue({feature["visibility"] for name, feature in many.items() if name not in few} <=
                        {"Guru", "Invisible"})

    def test_what_is_not_available_has_no_value(self):
        feature = self.features()["EventExposureEnd"]
        self.assertEqual(feature["access"], "NA")
        self.assertNotIn("value", feature)

    def test_several_cameras_each_have_a_tree(self):
        lines = self.succeed("--virtual", 2, "-c", "*", "features").out.splitlines()
        self.assertEqual([line for line in lines if line.startswith("VC")], ["VC000001", "VC000002"])
        self.assertEqual(lines.count("ImageFormatControl"), 2)

    def test_values_are_those_that_get_reads(self):
        lines = self.succeed("--virtual", 1, "values").out.splitlines()
        self.assertIn("Width=1920", lines)
        self.assertIn("DeviceSerialNumber=VC000001", lines)
        names = [line.split("=")[0] for line in lines]
        self.assertEqual(len(names), len(set(names)))
        self.assertNotIn("TimestampLatch", names)
        self.assertEqual(self.succeed("--virtual", 1, "get", *names).out.splitlines(), lines)

    def test_writable_values_are_taken_back_by_set(self):
        lines = self.succeed("--virtual", 1, "values", "--writable").out.splitlines()
        self.assertIn("Width=1920", lines)
        self.assertNotIn("DeviceSerialNumber=VC000001", lines)
        self.assertEqual(self.succeed("--virtual", 1, "set", *lines).out.splitlines(), lines)

    def test_values_json(self):
        camera, = self.succeed("--virtual", 1, "values", "--json").json()
        self.assertEqual(camera["serial"], "VC000001")
        self.assertEqual((camera["values"]["Width"], camera["values"]["ReverseX"]), (1920, False))

    def test_describe_tells_all_of_a_feature(self):
        text = self.succeed("--virtual", 1, "describe", "ExposureTime", "PixelFormat").out
        exposure, pixel_format = text.split("PixelFormat\n")
        self.assertTrue(exposure.startswith("ExposureTime\n"))
        for label, value in (("type", "Float"), ("unit", "us"), ("value", "10000 us"), ("access", "RW"),
                             ("visibility", "Beginner"), ("limits", r"[\d.]+ to \d+"), ("tool tip", ".*light.*")):
            self.assertRegex(exposure, rf"(?m)^  {label} +{value}$")
        self.assertRegex(pixel_format, r"(?m)^  type +Enumeration$")
        self.assertRegex(pixel_format, r"(?m)^  entries +Mono8, .*RGB8")
        self.assertNotIn("limits", pixel_format)

    def test_describe_json(self):
        camera, = self.succeed("--virtual", 1, "describe", "Gain", "TestPattern", "TimestampLatch", "--json").json()
        gain, pattern, latch = camera["features"]
        self.assertEqual((gain["type"], gain["unit"], gain["value"]), ("Float", "dB", 0.0))
        self.assertIn("ColorBar", pattern["entries"])
        self.assertEqual(latch["type"], "Command")
        self.assertNotIn("value", latch)

    def test_describe_takes_categories(self):
        self.assertRegex(self.succeed("--virtual", 1, "describe", "AnalogControl").out, r"(?m)^  type +Category$")

    def test_describe_of_an_unknown_feature_names_the_closest(self):
        self.fail_with(5, ["'Widht'", "Width"], "--virtual", 1, "describe", "Widht")


class Settings(OrvicamTest):
    def setUp(self):
        super().setUp()
        self.file = self.folder / "settings"
        self.saved = orvicam("--virtual", 1, "save", self.file)

    def test_what_was_saved_can_be_loaded(self):
        self.assertEqual((self.saved.code, self.saved.out), (0, f"VC000001: saved to {self.file}\n"), self.saved.err)
        self.assertEqual(self.files(), ["settings"])
        self.assertIn("Width", self.file.read_text())
        self.assertEqual(self.succeed("--virtual", 2, "-c", "*", "load", self.file).out,
                         f"VC000001: loaded {self.file}\nVC000002: loaded {self.file}\n")
        self.assertEqual(self.succeed("--virtual", 1, "load", self.file, "--dpc", "--json").json(),
                         [{"serial": "VC000001", "file": str(self.file)}])

    def test_a_broken_file_is_refused(self):
        self.file.write_text("no settings at all\n")
        self.fail_with(5, ["VC000001", str(self.file), "line 1"], "--virtual", 1, "load", self.file)

    def test_a_broken_line_is_named(self):
        lines = self.file.read_text().splitlines()
        width = next(i for i, line in enumerate(lines) if line.startswith("Width="))
        lines[width] = "Width=wide"
        self.file.write_text("\n".join(lines) + "\n")
        self.fail_with(5, [str(self.file), f"line {width + 1}", "Width"], "--virtual", 1, "load", self.file)

    def test_defective_pixels_are_loaded_on_demand_alone(self):
        lines = self.file.read_text().splitlines()
        number = next(i for i, line in enumerate(lines) if line.startswith("DPCNumber="))
        lines[number] = "DPCNumber=99"  # more than the table holds
        self.file.write_text("\n".join(lines) + "\n")
        self.succeed("--virtual", 1, "load", self.file)
        self.fail_with(5, [str(self.file), f"line {number + 1}", "DPCNumber"], "--virtual", 1, "load", self.file, "--dpc")

    def test_an_existing_file_is_kept_unless_forced(self):
        self.file.write_text("precious")
        self.fail_with(8, [str(self.file), "--force"], "--virtual", 1, "save", self.file)
        self.assertEqual(self.file.read_text(), "precious")
        forced = orvicam("--virtual", 1, "save", self.file, "--force")
        self.assertEqual(forced.code, 0, forced.err)
        self.assertNotEqual(self.file.read_text(), "precious")
        self.assertEqual(self.files(), ["settings"])

    def test_a_file_that_cannot_be_read_is_named(self):
        self.fail_with(8, [str(self.folder / "none"), "No such file"], "--virtual", 1, "load", self.folder / "none")
        self.fail_with(8, [str(self.folder), "Is a directory"], "--virtual", 1, "load", self.folder)

    def test_no_folder_is_made_for_settings(self):
        missing = self.folder / "missing"
        self.fail_with(8, [str(missing / "a"), f"no folder {missing}", "make it"], "--virtual", 1, "save", missing / "a")
        self.assertFalse(missing.exists())

    def test_several_cameras_do_not_share_a_file(self):
        self.fail_with(2, ["2 cameras", "--camera"], "--virtual", 2, "-c", "*", "save", self.folder / "b")
        self.assertFalse((self.folder / "b").exists())


class StateFolder(OrvicamTest):
    """What virtual cameras keep from one run to the next."""

    def setUp(self):
        super().setUp()
        self.state = {"ORVI_VIRTUAL_CAMERAS_STATE": str(self.folder / "state")}

    def test_user_sets_and_names_outlive_the_program(self):
        self.succeed("--virtual", 2, "-c", "VC000002", "set", "Gain=3", "Width=640", "UserSetSelector=UserSet1",
                     "UserSetSave", "UserSetDefault=UserSet1", "UserDefinedName=left", **self.state)
        self.assertEqual(self.files(), ["state"])
        self.assertEqual(self.succeed("--virtual", 2, "-c", "left", "get", "Gain", "Width", **self.state).out,
                         "Gain=3\nWidth=640\n")
        self.assertEqual(self.succeed("--virtual", 2, "-c", "VC000001", "get", "Width", **self.state).out,
                         "Width=1920\n")
        self.assertEqual(self.succeed("--virtual", 2, "-c", "VC000002", "get", "Gain").out, "Gain=0\n")
        self.succeed("--virtual", 2, "-c", "left", "save", self.folder / "settings", **self.state)
        lines = (self.folder / "settings").read_text().splitlines()
        self.assertLessEqual({"Gain=3", "Width=640"}, set(lines))

    def test_a_damaged_file_is_told_and_the_camera_works(self):
        (self.folder / "state").mkdir()
        (self.folder / "state" / "VC000001.state").write_text("OrviVirtualCamera 1 VC000001\n")
        result = orvicam("--virtual", 1, "get", "Width", **self.state)
        self.assertEqual((result.code, result.out), (0, "Width=1920\n"))
        self.assertIn("VC000001.state", result.err)
        self.assertIn("as from the factory", result.err)


class Grab(OrvicamTest):
    def test_png_carries_block_id_and_pixel_format(self):
        result = self.grab("--count", 3, "--output", self.folder)
        self.assertRegex(result.out, r"^VC000001: 3 images, [\d.]+ fps, \d+ lost: ")
        self.assertEqual(len(self.files()), 3)
        for path in self.folder.iterdir():
            image = read_png(path)
            self.assertEqual((image.width, image.height, image.channels, image.maximum), (128, 32, 1, 255))
            self.assertEqual(image.labels["PixelFormat"], "Mono8")
            self.assertEqual(path.name, f"VC000001-{int(image.labels['BlockId']):06}.png")
            self.assertEqual(image.block_id(255), int(image.labels["BlockId"]))

    def test_lost_images_are_the_gaps_between_the_block_ids(self):
        result = self.grab("--count", 20, "--output", self.folder, "--json", settings=["AcquisitionFrameRate=30"])
        summary, = result.json()
        ids = [int(name[9:15]) for name in self.files()]
        self.assertEqual(summary["images"], 20)
        self.assertEqual(summary["lost"], ids[-1] - ids[0] + 1 - 20)
        self.assertEqual([Path(name).name for name in summary["files"]], self.files())

    def test_more_than_8_bits_become_a_16_bit_png(self):
        for pixel_format, bits in (("Mono10", 10), ("Mono12", 12), ("Mono16", 16), ("BayerRG12", 12)):
            path = self.folder / f"{pixel_format}.png"
            self.grab("--output", path, settings=[f"PixelFormat={pixel_format}", "TestPattern=GreyHorizontalRamp"])
            image = read_png(path)
            self.assertEqual((image.maximum, image.channels, image.significant_bits), (65535, 1, bits))
            self.assertEqual(image.labels["PixelFormat"], pixel_format)
            white = ((1 << bits) - 1) << (16 - bits)
            self.assertEqual(image.block_id(white), int(image.labels["BlockId"]))
            self.assertTrue(all(value % (1 << (16 - bits)) == 0 for line in image.lines for value in line))

    def test_bayer_stays_a_mosaic_and_colour_is_red_first(self):
        self.grab("-o", self.folder / "bayer.png", settings=["PixelFormat=BayerRG8"])
        self.assertEqual(read_png(self.folder / "bayer.png").channels, 1)
        for pixel_format in ("RGB8", "BGR8"):
            path = self.folder / f"{pixel_format}.png"
            self.grab("-o", path, settings=[f"PixelFormat={pixel_format}", "TestPattern=ColorBar"])
            image = read_png(path)
            self.assertEqual((image.channels, image.maximum), (3, 255))
            self.assertEqual(image.block_id(255), int(image.labels["BlockId"]))
        rgb, bgr = (read_png(self.folder / name).lines[30] for name in ("RGB8.png", "BGR8.png"))
        pixels = {tuple(rgb[i:i + 3]) for i in range(0, len(rgb), 3)}
        self.assertTrue(any(len(set(pixel)) > 1 for pixel in pixels), pixels)
        self.assertEqual(pixels & {tuple(bgr[i:i + 3]) for i in range(0, len(bgr), 3)}, pixels)

    def test_pgm_keeps_the_values_and_tells_their_maximum(self):
        for pixel_format, maximum in (("Mono8", 255), ("Mono12", 4095)):
            path = self.folder / f"{pixel_format}.pgm"
            self.grab("-o", path, settings=[f"PixelFormat={pixel_format}"])
            image = read_pnm(path)
            self.assertEqual((image.width, image.height, image.channels, image.maximum), (128, 32, 1, maximum))
            self.assertEqual(image.block_id(maximum), int(image.labels["BlockId"]))

    def test_ppm_holds_colour(self):
        self.grab("-o", self.folder / "a.ppm", settings=["PixelFormat=RGB8"])
        image = read_pnm(self.folder / "a.ppm")
        self.assertEqual((image.channels, image.maximum), (3, 255))
        self.assertEqual(image.block_id(255), int(image.labels["BlockId"]))

    def test_raw_has_a_description_beside_it(self):
        self.grab("-o", self.folder, "-f", "raw", settings=["PixelFormat=Mono12"])
        raw, sidecar = (self.folder / name for name in self.files())
        about = json.loads(sidecar.read_text())
        self.assertEqual(sidecar.name, raw.name + ".json")
        self.assertEqual((about["pixelFormat"], about["pixelFormatCode"], about["width"], about["height"]),
                         ("Mono12", "0x01100005", 128, 32))
        self.assertEqual(raw.stat().st_size, about["size"])
        self.assertEqual(about["size"], 128 * 32 * 2)
        self.assertEqual(about["camera"]["serial"], "VC000001")
        bits = [int.from_bytes(raw.read_bytes()[2 * i:2 * i + 2], "little") for i in range(64)]
        self.assertEqual(int("".join("1" if value == 4095 else "0" for value in bits), 2), about["blockId"])

    def test_several_cameras_at_once(self):
        result = self.grab("-c", "*", "--count", 4, "-o", self.folder, cameras=2)
        self.assertEqual(len(result.out.splitlines()), 2)
        self.assertEqual([name[:8] for name in self.files()], ["VC000001"] * 4 + ["VC000002"] * 4)
        for path in self.folder.iterdir():
            self.assertEqual(read_png(path).labels["Camera"], f"Orvi Virtual Camera {path.name[:8]}")

    def test_settings_are_applied_before_the_first_image(self):
        self.grab("-o", self.folder / "a.png", settings=["Width=256", "TestPattern=White"])
        image = read_png(self.folder / "a.png")
        self.assertEqual(image.width, 256)
        self.assertIn(255, image.lines[31])
        self.fail_with(5, ["Width"], "--virtual", 1, "grab", "-o", self.folder / "b.png", "--set", "Width=3")
        self.assertEqual(self.files(), ["a.png"])

    def test_a_camera_that_sends_nothing_times_out(self):
        self.fail_with(7, ["VC000001: no image within 50 ms", "of 1000"], "--virtual", 1, "grab", "-o", self.folder,
                       "--count", 1000, "--timeout", 50, "--set", *SMALL, "AcquisitionFrameRate=1")


class Files(OrvicamTest):
    def test_existing_files_are_kept_unless_forced(self):
        path = self.folder / "a.png"
        path.write_text("precious")
        self.fail_with(8, [str(path), "--force"], "--virtual", 1, "grab", "-o", path)
        self.assertEqual(path.read_text(), "precious")
        self.assertEqual(self.files(), ["a.png"])
        self.grab("-o", path, "--force")
        self.assertEqual(read_png(path).width, 128)

    def test_a_raw_image_never_gets_a_strangers_description(self):
        (self.folder / "a.raw.json").write_text("precious")
        self.fail_with(8, ["a.raw.json"], "--virtual", 1, "grab", "-o", self.folder / "a.raw")
        self.assertEqual(self.files(), ["a.raw.json"])

    def test_folders_are_made(self):
        self.grab("-o", self.folder / "new/{serial}/{n}", "--count", 2)
        self.assertEqual(sorted(path.name for path in (self.folder / "new/VC000001").iterdir()),
                         ["000001.png", "000002.png"])

    def test_patterns_that_cannot_work_are_refused_before_the_camera_starts(self):
        for output, text in (("a.png", "{block}"), ("{when}.png", "{serial}")):
            self.fail_with(2, [output, text], "--virtual", 1, "grab", "--count", 2, "-o", self.folder / output)
        self.fail_with(2, ["{serial}"], "--virtual", 2, "grab", "-c", "*", "-o", self.folder / "{block}.png")
        self.fail_with(2, ["--format"], "--virtual", 1, "grab", "-f", "png", "-o", self.folder / "a.pgm")
        self.assertEqual(self.files(), [])

    def test_a_format_that_cannot_hold_the_image_names_one_that_can(self):
        arguments = ["--virtual", 1, "grab", "-o", self.folder]
        self.fail_with(7, ["RGB8", "--format ppm"], *arguments, "-f", "pgm", "--set", "PixelFormat=RGB8")
        self.fail_with(7, ["Mono8", "--format pgm"], *arguments, "-f", "ppm")
        self.assertEqual(self.files(), [])

    def test_a_folder_that_cannot_be_made_is_named(self):
        (self.folder / "file").write_text("")
        self.fail_with(8, [str(self.folder / "file")], "--virtual", 1, "grab", "-o", self.folder / "file/below")

    def test_a_full_disk_is_an_error_and_leaves_nothing(self):
        script = f"ulimit -f 1; trap '' XFSZ; exec {os.environ['ORVICAM']} --virtual 1 grab -o {self.folder}"
        done = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=False, env=environment())
        self.assertEqual(done.returncode, 8, done.stderr)
        self.assertEqual(self.files(), [])


class Events(OrvicamTest):
    def events(self, *arguments, cameras=1):
        out = self.succeed("--virtual", cameras, "events", "--json", *arguments).out
        return [json.loads(line) for line in out.splitlines()]

    def start(self, *arguments):
        process = subprocess.Popen([os.environ["ORVICAM"], "--virtual", "1", "events", "--json", *arguments, "--set",
                                    *SMALL], env=environment(), stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.kill)
        return process

    def end(self, process):
        """Ctrl-C; the exit code, the lines and the errors."""
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=60)
        return process.returncode, [json.loads(line) for line in out.splitlines()], err

    def test_each_line_has_time_name_and_block_id(self):
        out = self.succeed("--virtual", 1, "events", "ExposureEnd", "FrameStart", "-n", 6, "-s", *SMALL).out
        lines = out.splitlines()
        self.assertEqual(len(lines), 6)
        for line in lines:
            self.assertRegex(line, r"^ *\d+\.\d{9}  (ExposureEnd|FrameStart ) +\d+$")
        self.assertEqual({line.split()[1] for line in lines}, {"ExposureEnd", "FrameStart"})

    def test_json_is_an_object_a_line(self):
        events = self.events("ExposureEnd", "--count", 5, "--set", *SMALL)
        self.assertEqual([event["event"] for event in events], ["ExposureEnd"] * 5)
        self.assertEqual({event["serial"] for event in events}, {"VC000001"})
        self.assertEqual({event["eventId"] for event in events}, {"0x9002"})
        for key in ("timestampNs", "blockId"):
            values = [event[key] for event in events]
            self.assertEqual(values, sorted(set(values)))

    def test_globs_name_several_events(self):
        names = {event["event"] for event in self.events("*", "Test", "-n", 12, "-s", "TestEventGenerate", *SMALL)}
        self.assertLessEqual({"Test", "AcquisitionStart", "ExposureStart", "ExposureEnd", "FrameStart", "FrameEnd"}, names)

    def test_events_come_without_images_too(self):
        event, = self.events("Test", "--count", 1, "--no-stream", "--set", "TestEventGenerate")
        self.assertEqual((event["event"], event["eventId"], event["blockId"]), ("Test", "0x4FFF", 0))

    def test_an_edge_at_a_line_is_an_event(self):
        event, = self.events("Line0RisingEdge", "--count", 1, "--no-stream", "--set", "LineInverterAll=1")
        self.assertEqual(event["event"], "Line0RisingEdge")

    def test_only_the_events_asked_for_come(self):
        self.fail_with(7, ["no event within 300 ms, after 0 events"], "--virtual", 1, "events", "Line0RisingEdge",
                       "--timeout", 300, "--set", *SMALL)

    def test_settings_are_made_before_images_are_taken(self):
        self.fail_with(7, ["after 0 events"], "--virtual", 1, "events", "ExposureEnd", "--timeout", 300, "--set", *SMALL,
                       "TriggerMode=On")
        self.fail_with(5, ["Width"], "--virtual", 1, "events", "ExposureEnd", "--set", "Width=3")

    def test_an_unknown_event_lists_those_there_are(self):
        self.fail_with(5, ["VC000001", "'ExposureFinish'", "ExposureStart, ExposureEnd, FrameStart", "FrameLost"],
                       "--virtual", 1, "events", "ExposureEnd", "ExposureFinish")

    def test_several_cameras_are_told_apart(self):
        out = self.succeed("--virtual", 2, "-c", "*", "events", "Test", "-n", 2, "-s", "TestEventGenerate",
                           "--no-stream").out
        self.assertEqual({line.split()[0] for line in out.splitlines()}, {"VC000001", "VC000002"})

    def test_ctrl_c_is_the_regular_end_without_a_count(self):
        process = self.start("FrameEnd")
        self.assertEqual(json.loads(process.stdout.readline())["event"], "FrameEnd")
        code, _, err = self.end(process)
        self.assertEqual((code, err), (0, ""))

    def test_ctrl_c_before_the_count_is_an_interruption(self):
        process = self.start("FrameEnd", "--count", "1000000")
        process.stdout.readline()
        code, _, err = self.end(process)
        self.assertEqual((code, err), (130, "orvicam: interrupted\n"))

    def test_the_end_of_acquisition_is_shown(self):
        process = self.start("AcquisitionStart", "AcquisitionEnd")
        self.assertEqual(json.loads(process.stdout.readline())["event"], "AcquisitionStart")
        code, events, err = self.end(process)
        self.assertEqual((code, [event["event"] for event in events], err), (0, ["AcquisitionEnd"], ""))

    def test_an_unplugged_camera_is_an_error(self):
        asan = os.environ.get("ASAN_OPTIONS", "")
        result = orvicam("--virtual", 1, "events", "FrameEnd", "--set", *SMALL, LD_PRELOAD=os.environ["UNPLUG_PRELOAD"],
                         ASAN_OPTIONS=asan + ":verify_asan_link_order=0")
        self.assertEqual((result.code, result.err), (6, "orvicam: VC000001 was unplugged\n"))
        self.assertGreaterEqual(len(result.out.splitlines()), 3)

    def test_waiting_takes_no_processor_time(self):
        process = subprocess.Popen([os.environ["ORVICAM"], "--virtual", "1", "events", "Test", "--no-stream",
                                    "--timeout", "2000"], env=environment(), stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 7)
        self.assertLess(usage.ru_utime + usage.ru_stime, 1.5)


class Interruption(OrvicamTest):
    def test_ctrl_c_ends_a_grab_with_whole_files(self):
        grab = subprocess.Popen([os.environ["ORVICAM"], "--virtual", "1", "grab", "--count", "1000000", "-o", self.folder,
                                 "--set", *SMALL], env=environment(), stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                text=True)
        deadline = time.monotonic() + 60
        while not any(self.folder.glob("*.png")):
            self.assertLess(time.monotonic(), deadline, "no image came")
            time.sleep(0.05)
        grab.send_signal(signal.SIGINT)
        out, err = grab.communicate(timeout=60)
        self.assertEqual(grab.returncode, 130, err)
        self.assertEqual(err, "orvicam: interrupted\n")
        count = int(re.match(r"VC000001: (\d+) image", out)[1])
        self.assertEqual(len(self.files()), count)
        for path in self.folder.iterdir():
            self.assertEqual(read_png(path).height, 32)

    def test_an_unplugged_camera_is_an_error_that_keeps_the_images_before_it(self):
        asan = os.environ.get("ASAN_OPTIONS", "")
        result = orvicam("--virtual", 1, "grab", "--count", 100, "-o", self.folder, "--set", *SMALL,
                         LD_PRELOAD=os.environ["UNPLUG_PRELOAD"], ASAN_OPTIONS=asan + ":verify_asan_link_order=0")
        self.assertEqual(result.code, 6, result.err)
        self.assertRegex(result.err, r"^orvicam: VC000001 was unplugged after \d+ of 100\n$")
        images = int(re.search(r"after (\d+) of", result.err)[1])
        self.assertGreaterEqual(images, 3)
        self.assertEqual(len(self.files()), images)

    def test_progress_is_shown_on_a_terminal_alone(self):
        master, slave = pty.openpty()
        done = subprocess.run([os.environ["ORVICAM"], "--virtual", "1", "grab", "--count", "5", "-o", self.folder,
                               "--set", *SMALL], env=environment(), stdout=subprocess.PIPE, stderr=slave, check=False)
        os.close(slave)
        shown = os.read(master, 4096).decode()
        os.close(master)
        self.assertEqual(done.returncode, 0)
        self.assertIn("100%", shown)
        self.assertIn("***", shown)
        # fail_with and succeed check elsewhere that a pipe gets no bar.


if __name__ == "__main__":
    unittest.main()
