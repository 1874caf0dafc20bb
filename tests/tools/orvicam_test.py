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
        for verb in (["list"], ["info"], ["get", "Width"], ["set", "Width=64"], ["grab"]):
            result = self.fail_with(4, ["no camera", "--virtual 1", "ORVI_VIRTUAL_CAMERAS=1"], "--virtual", 0, *verb)
            self.assertRegex(result.err, "plugged in|virtual cameras only")

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
        for verb in (["get", "Width"], ["set", "Width=64"], ["grab"]):
            self.fail_with(4, ["2 cameras", "VC000001, VC000002", "--camera"], "--virtual", 2, *verb)

    def test_options_may_stand_before_and_after_the_verb(self):
        self.assertEqual(self.succeed("get", "Width", "--virtual", 2, "-c", 1).out, "Width=1920\n")


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
