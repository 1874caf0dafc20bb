#!/usr/bin/env python3
"""tools/check_layers.py finds includes that go up, circles, and files without a layer."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]


def check(root):
    return subprocess.run([sys.executable, REPOSITORY / "tools/check_layers.py", root], capture_output=True, text=True,
                          check=False)


class CheckLayers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def write(self, path, text=""):
        (self.root / path).parent.mkdir(parents=True, exist_ok=True)
        (self.root / path).write_text(text)

    def test_the_repository_passes(self):
        result = check(REPOSITORY)
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_an_include_that_goes_down_passes(self):
        self.write("src/foundation/Low.h")
        self.write("src/features/High.h", '#include "foundation/Low.h"\n#include <vector>\n')
        self.assertEqual(check(self.root).returncode, 0)

    def test_an_include_that_goes_up_fails_with_its_line(self):
        self.write("src/features/High.h")
        self.write("src/foundation/Low.h", '#pragma once\n#include "features/High.h"\n')
        result = check(self.root)
        self.assertEqual(result.returncode, 1)
        self.assertIn("src/foundation/Low.h:2: foundation must not include features", result.stdout)

    def test_neighbours_do_not_include_each_other(self):
        self.write("src/camera/Camera.h")
        self.write("src/node/Node.cpp", '#include "camera/Camera.h"\n')
        self.assertIn("node must not include camera", check(self.root).stdout)

    def test_the_virtual_camera_knows_nothing_of_the_transport(self):
        self.write("u3v/protocol/Camera.h")
        self.write("vcam/Camera.cpp", '#include "u3v/protocol/Camera.h"\n')
        self.assertIn("vcam must not include u3v protocol", check(self.root).stdout)

    def test_the_transport_sees_only_two_headers_of_the_virtual_camera(self):
        self.write("vcam/UsbFunction.h")
        self.write("vcam/Sensor.h")
        self.write("u3v/usb/Good.cpp", '#include "vcam/UsbFunction.h"\n')
        self.assertEqual(check(self.root).returncode, 0)
        self.write("u3v/usb/Bad.cpp", '#include "vcam/Sensor.h"\n')
        self.assertIn("u3v/usb/Bad.cpp:1: u3v usb must not include vcam", check(self.root).stdout)

    def test_a_circle_within_a_layer_fails(self):
        self.write("src/log/A.h", '#include "log/B.h"\n')
        self.write("src/log/B.h", '#include "A.h"\n')
        result = check(self.root)
        self.assertEqual(result.returncode, 1)
        self.assertIn("src/log/A.h -> src/log/B.h -> src/log/A.h", result.stdout)

    def test_a_folder_without_a_layer_fails(self):
        self.write("src/surprise/New.cpp")
        self.assertIn("src/surprise/New.cpp: belongs to no layer", check(self.root).stdout)


if __name__ == "__main__":
    unittest.main()
