#!/usr/bin/python3
"""Recordings over a real broker into a real database, while each of them is killed: every reading
and event of the file is in the database once.

    publish_test.py FOLDER_OF_PROGRAMS
"""

import glob
import os
import pathlib
import random
import shutil
import signal
import socket
import sqlite3
import subprocess
import sys
import tempfile
import time

PROGRAM = pathlib.Path(sys.argv[1]).resolve() / "thermoscribe"
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
    def __init__(self, work):
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
                   "-c fsync=off -c max_connections=20")
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


def make_recording(path, environment, count, chance):
    """One round of a readout, and further readings behind it whose texts are odd now and then."""
    subprocess.run([PROGRAM, "--simulate", "record", path, "--channels", "1-12", "--count", "1",
                    "--quiet"], check=True, env=environment)
    database = sqlite3.connect(path)
    last, utc, session = database.execute(
        "SELECT sequence, utc, session FROM reading ORDER BY sequence DESC LIMIT 1").fetchone()
    odd = ["20.0000", "-1e-3", "+7", ' 5 "quoted"', "1\\2", "{3}", "NULL", "\u00b5 4"]
    for number in range(1, count + 1):
        text = chance.choice(odd)
        database.execute("INSERT INTO reading VALUES (?, ?, ?, ?, ?, ?, ?, ?, 1, 4)",
                         (last + number, utc + number, number, session, number, number % 12 + 1, text,
                          chance.uniform(-200, 900)))
        if number % 97 == 0:
            database.execute("INSERT INTO event (behind, utc, monotonic, session, kind, text) VALUES "
                             "(?, ?, ?, ?, 'lost', ?)", (last + number, utc, number, session, text))
    database.commit()
    database.close()


class Stage:
    def __init__(self, work):
        self.work = work
        self.environment = dict(os.environ, XDG_CONFIG_HOME=str(work))
        self.children = []

    def start(self, *words):
        log = open(self.work / "log", "ab")
        child = subprocess.Popen([PROGRAM, *map(str, words)], env=self.environment, stdout=log,
                                 stderr=log)
        self.children.append(child)
        return child

    def usage(self, *words):
        run = subprocess.run([PROGRAM, *map(str, words)], env=self.environment, capture_output=True,
                             text=True)
        demand(run.returncode == 2, f"{words} ended with {run.returncode}: {run.stderr}")
        return run.stderr


def test_addresses(stage, broker):
    file = stage.work / "none.t312"
    for url, why in {"http://x/y": "mqtt://", "mqtt://x": "prefix", "mqtt:///y": "host",
                     "mqtt://x:0/y": "port", "mqtt://x:70000/y": "port", "mqtt://x/a/#": "prefix",
                     "mqtt://me:secret@x/y": "--broker-file"}.items():
        told = stage.usage("record", file, "--publish", url)
        demand(why in told and "secret" not in told, f"{url}: {told}")
    demand(not file.exists(), "a file was made for a wrong address")
    told = stage.usage("collect", broker.url(), "--into", "postgresql://lab:secret@x/y")
    demand("pgpass" in told and "secret" not in told, told)
    keys = stage.work / "keys"
    keys.write_text('user = "lab"\npassword = "x"\n')
    keys.chmod(0o644)
    told = stage.usage("record", file, "--publish", broker.url(), "--broker-file", keys)
    demand("chmod 600" in told, told)
    keys.write_text('pasword = "x"\n')
    demand("unknown" in stage.usage("record", file, "--publish", broker.url(), "--broker-file", keys),
           "a slip in the file of credentials passes")


def test_password(stage, database):
    """A broker that lets only one user in, and his password out of a file."""
    secrets = stage.work / "secrets"
    subprocess.run(["mosquitto_passwd", "-c", "-b", secrets, "lab", "K9zQ"], check=True,
                   stderr=subprocess.DEVNULL)
    secrets.chmod(0o644)
    broker = Broker(stage.work, f"allow_anonymous false\npassword_file {secrets}\n")
    keys = stage.work / "keys"
    keys.write_text('user = "lab"\npassword = "K9zQ"\n')
    keys.chmod(0o600)
    file = stage.work / "a.t312"
    try:
        denied = stage.start("publish", file, broker.url(), "--wait", "1")
        demand(denied.wait(20) == 1, "a broker takes us without a password")
        let = stage.start("publish", file, broker.url(), "--broker-file", keys, "--wait", "20")
        demand(let.wait(30) == 0, "the password isn't taken")
    finally:
        broker.kill()


def test_everything_is_killed(stage, broker, database):
    chance = random.Random(3)
    collectors = [stage.start("collect", broker.url(), "--into", database.url(), "--name", f"c{i}")
                  for i in range(2)]
    live = stage.work / "live.t312"

    def record():
        return stage.start("--simulate", "record", live, "--channels", "1,3", "--quiet",
                           "--publish", broker.url())
    recorder = record()
    files = [stage.work / f"{name}.t312" for name in "ab"]
    publishers = [stage.start("publish", file, broker.url()) for file in files]

    def kill(children, number, again):
        children[number].kill()
        children[number].wait()
        children[number] = again()

    for turn in range(4):
        time.sleep(chance.uniform(0.2, 1))
        kill(collectors, turn % 2, lambda: stage.start("collect", broker.url(), "--into",
                                                        database.url(), "--name", f"c{turn % 2}"))
        kill(publishers, turn % 2,
             lambda: stage.start("publish", files[turn % 2], broker.url()))
        if turn == 1:
            recorder.kill()
            recorder.wait()
            recorder = record()
        if turn == 2:
            database.stop()
            time.sleep(1)
            database.start()
        if turn in (1, 3):
            # It has kept nothing of what it was told.
            broker.kill()
            time.sleep(0.5)
            broker.start()
    for publisher in publishers:
        demand(publisher.wait(60) == 0, "a publisher doesn't end well")
    time.sleep(3)
    recorder.send_signal(signal.SIGTERM)
    demand(recorder.wait(30) == 0, "the recorder doesn't end well")
    expected, events = {}, {}
    for file in [*files, live]:
        readings, happened = readings_of_file(file)
        expected.update(readings)
        events.update(happened)

    def arethere():
        return readings_of_database(database) == (expected, events)
    try:
        until(arethere, 40, "everything is in the database")
    except AssertionError:
        found, found_events = readings_of_database(database)
        print(f"missing {len(expected.keys() - found.keys())}, strange "
              f"{len(found.keys() - expected.keys())}, other "
              f"{sum(found.get(key) != row for key, row in expected.items() if key in found)}; events "
              f"{len(events.keys() - found_events.keys())}, {len(found_events.keys() - events.keys())}")
        raise
    for collector in collectors:
        collector.send_signal(signal.SIGTERM)
        demand(collector.wait(20) == 0, "a collector doesn't end well")
    states = dict(database.rows("SELECT recording, state->>'state' FROM thermoscribe.recording"))
    demand(sorted(states.values()) == ["ended", "ended", "stopped"], f"states {states}")
    demand(len(expected) > 6000, "hardly anything was published")
    return len(expected)


def main():
    work = pathlib.Path(tempfile.mkdtemp(prefix="publish_test."))
    work.chmod(0o755)
    stage = Stage(work)
    broker = database = None
    try:
        chance = random.Random(1)
        for name in "ab":
            make_recording(work / f"{name}.t312", stage.environment, 3000, chance)
        broker = Broker(work)
        test_addresses(stage, broker)
        database = Database(work)
        test_password(stage, database)
        print(f"{test_everything_is_killed(stage, broker, database)} readings, each of them once")
    except Exception:
        print((work / "log").read_text(errors="replace")[-3000:])
        raise
    finally:
        for child in stage.children:
            if child.poll() is None:
                child.kill()
        if broker:
            broker.kill()
        if database:
            database.stop()
        shutil.rmtree(work, ignore_errors=True)


main()
