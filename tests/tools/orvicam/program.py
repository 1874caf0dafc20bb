"""What the tests of orvicam share: the built program against virtual cameras, as people and scripts use it.

ORVICAM names the program, UNPLUG_PRELOAD the library that pulls the plug.
"""

import json
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

SMALL = ["Width=128", "Height=32"]
HOME = tempfile.TemporaryDirectory()  # the library keeps a cache below it


class Result:
    def __init__(self, code, out, err):
        self.code, self.out, self.err = code, out, err

    def json(self):
        return json.loads(self.out)


def environment(**changes):
    env = {key: value for key, value in os.environ.items() if not key.startswith("ORVI") or key == "ORVICAM"}
    env["HOME"] = HOME.name
    env.update(changes)
    return env


def orvicam(*arguments, **changes):
    done = subprocess.run([os.environ["ORVICAM"], *map(str, arguments)], capture_output=True, text=True, check=False,
                          env=environment(**changes), timeout=120)
    return Result(done.returncode, done.stdout, done.stderr)


class OrvicamTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def succeed(self, *arguments, **changes):
        result = orvicam(*arguments, **changes)
        self.assertEqual((result.code, result.err), (0, ""), result.out)
        return result

    def fail_with(self, code, texts, *arguments, **changes):
        result = orvicam(*arguments, **changes)
        self.assertEqual(result.code, code, result.out + result.err)
        self.assertTrue(result.err.startswith("orvicam: "), result.err)
        self.assertEqual(result.err.count("\n"), 1, result.err)
        for text in texts:
            self.assertIn(text, result.err)
        return result

    def grab(self, *arguments, settings=(), cameras=1):
        return self.succeed("--virtual", cameras, "grab", *arguments, "--set", *SMALL, *settings)

    def files(self):
        return sorted(path.name for path in self.folder.iterdir())
