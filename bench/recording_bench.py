#!/usr/bin/python3
"""How long the commands on a recording take, and how much memory, at 100,000 and a million readings.

    recording_bench.py [--programs FOLDER] [--count N ...]

The recordings are copies of a short one of the simulated readout, with further rounds of 12 readings
behind it in the form that the recorder writes.
"""

import argparse
import os
import pathlib
import random
import shutil
import sqlite3
import subprocess
import tempfile
import time

MIB = 1024.0


def lengthen(path, count):
    """Rounds of 12 readings, each two seconds behind the one before."""
    chance = random.Random(1)
    database = sqlite3.connect(path)
    last = database.execute("SELECT sequence, utc, monotonic, session, sample, unit FROM reading "
                            "ORDER BY sequence DESC LIMIT 1").fetchone()
    sequence, utc, monotonic, session, sample, unit = last

    # One after another: what this program has held would count for those that it starts.
    def rows():
        for number in range(count - sequence):
            turn = number // 12 + 1
            channel = number % 12 + 1
            text = f"{20 + channel + chance.gauss(0, 3e-4):.4f}"
            yield (sequence + number + 1, utc + 2000 * turn, monotonic + 2000 * turn, session,
                   sample + turn, channel, text, float(text), unit, 4)

    database.executemany(f"INSERT INTO reading VALUES ({','.join('?' * 10)})", rows())
    database.commit()
    database.execute("PRAGMA wal_checkpoint(TRUNCATE)")
    database.close()


def run(words, environment):
    """Seconds, and the most memory in MiB, of a program whose output goes nowhere."""
    start = time.monotonic()
    child = subprocess.Popen(words, stdout=subprocess.DEVNULL, env=environment)
    # Not what `wait4` tells, which counts this program as well, out of which that one came.
    most = 0
    while child.poll() is None:
        try:
            for line in pathlib.Path(f"/proc/{child.pid}/status").read_text().splitlines():
                if line.startswith("VmHWM:"):
                    most = max(most, int(line.split()[1]))
        except OSError:
            pass
        time.sleep(0.002)
    if child.returncode != 0:
        raise SystemExit(f"{words} ended with {child.returncode}")
    return time.monotonic() - start, most / MIB


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--count", type=int, nargs="*", default=[100_000, 1_000_000])
    options = parser.parse_args()
    program = options.programs.resolve() / "thermoscribe"
    with tempfile.TemporaryDirectory() as work:
        work = pathlib.Path(work)
        environment = dict(os.environ, XDG_CONFIG_HOME=work)
        short = work / "short.t312"
        record = [program, "--simulate", "record", "--channels", "1-12", "--count", "1", "--quiet"]
        subprocess.run([*record, short], check=True, env=environment)
        for count in options.count:
            path = work / f"{count}.t312"
            shutil.copy(short, path)
            lengthen(path, count)
            size = path.stat().st_size - short.stat().st_size
            print(f"{count} readings: {path.stat().st_size / 2**20:.1f} MiB, "
                  f"{size / count:.1f} bytes a reading; a year of 12 channels at one a second "
                  f"{size / count * 12 * 86400 * 365 / 1e9:.1f} GB")
            for words in ("export --csv", "export --json", "export", "report", "report --html -"):
                seconds, memory = run([program, *words.split()[:1], path, *words.split()[1:]],
                                      environment)
                print(f"  {words:16} {seconds:7.2f} s  {memory:6.1f} MiB  "
                      f"{seconds / count * 1e6:5.2f} us a reading")
            seconds, memory = run([program, "--simulate", "record", path, "--count", "1", "--quiet"],
                                  environment)
            print(f"  {'go on, 1 round':16} {seconds:7.2f} s  {memory:6.1f} MiB")


if __name__ == "__main__":
    main()
