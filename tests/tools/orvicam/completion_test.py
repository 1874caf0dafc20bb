"""What bash completes behind orvicam."""

import os
import re
import subprocess
import unittest
from pathlib import Path

from program import environment, OrvicamTest

COMPLETION = Path(__file__).resolve().parents[3] / "tools/orvicam/completion.bash"


class Completion(OrvicamTest):
    def complete(self, *words):
        """What bash offers for the last word; the words are as bash cuts them, "=" is one of its own."""
        script = (f'source {COMPLETION}; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _orvicam; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        done = subprocess.run(["bash", "-c", script, "bash", os.environ["ORVICAM"], *words], capture_output=True,
                              text=True, check=False, env=environment(), timeout=120)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout.split()

    def test_verbs_are_those_of_the_help(self):
        verbs = re.findall(r"(?m)^  ([a-z]+) ", self.succeed("--help").out.split("Subcommands:")[1].split("\n\n")[0])
        self.assertGreaterEqual(len(verbs), 12)
        self.assertEqual(self.complete(""), verbs)
        self.assertEqual(self.complete("--virtual", "1", "de"), ["describe"])

    def test_options_are_those_of_all_verbs_and_of_the_one(self):
        self.assertIn("--virtual", self.complete("--v"))
        self.assertEqual(self.complete("grab", "--fo"), ["--format", "--force"])
        self.assertEqual(self.complete("list", "--fo"), [])

    def test_cameras_and_features_are_those_that_there_are(self):
        self.assertEqual(self.complete("--virtual", "2", "-c", "VC"), ["VC000001", "VC000002"])
        self.assertEqual(self.complete("--virtual", "1", "get", "PixelFo"), ["PixelFormat"])
        self.assertIn("Width=", self.complete("--virtual", "1", "set", "Wi"))
        self.assertNotIn("SensorWidth=", self.complete("--virtual", "1", "set", "Sensor"))
        self.assertEqual(self.complete("--virtual", "2", "-c", "VC000002", "grab", "--set", "PixelF"),
                         ["PixelFormat="])

    def test_values_are_entries_and_truth(self):
        self.assertEqual(self.complete("--virtual", "1", "set", "PixelFormat", "=", "RG"), ["RGB8"])
        self.assertIn("Mono8", self.complete("--virtual", "1", "set", "PixelFormat", "="))
        self.assertEqual(self.complete("--virtual", "1", "set", "ReverseX", "=", "t"), ["true"])
        self.assertEqual(self.complete("--virtual", "1", "set", "Width", "=", ""), [])

    def test_what_there_is_of_virtual_cameras(self):
        self.assertEqual(self.complete("vcam", ""), ["check"])

    def test_without_a_camera_nothing_is_offered(self):
        self.assertEqual(self.complete("get", "W"), [])


if __name__ == "__main__":
    unittest.main()
