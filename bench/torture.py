#!/usr/bin/python3
"""Records from a readout on a bad line with a recorder that is killed again and again and a disk that
is full now and then, and holds the file to what the readout has given and to what was shown.

    torture.py [--seconds 600] [--kills 50] [--full 2] [--seed N] [--programs FOLDER] [--keep FOLDER]

The readout is the simulated one: 12 channels, a sample every 2 s, its shortest interval, and baths so
restless that hardly a reading comes twice. It notes each reading that it gives. The recording lies on a small file system of its
own in memory; where nobody may make one the disk is never full, which it says. Exit code 1 at the
first untruth.
"""

import argparse
import collections
import json
import os
import pathlib
import random
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time

CHANNELS = range(1, 13)
# Of an exchange; the recorder asks some 16 times a second.
FAULTS = ["p=0.01:drop", "p=0.005:garble", "p=0.005:late=0.5", "p=0.005:split", "p=0.01:delay=0.1",
          "p=0.002:refuse", "p=0.0004:hangup=0.5", "p=0.0004:power=1", "p=0.0005:identify"]
# What may stand between two samples of a channel that don't follow each other.
REASONS = {"missed", "lost", "reconnected", "continued", "refused", "silent", "full", "room", "asleep"}


class Untruth(Exception):
    pass


def demand(truth, text):
    if not truth:
        raise Untruth(text)


class Torture:
    def __init__(self, options, work):
        self.options = options
        self.work = work
        self.disk = work / "disk"
        self.file = self.disk / "bath.t312"
        self.shown = work / "shown"
        self.messages = work / "messages"
        self.given = work / "given"
        self.link = work / "readout"
        self.chance = random.Random(options.seed)
        self.environment = dict(os.environ, XDG_CONFIG_HOME=str(work / "config"))
        self.counts = collections.Counter()
        self.simulator = None
        self.recorder = None

    def start_simulator(self, faults):
        words = [self.options.programs / "thermoscribe-sim", "--link", self.link, "--noise", "0.5",
                 "--seed", str(self.chance.randrange(1, 10**9)), "--readings-log", self.given]
        for fault in faults:
            words += ["--fault", fault]
        self.simulator = subprocess.Popen(words, stdout=subprocess.PIPE)
        self.simulator.stdout.readline()

    def stop_simulator(self):
        self.simulator.kill()
        self.simulator.wait()
        self.simulator.stdout.close()

    def start_recorder(self):
        words = [self.options.programs / "thermoscribe", "record", self.file, "--port", self.link,
                 "--timeout", "0.3", "--json"]
        if not self.file.exists():
            words += ["--channels", "1-12"]
        with open(self.shown, "ab") as shown, open(self.messages, "ab") as messages:
            self.recorder = subprocess.Popen(words, stdout=shown, stderr=messages,
                                             env=self.environment)

    def fill_disk(self):
        with open(self.disk / "ballast", "wb", buffering=0) as ballast:
            for size in (65536, 4096, 1):
                try:
                    while True:
                        ballast.write(b"x" * size)
                except OSError:
                    pass

    def run(self):
        options = self.options
        self.start_simulator(FAULTS)
        self.begin()
        start = time.monotonic()
        acts = []
        for _ in range(options.kills):
            acts.append((self.chance.uniform(0, options.seconds), "kill"))
        for number in range(options.full):
            share = options.seconds / options.full
            begin = share * (number + self.chance.uniform(0.1, 0.6))
            acts.append((begin, "full"))
            acts.append((begin + self.chance.uniform(5, 12), "room"))
        for moment, act in sorted(acts):
            self.live_until(start + moment)
            self.counts[act] += 1
            if act == "kill":
                self.recorder.kill()
                self.recorder.wait()
                self.start_recorder()
            elif act == "full":
                self.fill_disk()
            else:
                (self.disk / "ballast").unlink()
        self.live_until(start + options.seconds)
        time.sleep(3)
        self.recorder.send_signal(signal.SIGTERM)
        code = self.recorder.wait(30)
        demand(code == 0, f"SIGTERM ended the recorder with {code}, see {self.messages}")
        self.stop_simulator()

    def live_until(self, moment):
        while (rest := moment - time.monotonic()) > 0:
            time.sleep(min(rest, 0.2))
            if self.recorder.poll() is not None:
                raise Untruth(f"the recorder ended by itself with {self.recorder.returncode}, "
                              f"see {self.messages}")

    def begin(self):
        """A recording needs a readout whose settings can be read, all of them; then it is there."""
        for _ in range(100):
            self.start_recorder()
            while self.recorder.poll() is None:
                if self.shown.stat().st_size > 0:
                    return
                time.sleep(0.05)
            demand(not self.file.exists(), "a recording that didn't begin has left a file")
        raise Untruth(f"no recording begins, see {self.messages}")


def load(path):
    database = sqlite3.connect(path)
    try:
        integrity = database.execute("PRAGMA integrity_check").fetchone()[0]
        readings = database.execute("SELECT sequence, channel, text, sample, monotonic FROM reading "
                                    "ORDER BY sequence").fetchall()
        events = database.execute("SELECT behind, kind, channel, number FROM event "
                                  "ORDER BY event").fetchall()
    finally:
        database.close()
    demand(integrity == "ok", f"the file is damaged: {integrity}")
    return readings, events


def load_given(path):
    """By channel and text: when it was given, and the readout's number of the sample."""
    given = collections.defaultdict(list)
    for line in path.read_text().splitlines():
        moment, sample, channel, body, _ = line.split()
        if body.startswith("="):
            given[int(channel), body[1:]].append((int(moment), int(sample)))
    return given


def load_shown(path):
    readings = {}
    lines = path.read_bytes().split(b"\n")
    for line in lines[:-1]:
        try:
            record = json.loads(line)
        except ValueError:
            raise Untruth(f"shown, and no whole line: {line}")
        if record["kind"] == "recordedreading":
            sequence = record["sequence"]
            demand(sequence not in readings, f"reading {sequence} was shown twice")
            readings[sequence] = (record["channel"], record["text"], record["sample"])
    return readings


def judge(readings, events, given, shown):
    # The file in itself.
    for place, row in enumerate(readings, 1):
        demand(row[0] == place, f"the sequence has a hole or a twin at {place}: {row}")
    by_sequence = {row[0]: row for row in readings}
    # Nothing that was shown is lost.
    for sequence, (channel, text, sample) in shown.items():
        row = by_sequence.get(sequence)
        demand(row is not None, f"shown and not in the file: {sequence} {channel} {text}")
        demand(row[1:4] == (channel, text, sample), f"shown otherwise: {sequence} {row} {text}")
    looks = {(channel, one[1]): text for (channel, text), ones in given.items() for one in ones}
    # Everything was given, once, and stands under its sample.
    seen = set()
    latest = {}
    own = {}
    unexplained = []
    for sequence, channel, text, sample, moment in readings:
        demand((channel, text) in given, f"never given: {sequence} {channel} {text}")
        # Two samples may look alike: the one that was given just before is meant.
        at, true = max((one for one in given[channel, text] if one[0] <= moment + 5),
                       default=(0, 0))
        demand((channel, true) not in seen, f"filed twice: {sequence} {channel} {text}")
        seen.add((channel, true))
        demand(-5 <= moment - at <= 3000, f"a time that is off: {sequence} {moment - at} ms")
        demand(own.setdefault(sample, true) == true,
               f"two samples under one number: {sequence} {sample} {true}")
        if channel in latest:
            before, before_true, before_sample, before_text = latest[channel]
            demand(true > before_true, f"out of order: {sequence} {channel} {text}")
            demand(sample > before_sample, f"numbers go back: {sequence} {sample}")
            # A reading that looks like the one before it is none, unless the readout scans so that
            # the channel must have been measured again.
            skipped = {looks.get((channel, one)) for one in range(before_true + 1, true)}
            if skipped - {before_text}:
                reasons = [row for row in events if before <= row[0] < sequence
                           and row[1] in REASONS and row[2] in (None, channel)]
                if not reasons:
                    unexplained.append((sequence, channel, before_true, true))
                kinds = {row[1] for row in reasons}
                if kinds == {"missed"} and before_text not in skipped:
                    counted = sum(row[3] for row in reasons)
                    demand(counted == true - before_true - 1,
                           f"{counted} are told missed of {true - before_true - 1} at {sequence}")
        latest[channel] = (sequence, true, sample, text)
    demand(not unexplained, f"samples that nothing is told of: {unexplained[:5]}")


def prove_that_it_can_fail(readings, events, given, shown):
    middle = len(readings) // 2
    row = readings[middle]
    twin = readings[middle - 12]
    spoilt = {
        "a reading is gone": readings[:middle] + readings[middle + 1:],
        "one stands twice": readings + [(len(readings) + 1, *row[1:])],
        "a digit is another": [*readings[:middle], (*row[:2], row[2] + "1", *row[3:]),
                               *readings[middle + 1:]],
        "two changed places": [(*r[:1], *twin[1:]) if r is row else
                               (*r[:1], *row[1:]) if r is twin else r for r in readings],
        "the end is cut off": readings[:-13],
        "a time is off": [*readings[:middle], (*row[:4], row[4] + 60000), *readings[middle + 1:]],
    }
    for name, damaged in spoilt.items():
        try:
            judge(damaged, events, given, shown)
        except Untruth:
            continue
        raise Untruth(f"{name}, and this test doesn't see it")
    try:
        judge(readings, [event for event in events if event[1] not in REASONS], given, {})
    except Untruth:
        return
    raise Untruth("no event is left, and this test doesn't see it")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--seconds", type=float, default=600)
    parser.add_argument("--kills", type=int, default=50)
    parser.add_argument("--full", type=int, default=2)
    parser.add_argument("--seed", type=int, default=random.randrange(10**6))
    parser.add_argument("--programs", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--keep", type=pathlib.Path, help="a folder for what is left of a failure")
    options = parser.parse_args()
    options.programs = options.programs.resolve()

    work = pathlib.Path(tempfile.mkdtemp(prefix="torture."))
    torture = Torture(options, work)
    torture.disk.mkdir()
    mount = ["mount", "-t", "tmpfs", "-o", "size=16m", "tmpfs", str(torture.disk)]
    # A disk of our own: as root, or as root of a name space, which ends with us.
    if os.environ.get("TORTURE_INSIDE") is None and options.full > 0:
        unshare = ["unshare", "--mount"] if os.getuid() == 0 else ["unshare", "-Urm"]
        if subprocess.run([*unshare, *mount], stderr=subprocess.DEVNULL).returncode == 0:
            os.environ["TORTURE_INSIDE"] = "1"
            shutil.rmtree(work)
            os.execvp("unshare", [*unshare, sys.executable, *sys.argv, "--seed", str(options.seed)])
        print("torture: no file system of one's own can be made here, so no disk is full",
              file=sys.stderr)
        options.full = 0
    if options.full > 0:
        subprocess.run(mount, check=True)
    print(f"seed {options.seed}", flush=True)
    try:
        torture.run()
        readings, events = load(torture.file)
        given, shown = load_given(torture.given), load_shown(torture.shown)
        judge(readings, events, given, shown)
        prove_that_it_can_fail(readings, events, given, shown)
    except Untruth as untruth:
        print(f"torture: {untruth}", file=sys.stderr)
        for child in (torture.recorder, torture.simulator):
            if child is not None and child.poll() is None:
                child.kill()
        keep = options.keep or pathlib.Path(tempfile.mkdtemp(prefix="torture-left."))
        shutil.copytree(work, keep, dirs_exist_ok=True,
                        ignore=shutil.ignore_patterns("readout"))
        print(f"torture: what is left is in {keep}", file=sys.stderr)
        sys.exit(1)
    finally:
        if options.full > 0:
            subprocess.run(["umount", torture.disk], check=False)
        shutil.rmtree(work, ignore_errors=True)
    kinds = collections.Counter(event[1] for event in events)
    print(f"{torture.counts['kill']} kills, the disk full {torture.counts['full']} times in "
          f"{options.seconds:.0f} s: {len(readings)} readings filed, {len(shown)} shown, "
          f"{sum(map(len, given.values()))} given; none lost, none twice, none wrong")
    print("events: " + ", ".join(f"{count} {kind}" for kind, count in sorted(kinds.items())))


main()
