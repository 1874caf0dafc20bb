"""orvicam save and load, and what cameras keep in a state folder."""

import unittest

from program import orvicam, OrvicamTest


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


if __name__ == "__main__":
    unittest.main()
