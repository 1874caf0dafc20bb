"""orvicam get and set."""

import unittest

from program import orvicam, OrvicamTest


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


if __name__ == "__main__":
    unittest.main()
