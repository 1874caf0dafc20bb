"""The command line of orvicam: what it refuses, which cameras it means, and what it lists."""

import re
import unittest

from program import OrvicamTest


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


if __name__ == "__main__":
    unittest.main()
