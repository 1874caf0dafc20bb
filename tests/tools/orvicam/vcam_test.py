"""orvicam vcam check, and cameras of a description file."""

import json
import os
import unittest
from pathlib import Path

from program import orvicam, OrvicamTest


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


if __name__ == "__main__":
    unittest.main()
