#!/usr/bin/python3
"""What recording costs at a readout's fastest pace, and whether every sample is in the file.

    record_bench.py [--seconds 60] [--programs FOLDER]

Four recorders at once, each on a simulated readout of its own that takes a sample every 2 s: 12
channels and one, on a line without a pace and on one of 9600 baud. The processor's share is that of
the recorder's process alone, once its first readings are in. Exit code 1 for a sample that is not in
the file.
"""

import argparse
import collections
import contextlib
import os
import pathlib
import signal
import sqlite3
import subprocess
import tempfile
import time

TICKS = os.sysconf("SC_CLK_TCK")


class Recording:
    def __init__(self, programs, work, channels, baud):
        self.name = f"{channels:5}  {baud or 'no pace':>7}"
        self.channels = channels
        self.file = work / "bath.t312"
        self.given = work / "given"
        link = work / "readout"
        # So restless a bath that hardly two samples look alike.
        words = [programs / "thermoscribe-sim", "--link", link, "--noise", "0.5", "--readings-log",
                 self.given, "--baud", str(baud)]
        self.simulator = subprocess.Popen(words, stdout=subprocess.PIPE)
        self.simulator.stdout.readline()
        words = [programs / "thermoscribe", "record", self.file, "--port", link, "--quiet",
                 "--channels", f"1-{channels}"]
        self.recorder = subprocess.Popen(words, env=dict(os.environ, XDG_CONFIG_HOME=str(work)))

    def has_begun(self):
        if self.recorder.poll() is not None:
            raise SystemExit(f"the recorder ended with {self.recorder.returncode}")
        if not self.file.exists():
            return False
        try:
            with contextlib.closing(sqlite3.connect(self.file)) as database:
                return database.execute("SELECT count(*) FROM reading").fetchone()[0] > 0
        except sqlite3.OperationalError:
            return False  # its tables are still to come

    def used(self):
        """Seconds of the processor, and the most memory in MiB."""
        folder = pathlib.Path("/proc") / str(self.recorder.pid)
        fields = (folder / "stat").read_text().rsplit(")", 1)[1].split()
        status = (folder / "status").read_text().splitlines()
        peak = next(int(line.split()[1]) for line in status if line.startswith("VmHWM:"))
        return (int(fields[11]) + int(fields[12])) / TICKS, peak / 1024

    def stop(self):
        self.recorder.send_signal(signal.SIGTERM)
        if self.recorder.wait(30) != 0:
            raise SystemExit(f"SIGTERM ended the recorder with {self.recorder.returncode}")

    def clear(self):
        for child in (self.recorder, self.simulator):
            if child.poll() is None:
                child.kill()
                child.wait()
        self.simulator.stdout.close()

    def judge(self):
        """Readings, those that `missed` tells of, and those that nothing stands for."""
        given = collections.defaultdict(list)
        for line in self.given.read_text().splitlines():
            moment, sample, channel, body, _ = line.split()
            given[int(channel), body[1:]].append((int(moment), int(sample)))
        with contextlib.closing(sqlite3.connect(self.file)) as database:
            readings = database.execute("SELECT channel, text, monotonic FROM reading").fetchall()
            missed = database.execute(
                "SELECT total(number) FROM event WHERE kind = 'missed'").fetchone()[0]
        samples = collections.defaultdict(set)
        for channel, text, moment in readings:
            # The latest that was given before: two samples may look alike after all.
            _, sample = max(one for one in given[channel, text] if one[0] <= moment + 5)
            samples[channel].add(sample)
        first = min(min(one) for one in samples.values())
        last = max(max(one) for one in samples.values())
        # The last sample may have been read in part when the end came.
        whole = set(range(first, last))
        holes = sum(len(whole - samples[channel]) for channel in range(1, self.channels + 1))
        twins = len(readings) - sum(map(len, samples.values()))
        return len(readings), int(missed), holes, twins


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--programs", type=pathlib.Path, default="build/release/bin")
    options = parser.parse_args()
    with contextlib.ExitStack() as stack:
        work = pathlib.Path(stack.enter_context(tempfile.TemporaryDirectory()))
        recordings = []
        for channels in (12, 1):
            for baud in (0, 9600):
                folder = work / f"{channels}-{baud}"
                folder.mkdir()
                recordings.append(Recording(options.programs.resolve(), folder, channels, baud))
                stack.callback(recordings[-1].clear)
        while not all([one.has_begun() for one in recordings]):
            time.sleep(0.2)
        before = [one.used() for one in recordings]
        start = time.monotonic()
        time.sleep(options.seconds)
        behind = [one.used() for one in recordings]
        passed = time.monotonic() - start
        for one in recordings:
            one.stop()
        print(f"{passed:.0f} s, a sample every 2 s")
        print("channels  baud  processor  memory MiB  readings  missed  holes  twins")
        isbad = False
        for one, (cpu, _), (now, peak) in zip(recordings, before, behind):
            readings, missed, holes, twins = one.judge()
            isbad = isbad or holes > 0 or twins > 0
            print(f"{one.name}  {(now - cpu) / passed * 100:7.3f} %  {peak:10.1f}  {readings:8}  "
                  f"{missed:6}  {holes:5}  {twins:5}")
    raise SystemExit(1 if isbad else 0)


main()
