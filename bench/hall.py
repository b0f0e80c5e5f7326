#!/usr/bin/python3
"""A hall of readouts: a recorder for each, one broker, one database, two collectors, and all of them
are killed or stopped now and then. In the end every reading of every file is in the database once.

    hall.py [--readouts 100] [--seconds 300] [--seed N] [--programs FOLDER] [--peace]

With --peace nothing is killed: what the hall costs then, by the processors' own count.
"""

import argparse
import collections
import os
import pathlib
import random
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests" / "support"))
from servers import Broker, Database, readings_of_database, readings_of_file

TICKS = os.sysconf("SC_CLK_TCK")


class Usage:
    """Of processes: seconds of a processor, and memory that is theirs alone, in MiB."""

    def __init__(self, pids):
        self.seconds = self.memory = 0.0
        self.count = 0
        for pid in pids:
            try:
                fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
                rollup = pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text()
            except OSError:
                continue
            self.count += 1
            self.seconds += (int(fields[11]) + int(fields[12])) / TICKS
            for line in rollup.splitlines():
                if line.startswith("Pss:"):
                    self.memory += int(line.split()[1]) / 1024


def children_of(pid):
    found = [pid]
    for one in found:
        try:
            found += map(int, pathlib.Path(f"/proc/{one}/task/{one}/children").read_text().split())
        except OSError:
            pass
    return found


class Hall:
    def __init__(self, options, work):
        self.options = options
        self.work = work
        self.chance = random.Random(options.seed)
        self.environment = dict(os.environ, XDG_CONFIG_HOME=str(work))
        self.log = open(work / "log", "ab")
        self.broker = Broker(work, "allow_anonymous true\nmax_queued_messages 0\n")
        self.database = Database(work)
        self.readouts, self.recorders, self.collectors = [], [], []
        self.killed = collections.Counter()

    def start(self, name, *words):
        return subprocess.Popen([self.options.programs / name, *map(str, words)],
                                env=self.environment, stdout=self.log, stderr=self.log)

    def file(self, number):
        return self.work / f"{number}.t312"

    def start_readout(self, number):
        return self.start("thermoscribe-sim", "--link", self.work / f"readout{number}", "--noise", "0.5",
                          "--seed", number + 1)

    def start_recorder(self, number):
        return self.start("thermoscribe", "record", self.file(number), "--quiet", "--port",
                          self.work / f"readout{number}", "--publish", self.broker.url("hall"),
                          *([] if self.file(number).exists() else ["--channels", "1-12"]))

    def start_collector(self, number):
        return self.start("thermoscribe", "collect", self.broker.url("hall"), "--into",
                          self.database.url(), "--name", f"collector{number}")

    def open(self):
        for number in range(self.options.readouts):
            self.readouts.append(self.start_readout(number))
        time.sleep(1)
        self.collectors = [self.start_collector(number) for number in range(2)]
        for number in range(self.options.readouts):
            self.recorders.append(self.start_recorder(number))
            time.sleep(0.1)  # each reads all settings of its readout first
        end = time.monotonic() + 120
        while self.stored() < 12 * self.options.readouts and time.monotonic() < end:
            time.sleep(1)

    def stored(self):
        try:
            return int(self.database.rows("SELECT count(*) FROM thermoscribe.reading")[0][0])
        except subprocess.CalledProcessError:
            return 0

    def usages(self):
        postmaster = int((self.database.folder / "data" / "postmaster.pid").read_text().split()[0])
        groups = {"readouts": [one.pid for one in self.readouts],
                  "recorders": [one.pid for one in self.recorders],
                  "collectors": [one.pid for one in self.collectors],
                  "broker": [self.broker.child.pid], "database": children_of(postmaster)}
        return {name: Usage(pids) for name, pids in groups.items()}

    def kill_somebody(self):
        act = self.chance.choice(["recorder"] * 6 + ["readout"] * 3 + ["collector"] * 3 +
                                 ["broker", "database"])
        self.killed[act] += 1
        if act == "broker":
            # What it has acknowledged and not passed on is gone.
            self.broker.kill()
            time.sleep(self.chance.uniform(0.5, 5))
            self.broker.start()
        elif act == "database":
            self.database.stop()
            time.sleep(self.chance.uniform(0.5, 5))
            self.database.start()
        else:
            ones, start = {"recorder": (self.recorders, self.start_recorder),
                           "readout": (self.readouts, self.start_readout),
                           "collector": (self.collectors, self.start_collector)}[act]
            number = self.chance.randrange(len(ones))
            ones[number].kill()
            ones[number].wait()
            ones[number] = start(number)

    def run(self):
        start = time.monotonic()
        before, stored = self.usages(), self.stored()
        while time.monotonic() - start < self.options.seconds:
            time.sleep(self.chance.uniform(0.5, 2.5))
            if not self.options.peace:
                self.kill_somebody()
        passed = time.monotonic() - start
        if self.options.peace:
            after = self.usages()
            readings = self.stored() - stored
            print(f"{self.options.readouts} readouts of 12 channels, a sample each 2 s: "
                  f"{readings / passed:.0f} readings a second are stored")
            for name, usage in after.items():
                share = 100 * (usage.seconds - before[name].seconds) / passed
                print(f"  {name:10} {share:6.1f} % of a processor, {usage.memory:7.1f} MiB, "
                      f"{usage.count} processes; for one readout {share / self.options.readouts:.3f} %, "
                      f"{usage.memory / self.options.readouts:.2f} MiB")

    def close(self):
        """Ends the recorders in order, and waits until what they have filed is stored."""
        self.log.flush()
        for one in self.recorders:
            one.send_signal(signal.SIGTERM)
        codes = collections.Counter(one.wait(120) for one in self.recorders)
        if set(codes) != {0}:
            print(f"hall: recorders ended with {dict(codes)}", file=sys.stderr)
            return False
        # What a recorder could not wait for.
        for number in range(self.options.readouts):
            left = self.start("thermoscribe", "publish", self.file(number), self.broker.url("hall"),
                              "--wait", "120")
            if left.wait() != 0:
                print(f"hall: {self.file(number)} is not published", file=sys.stderr)
                return False
        readings, events = {}, {}
        for number in range(self.options.readouts):
            some, happened = readings_of_file(self.file(number))
            readings.update(some)
            events.update(happened)
        start = time.monotonic()
        while self.stored() < len(readings) and time.monotonic() - start < 120:
            time.sleep(1)
        time.sleep(3)
        found, found_events = readings_of_database(self.database)
        if (found, found_events) == (readings, events):
            print(f"{len(readings)} readings and {len(events)} events of {self.options.readouts} "
                  "files, each in the database once; killed: "
                  + (", ".join(f"{count} times a {name}" for name, count in self.killed.items()) or "nobody"))
            return True
        print(f"hall: missing {len(readings.keys() - found.keys())}, strange "
              f"{len(found.keys() - readings.keys())}, other "
              f"{sum(found[key] != row for key, row in readings.items() if key in found)} of "
              f"{len(readings)}; events missing {len(events.keys() - found_events.keys())}, strange "
              f"{len(found_events.keys() - events.keys())}", file=sys.stderr)
        return False

    def end(self):
        for one in self.recorders + self.collectors + self.readouts:
            if one.poll() is None:
                one.kill()
        self.broker.kill()
        self.database.stop()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--readouts", type=int, default=100)
    parser.add_argument("--seconds", type=float, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--peace", action="store_true")
    parser.add_argument("--programs", type=pathlib.Path, default="build/release/bin")
    options = parser.parse_args()
    options.programs = options.programs.resolve()
    resource.setrlimit(resource.RLIMIT_NOFILE, (resource.getrlimit(resource.RLIMIT_NOFILE)[1],) * 2)
    work = pathlib.Path(tempfile.mkdtemp(prefix="hall."))
    work.chmod(0o755)
    hall = Hall(options, work)
    isright = False
    try:
        hall.open()
        hall.run()
        isright = hall.close()
    finally:
        hall.end()
        if isright:
            shutil.rmtree(work, ignore_errors=True)
        else:
            print(f"hall: what is left is in {work}", file=sys.stderr)
    sys.exit(not isright)


if __name__ == "__main__":
    main()
