#!/usr/bin/env python3
"""The udev rule as udev reads it: its syntax, and what it does to the devices of a machine.

RULE names the file. udevadm of Debian 12 cannot check a rule without a device, so a small reader of rules does it here.
"""

import fnmatch
import os
import re
import unittest
from pathlib import Path

RULE = Path(os.environ["RULE"])
MATCH, ASSIGN = {"==", "!="}, {"=", "+=", ":="}
KEYS = {"ACTION": MATCH, "SUBSYSTEM": MATCH, "ENV": MATCH, "TAG": {"+="}, "GROUP": {"="}, "MODE": {"="},
        "SYMLINK": {"+="}, "GOTO": {"="}, "LABEL": {"="}}
PART = re.compile(r'\s*([A-Z]+)(?:\{([^}]*)\})?\s*(==|!=|\+=|:=|=)\s*"([^"]*)"\s*(,|$)')

CAMERA = {"ACTION": "add", "SUBSYSTEM": "usb", "DEVTYPE": "usb_device",
          "ID_USB_INTERFACES": ":ef0500:ef0501:ef0502:", "ID_SERIAL": "Orvi_Camera_C1"}


def read_rules():
    """A list of lines, each a list of (key, attribute, operator, value)."""
    rules = []
    for number, line in enumerate(RULE.read_text(encoding="ascii").splitlines(), 1):
        if not line.strip() or line.lstrip().startswith("#"):
            continue
        parts, at = [], 0
        while at < len(line):
            part = PART.match(line, at)
            assert part, f"line {number}: cannot be read from column {at + 1}: {line}"
            parts.append(part.groups()[:4])
            at = part.end()
        rules.append(parts)
    return rules


def apply(device):
    """What udev does to a device: a dictionary of lists."""
    done, skip_to = {}, None
    for rule in read_rules():
        labels = [value for key, _, _, value in rule if key == "LABEL"]
        if skip_to and skip_to not in labels:
            continue
        skip_to = None
        tests = [(device.get(attribute or key, ""), operator, value)
                 for key, attribute, operator, value in rule if operator in MATCH]
        if not all(fnmatch.fnmatchcase(has, value) == (operator == "==") for has, operator, value in tests):
            continue
        for key, _, operator, value in rule:
            if key == "GOTO":
                skip_to = value
            elif operator in ASSIGN and key != "LABEL":
                value = re.sub(r"\$env\{(\w+)\}", lambda name: device[name[1]], value)
                done.setdefault(key, []).append(value)
    assert skip_to is None, f"there is no LABEL {skip_to}"
    return done


class UdevRule(unittest.TestCase):
    def test_keys_have_operators_that_they_take(self):
        for rule in read_rules():
            for key, _, operator, _ in rule:
                self.assertIn(operator, KEYS[key], f"{key}{operator}")

    def test_stands_before_the_rule_that_hands_out_access(self):
        self.assertEqual(RULE.name, "70-u3v.rules")

    def test_camera_may_be_opened_and_is_linked(self):
        self.assertEqual(apply(CAMERA), {"TAG": ["uaccess"], "GROUP": ["plugdev"], "MODE": ["0660"],
                                         "SYMLINK": ["u3v/by-id/Orvi_Camera_C1"]})
        self.assertEqual(apply({**CAMERA, "ACTION": "change"}), apply(CAMERA))

    def test_camera_beside_other_interfaces_is_a_camera(self):
        for interfaces in (":030101:ef0500:ef0502:", ":ef0500:"):
            self.assertIn("TAG", apply({**CAMERA, "ID_USB_INTERFACES": interfaces}), interfaces)

    def test_camera_without_a_serial_has_no_link(self):
        self.assertNotIn("SYMLINK", apply({key: value for key, value in CAMERA.items() if key != "ID_SERIAL"}))

    def test_nothing_else_is_touched(self):
        for change in ({"ID_USB_INTERFACES": ":0e0100:0e0200:"}, {"ID_USB_INTERFACES": ":ef0501:"},
                       {"ID_USB_INTERFACES": ""}, {"DEVTYPE": "usb_interface"}, {"SUBSYSTEM": "tty"},
                       {"ACTION": "remove"}):
            self.assertEqual(apply({**CAMERA, **change}), {}, change)


if __name__ == "__main__":
    unittest.main()
