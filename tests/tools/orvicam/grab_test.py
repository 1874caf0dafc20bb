"""orvicam grab: images and the files that they go to."""

import json
import os
import subprocess
import unittest
from pathlib import Path

from image_files import read_png, read_pnm
from program import environment, OrvicamTest, SMALL


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


if __name__ == "__main__":
    unittest.main()
