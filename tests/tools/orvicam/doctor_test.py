"""orvicam doctor, on machines that are folders."""

import unittest
from pathlib import Path

from program import orvicam, OrvicamTest


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


if __name__ == "__main__":
    unittest.main()
