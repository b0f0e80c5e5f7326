#!/usr/bin/python3
"""How the recorder gets on with what is around it: terminals, pipes, signals, a service manager, an
alarm's command, other recorders, other readouts.

    record_test.py FOLDER_OF_PROGRAMS
"""

import json
import os
import pathlib
import pty
import re
import select
import signal
import socket
import sqlite3
import subprocess
import sys
import tempfile
import time

PROGRAM = pathlib.Path(sys.argv[1]).resolve() / "thermoscribe"


def demand(truth, text):
    if not truth:
        raise AssertionError(text)


class Recorder:
    """A run of the program in the background."""

    def __init__(self, *words, simulated="--noise 0.5", stdout=subprocess.PIPE, **more):
        words = [PROGRAM, f"--simulate={simulated}", *map(str, words)]
        self.child = subprocess.Popen(words, stdout=stdout, stderr=subprocess.PIPE,
                                      stdin=subprocess.DEVNULL, **more)

    def end(self, number=signal.SIGTERM, code=0):
        self.child.send_signal(number)
        return self.wait(code)

    def wait(self, code=0):
        output, errors = self.child.communicate(timeout=30)
        text = errors.decode()
        demand(self.child.returncode == code, f"{self.child.args}: {self.child.returncode}: {text}")
        return (output or b"").decode(), text


def rows(file, sql):
    database = sqlite3.connect(file)
    try:
        return database.execute(sql).fetchall()
    finally:
        database.close()


def readings(file):
    try:
        return rows(file, "SELECT count(*) FROM reading")[0][0]
    except sqlite3.Error:
        return 0


def until(what, text, seconds=20):
    end = time.monotonic() + seconds
    while not what():
        demand(time.monotonic() < end, f"not within {seconds} s: {text}")
        time.sleep(0.05)


def on_a_terminal():
    """A table that is written over, with names, means and the state; and then the terminal goes."""
    master, slave = pty.openpty()
    recorder = Recorder("record", "table.t312", "--channels", "1,3", stdout=slave)
    os.close(slave)
    text = ""
    end = time.monotonic() + 20
    while time.monotonic() < end and "6 readings recorded" not in text:
        if select.select([master], [], [], 0.5)[0]:
            text += os.read(master, 65536).decode()
    lines = re.split(r"\r\n|\x1b\[\d+F", text)
    demand(any(re.match(r"  3  Scanner 1 +\d+\.\d{4}  °C +\d+\.\d{5} +0\.\d{5} +\d s +(2\d|30)\.\d", line)
               for line in lines), text[-1500:])
    demand("\x1b[" in text and "table.t312, T312B, 5.03" in text, text[:500])
    os.close(master)
    recorder.child.send_signal(signal.SIGHUP)
    before = readings("table.t312")
    until(lambda: readings("table.t312") > before, "a recording goes on without its terminal")
    recorder.end()
    demand(rows("table.t312", "SELECT kind FROM event")[-1] == ("stopped",), "no orderly end")


def with_a_manager_and_an_alarm():
    """The manager hears when it begins, that it lives, and when it ends; the command runs."""
    manager = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    manager.bind("manager")
    manager.settimeout(20)
    command = 'echo $$ > pid; echo "$THERMOSCRIBE_EVENT $THERMOSCRIBE_CHANNEL $THERMOSCRIBE_NUMBER" >> alarms; exec sleep 100'
    recorder = Recorder("record", "alarm.t312", "--channels", "1", "--limit", "1:..-300", "--alarm",
                        command, "--quiet", env=dict(os.environ, NOTIFY_SOCKET=os.path.abspath("manager")))
    heard = manager.recv(4096).decode()
    demand("READY=1" in heard, heard)
    until(lambda: pathlib.Path("alarms").exists() and readings("alarm.t312") > 1, "an alarm")
    heard = manager.recv(4096).decode()
    demand("WATCHDOG=1" in heard, heard)
    recorder.child.send_signal(signal.SIGTERM)
    demand(recorder.child.wait(20) == 0, "it waits for the command")
    os.kill(int(pathlib.Path("pid").read_text()), signal.SIGKILL)
    output, errors = recorder.wait()
    demand(output == "", f"a quiet one says {output}")
    demand("Channel 1 is above its limits" in errors and "begins" not in errors, errors)
    manager.setblocking(False)
    try:
        while True:
            heard += manager.recv(4096).decode()
    except BlockingIOError:
        pass
    demand("STOPPING=1" in heard, heard)
    value = rows("alarm.t312", "SELECT value FROM reading")[0][0]
    demand(pathlib.Path("alarms").read_text() == f"alarm 1 {value}\n", "what the command is told")


def into_a_pipe():
    """A reader that goes away takes nothing with him; SIGINT before the end is an abort."""
    recorder = Recorder("record", "pipe.t312", "--channels", "1", "--count", "100", "--json")
    line = json.loads(recorder.child.stdout.readline())
    demand(line["kind"] == "event" and line["event"] == "started", line)
    while line["kind"] == "event":
        line = json.loads(recorder.child.stdout.readline())
    demand((line["sequence"], line["sample"], line["channel"]) == (1, 1, 1), line)
    recorder.child.stdout.close()
    until(lambda: readings("pipe.t312") > 2, "a recording without its reader")
    recorder.child.stdout = None
    _, text = recorder.end(signal.SIGINT, 7)
    demand('"Aborted after ' in text, text)


def with_others():
    """Another recorder, other channels, another readout, no readout, wrong words."""
    recorder = Recorder("record", "one.t312", "--channels", "1")
    until(lambda: readings("one.t312") > 0, "a reading")
    _, text = Recorder("record", "one.t312").wait(1)
    demand("another recorder writes this file" in text, text)
    recorder.end()
    _, text = Recorder("record", "one.t312", "--channels", "1,2").wait(2)
    demand("recording of the channels 1." in text, text)
    for odd in ("--firmware 5.04", "--no-scanner --firmware 5.10"):
        _, text = Recorder("record", "one.t312", simulated=odd).wait(1)
        demand("and not \"T312B, 5.03\"" in text, text)
    kinds = [row[0] for row in rows("one.t312", "SELECT kind FROM event")]
    demand(kinds.count("other") == 2, kinds)
    _, text = Recorder("record", "one.t312", "--count", "1").wait(0)
    demand(rows("one.t312", "SELECT ended IS NULL FROM recording") == [(0,)], "it isn't ended")

    _, text = Recorder("record", "two.t312", "--timeout", "0.05", simulated="--fault every=1:drop").wait(4)
    _, text = Recorder("record", "two.t312", "--channels", "11", simulated="--no-scanner").wait(2)
    demand(not list(pathlib.Path(".").glob("two*")), "a recording that didn't begin has left a file")
    for words in (["--limit", "1"], ["--limit", "1:5..4"], ["--limit", "1:.."], ["--for", "1w"],
                  ["--until", "soon"], ["--every", "2", "--new"], ["--limit", "1:1..2", "--limit", "1-3:..5"],
                  ["--broker-file", "x"], ["--publish", "mqtt://x"]):
        Recorder("record", "two.t312", *words).wait(2)
    _, text = Recorder("record", "no/folder.t312").wait(1)
    demand("No such file" in text, text)


def for_a_time():
    """Ends by itself, a round each so many seconds; the clock of the file is the wall's."""
    until_then = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(time.time() + 4))
    first = Recorder("record", "until.t312", "--channels", "1", "--until", until_then)
    second = Recorder("record", "every.t312", "--channels", "1,3", "--every", "3", "--for", "11s",
                      simulated="--noise 0.5")
    third = Recorder("watch", "--count", "1", "--channels", "1,3")
    first.wait()
    output, _ = third.wait()
    demand(len(output.splitlines()) == 2, output)
    second.wait()
    times = [row[0] for row in rows("every.t312", "SELECT utc FROM reading WHERE channel = 3")]
    demand(3 <= len(times) <= 4, times)
    demand(all(2000 <= later - one <= 5100 for one, later in zip(times, times[1:])), times)
    demand(abs(times[-1] / 1000 - time.time()) < 10, "the time of day")


def main():
    with tempfile.TemporaryDirectory(prefix="record_test.") as work:
        os.chdir(work)
        os.environ.update(XDG_CONFIG_HOME=work, TZ="UTC", LC_ALL="C.UTF-8")
        for test in (on_a_terminal, with_a_manager_and_an_alarm, into_a_pipe, with_others, for_a_time):
            start = time.monotonic()
            test()
            print(f"{test.__name__}: {time.monotonic() - start:.1f} s")
        os.chdir("/")


main()
