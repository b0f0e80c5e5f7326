"""A broker and a database of one's own, on free ports and in a folder of their own; and what a
recording and a database hold, in a form that can be compared."""

import glob
import os
import pathlib
import shutil
import socket
import sqlite3
import subprocess
import time

ROOT = os.getuid() == 0
# The database refuses to run as root.
AS_OTHER = ["setpriv", "--reuid=postgres", "--regid=postgres", "--clear-groups"] if ROOT else []


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


def demand(truth, text):
    if not truth:
        raise AssertionError(text)


def until(what, seconds, text):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if what():
            return
        time.sleep(0.1)
    raise AssertionError(f"not within {seconds} s: {text}")


class Broker:
    def __init__(self, work, extra=""):
        self.port = free_port()
        self.config = work / f"broker{self.port}.conf"
        self.config.write_text(f"listener {self.port} 127.0.0.1\n" + (extra or "allow_anonymous true\n"))
        self.child = None
        self.start()

    def start(self):
        self.child = subprocess.Popen(["/usr/sbin/mosquitto", "-c", self.config],
                                      stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

        def listens():
            with socket.socket() as one:
                return one.connect_ex(("127.0.0.1", self.port)) == 0
        until(listens, 10, "the broker starts")

    def kill(self):
        self.child.kill()
        self.child.wait()

    def url(self, prefix="lab"):
        return f"mqtt://127.0.0.1:{self.port}/{prefix}"


class Database:
    def __init__(self, work, fsync="off"):
        self.fsync = fsync
        self.port = free_port()
        self.folder = work / "database"
        self.folder.mkdir()
        if ROOT:
            shutil.chown(self.folder, "postgres", "postgres")
        self.tools = pathlib.Path(sorted(glob.glob("/usr/lib/postgresql/*/bin"))[-1])
        self.run("initdb", "-D", self.folder / "data", "-A", "trust", "-U", "lab", "--no-sync")
        self.start()
        self.run("createdb", "-h", "127.0.0.1", "-p", str(self.port), "-U", "lab", "lab")

    def run(self, tool, *words):
        subprocess.run([*AS_OTHER, self.tools / tool, *words], check=True, cwd=self.folder,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def start(self):
        options = (f"-p {self.port} -k {self.folder} -c listen_addresses=127.0.0.1 "
                   f"-c fsync={self.fsync} -c max_connections=20")
        self.run("pg_ctl", "-D", self.folder / "data", "-w", "-o", options, "-l",
                 self.folder / "log", "start")

    def stop(self):
        self.run("pg_ctl", "-D", self.folder / "data", "-w", "-m", "immediate", "stop")

    def url(self):
        return f"postgresql://lab@127.0.0.1:{self.port}/lab"

    def rows(self, sql):
        words = [self.tools / "psql", self.url(), "-At", "-F", "\x1f", "-R", "\x1e", "-c", sql]
        text = subprocess.run(words, check=True, capture_output=True).stdout.decode()
        return [tuple(row.split("\x1f")) for row in text.rstrip("\n").split("\x1e") if row]


def readings_of_file(path):
    database = sqlite3.connect(path)
    uuid = database.execute("SELECT uuid FROM recording").fetchone()[0]
    rows = database.execute("SELECT sequence, utc, channel, text, value, unit, sample FROM readings")
    readings = {(uuid, str(row[0])): tuple(map(str, row[1:4])) + (repr(row[4]),) + tuple(map(str, row[5:]))
                for row in rows}
    events = {(uuid, str(row[0])): (row[1], row[2])
              for row in database.execute("SELECT event, kind, text FROM event")}
    database.close()
    return readings, events


def readings_of_database(database):
    rows = database.rows("SELECT recording, sequence, round(extract(epoch FROM time) * 1000)::bigint, "
                         "channel, text, value, unit, sample FROM thermoscribe.reading")
    readings = {row[:2]: row[2:5] + (repr(float(row[5])),) + row[6:] for row in rows}
    demand(len(readings) == len(rows), "a key stands twice")
    events = {row[:2]: row[2:] for row in
              database.rows("SELECT recording, event, kind, text FROM thermoscribe.event")}
    return readings, events
