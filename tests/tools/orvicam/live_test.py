"""orvicam events, and what ends a program early: Ctrl-C and the plug."""

import json
import os
import pty
import re
import signal
import subprocess
import time
import unittest

from image_files import read_png
from program import environment, orvicam, OrvicamTest, SMALL


class Events(OrvicamTest):
    def events(self, *arguments, cameras=1):
        out = self.succeed("--virtual", cameras, "events", "--json", *arguments).out
        return [json.loads(line) for line in out.splitlines()]

    def start(self, *arguments):
        process = subprocess.Popen([os.environ["ORVICAM"], "--virtual", "1", "events", "--json", *arguments, "--set",
                                    *SMALL], env=environment(), stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.kill)
        return process

    def end(self, process):
        """Ctrl-C; the exit code, the lines and the errors."""
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=60)
        return process.returncode, [json.loads(line) for line in out.splitlines()], err

    def test_each_line_has_time_name_and_block_id(self):
        out = self.succeed("--virtual", 1, "events", "ExposureEnd", "FrameStart", "-n", 6, "-s", *SMALL).out
        lines = out.splitlines()
        self.assertEqual(len(lines), 6)
        for line in lines:
            self.assertRegex(line, r"^ *\d+\.\d{9}  (ExposureEnd|FrameStart ) +\d+$")
        self.assertEqual({line.split()[1] for line in lines}, {"ExposureEnd", "FrameStart"})

    def test_json_is_an_object_a_line(self):
        events = self.events("ExposureEnd", "--count", 5, "--set", *SMALL)
        self.assertEqual([event["event"] for event in events], ["ExposureEnd"] * 5)
        self.assertEqual({event["serial"] for event in events}, {"VC000001"})
        self.assertEqual({event["eventId"] for event in events}, {"0x9002"})
        for key in ("timestampNs", "blockId"):
            values = [event[key] for event in events]
            self.assertEqual(values, sorted(set(values)))

    def test_globs_name_several_events(self):
        names = {event["event"] for event in self.events("*", "Test", "-n", 12, "-s", "TestEventGenerate", *SMALL)}
        self.assertLessEqual({"Test", "AcquisitionStart", "ExposureStart", "ExposureEnd", "FrameStart", "FrameEnd"}, names)

    def test_events_come_without_images_too(self):
        event, = self.events("Test", "--count", 1, "--no-stream", "--set", "TestEventGenerate")
        self.assertEqual((event["event"], event["eventId"], event["blockId"]), ("Test", "0x4FFF", 0))

    def test_an_edge_at_a_line_is_an_event(self):
        event, = self.events("Line0RisingEdge", "--count", 1, "--no-stream", "--set", "LineInverterAll=1")
        self.assertEqual(event["event"], "Line0RisingEdge")

    def test_only_the_events_asked_for_come(self):
        self.fail_with(7, ["no event within 300 ms, after 0 events"], "--virtual", 1, "events", "Line0RisingEdge",
                       "--timeout", 300, "--set", *SMALL)

    def test_settings_are_made_before_images_are_taken(self):
        self.fail_with(7, ["after 0 events"], "--virtual", 1, "events", "ExposureEnd", "--timeout", 300, "--set", *SMALL,
                       "TriggerMode=On")
        self.fail_with(5, ["Width"], "--virtual", 1, "events", "ExposureEnd", "--set", "Width=3")

    def test_an_unknown_event_lists_those_there_are(self):
        self.fail_with(5, ["VC000001", "'ExposureFinish'", "ExposureStart, ExposureEnd, FrameStart", "FrameLost"],
                       "--virtual", 1, "events", "ExposureEnd", "ExposureFinish")

    def test_several_cameras_are_told_apart(self):
        out = self.succeed("--virtual", 2, "-c", "*", "events", "Test", "-n", 2, "-s", "TestEventGenerate",
                           "--no-stream").out
        self.assertEqual({line.split()[0] for line in out.splitlines()}, {"VC000001", "VC000002"})

    def test_ctrl_c_is_the_regular_end_without_a_count(self):
        process = self.start("FrameEnd")
        self.assertEqual(json.loads(process.stdout.readline())["event"], "FrameEnd")
        code, _, err = self.end(process)
        self.assertEqual((code, err), (0, ""))

    def test_ctrl_c_before_the_count_is_an_interruption(self):
        process = self.start("FrameEnd", "--count", "1000000")
        process.stdout.readline()
        code, _, err = self.end(process)
        self.assertEqual((code, err), (130, "orvicam: interrupted\n"))

    def test_the_end_of_acquisition_is_shown(self):
        process = self.start("AcquisitionStart", "AcquisitionEnd")
        self.assertEqual(json.loads(process.stdout.readline())["event"], "AcquisitionStart")
        code, events, err = self.end(process)
        self.assertEqual((code, [event["event"] for event in events], err), (0, ["AcquisitionEnd"], ""))

    def test_an_unplugged_camera_is_an_error(self):
        asan = os.environ.get("ASAN_OPTIONS", "")
        result = orvicam("--virtual", 1, "events", "FrameEnd", "--set", *SMALL, LD_PRELOAD=os.environ["UNPLUG_PRELOAD"],
                         ASAN_OPTIONS=asan + ":verify_asan_link_order=0")
        self.assertEqual((result.code, result.err), (6, "orvicam: VC000001 was unplugged\n"))
        self.assertGreaterEqual(len(result.out.splitlines()), 3)

    def test_waiting_takes_no_processor_time(self):
        process = subprocess.Popen([os.environ["ORVICAM"], "--virtual", "1", "events", "Test", "--no-stream",
                                    "--timeout", "2000"], env=environment(), stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 7)
        self.assertLess(usage.ru_utime + usage.ru_stime, 1.5)


class Interruption(OrvicamTest):
    def test_ctrl_c_ends_a_grab_with_whole_files(self):
        grab = subprocess.Popen([os.environ["ORVICAM"], "--virtual", "1", "grab", "--count", "1000000", "-o", self.folder,
                                 "--set", *SMALL], env=environment(), stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                text=True)
        deadline = time.monotonic() + 60
        while not any(self.folder.glob("*.png")):
            self.assertLess(time.monotonic(), deadline, "no image came")
            time.sleep(0.05)
        grab.send_signal(signal.SIGINT)
        out, err = grab.communicate(timeout=60)
        self.assertEqual(grab.returncode, 130, err)
        self.assertEqual(err, "orvicam: interrupted\n")
        count = int(re.match(r"VC000001: (\d+) image", out)[1])
        self.assertEqual(len(self.files()), count)
        for path in self.folder.iterdir():
            self.assertEqual(read_png(path).height, 32)

    def test_an_unplugged_camera_is_an_error_that_keeps_the_images_before_it(self):
        asan = os.environ.get("ASAN_OPTIONS", "")
        result = orvicam("--virtual", 1, "grab", "--count", 100, "-o", self.folder, "--set", *SMALL,
                         LD_PRELOAD=os.environ["UNPLUG_PRELOAD"], ASAN_OPTIONS=asan + ":verify_asan_link_order=0")
        self.assertEqual(result.code, 6, result.err)
        self.assertRegex(result.err, r"^orvicam: VC000001 was unplugged after \d+ of 100\n$")
        images = int(re.search(r"after (\d+) of", result.err)[1])
        self.assertGreaterEqual(images, 3)
        self.assertEqual(len(self.files()), images)

    def test_progress_is_shown_on_a_terminal_alone(self):
        master, slave = pty.openpty()
        done = subprocess.run([os.environ["ORVICAM"], "--virtual", "1", "grab", "--count", "5", "-o", self.folder,
                               "--set", *SMALL], env=environment(), stdout=subprocess.PIPE, stderr=slave, check=False)
        os.close(slave)
        shown = os.read(master, 4096).decode()
        os.close(master)
        self.assertEqual(done.returncode, 0)
        self.assertIn("100%", shown)
        self.assertIn("***", shown)
        # fail_with and succeed check elsewhere that a pipe gets no bar.


if __name__ == "__main__":
    unittest.main()
