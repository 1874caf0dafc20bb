"""orvicam features, values and describe."""

import re
import unittest

from program import OrvicamTest


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


if __name__ == "__main__":
    unittest.main()
