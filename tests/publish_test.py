#!/usr/bin/python3
"""Recordings over a real broker into a real database, while each of them is killed: every reading
and event of the file is in the database once.

    publish_test.py FOLDER_OF_PROGRAMS
"""

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

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "support"))
from servers import Broker, Database, demand, readings_of_database, readings_of_file, until


PROGRAM = pathlib.Path(sys.argv[1]).resolve() / "thermoscribe"


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


def test_password(stage):
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


def test_tls(stage):
    """Encrypted, to a broker whose certificate somebody has signed whom we trust, and to no other."""
    work = stage.work
    for name in ("ours", "others"):
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                        "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout",
                        work / f"{name}.key", "-out", work / f"{name}.pem"],
                       check=True, stderr=subprocess.DEVNULL)
        (work / f"{name}.key").chmod(0o644)  # the broker is another user
    broker = Broker(work, f"allow_anonymous true\ncertfile {work}/ours.pem\nkeyfile {work}/ours.key\n")
    url = broker.url().replace("mqtt:", "mqtts:")
    try:
        for name, code in (("others", 1), ("ours", 0)):
            keys = work / "keys"
            keys.write_text(f'cafile = "{work}/{name}.pem"\n')
            run = stage.start("publish", work / "b.t312", url, "--broker-file", keys, "--wait",
                              "1" if code else "20")
            demand(run.wait(30) == code, f"with the certificate of {name} it ends with {run.returncode}")
    finally:
        broker.kill()
    last = rows_of(work / "b.t312", "SELECT max(sequence) FROM reading")[0][0]
    marks = dict(rows_of(work / "b.t312", "SELECT name, reading FROM reader"))
    demand(marks == {url: last}, f"the mark in the file: {marks} in place of {last}")


def rows_of(file, sql):
    database = sqlite3.connect(file)
    try:
        return database.execute(sql).fetchall()
    finally:
        database.close()


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

    # Of somebody else, with what no database takes, and what is no message at all.
    foreign = "11111111-2222-3333-4444-555555555555"
    poison = ('{"recording":"%s","readings":[{"sequence":1,"time":"","utc":9000000000000000000,"channel":1,'
              '"name":"","text":"1","value":1,"unit":"C","sample":1}]}' % foreign)
    for topic, message in ((f"lab/{foreign}/readings", poison), (f"lab/{foreign}/state", "{"),
                           ("lab/nobody/readings", poison), (f"lab/{foreign}/readings", "[1]")):
        subprocess.run(["mosquitto_pub", "-h", "127.0.0.1", "-p", str(broker.port), "-q", "1", "-r", "-t",
                        topic, "-m", message], check=True)

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
            until(lambda: ("gone",) in database.rows("SELECT state->>'state' FROM thermoscribe.recording"),
                  20, "a recorder that was killed is gone")
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
        test_password(stage)
        test_tls(stage)
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
