#!/usr/bin/python3
"""What it costs to bring a reading from its file over a broker into a database.

    collect_bench.py [--readings 600000] [--programs FOLDER]

One recording is published, from the first reading on, to a broker from which one collector takes it
into a database that waits for its disk. Where the slowest of them can't do more, that is what one of
each carries.
"""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "tests" / "support")]
from hall import Usage, children_of
from recording_bench import lengthen
from servers import Broker, Database


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--readings", type=int, default=600_000)
    parser.add_argument("--programs", type=pathlib.Path, default="build/release/bin")
    options = parser.parse_args()
    program = options.programs.resolve() / "thermoscribe"
    work = pathlib.Path(tempfile.mkdtemp(prefix="collect_bench."))
    work.chmod(0o755)
    environment = dict(os.environ, XDG_CONFIG_HOME=str(work))
    file = work / "long.t312"
    broker = database = collector = None
    try:
        subprocess.run([program, "--simulate", "record", file, "--channels", "1-12", "--count", "1",
                        "--quiet"], check=True, env=environment)
        lengthen(file, options.readings)
        broker = Broker(work)
        database = Database(work, fsync="on")
        collector = subprocess.Popen([program, "--quiet", "collect", broker.url(), "--into",
                                      database.url()], env=environment, stdout=subprocess.DEVNULL)
        postmaster = int((database.folder / "data" / "postmaster.pid").read_text().split()[0])
        groups = {"broker": [broker.child.pid], "collector": [collector.pid],
                  "database": children_of(postmaster)}
        time.sleep(2)
        start = time.monotonic()
        publisher = subprocess.Popen([program, "publish", file, broker.url()], env=environment,
                                     stdout=subprocess.DEVNULL)
        groups["publisher"] = [publisher.pid]
        spent = {}
        while publisher.poll() is None:
            for name, pids in groups.items():
                usage = Usage(children_of(postmaster) if name == "database" else pids)
                if usage.count:
                    spent[name] = usage
            time.sleep(0.2)
        passed = time.monotonic() - start
        stored = int(database.rows("SELECT count(*) FROM thermoscribe.reading")[0][0])
        size = int(database.rows("SELECT pg_total_relation_size('thermoscribe.reading')")[0][0])
        print(f"{stored} readings in {passed:.1f} s: {stored / passed:.0f} a second; "
              f"{size / stored:.0f} bytes a reading in the database")
        for name, usage in spent.items():
            print(f"  {name:10} {usage.seconds / stored * 1e6:6.2f} us of a processor a reading, "
                  f"{usage.memory:6.1f} MiB")
        if publisher.returncode != 0 or stored < options.readings:
            sys.exit("collect_bench: not everything is stored")
    finally:
        for one in (collector,):
            if one is not None:
                one.kill()
        if broker is not None:
            broker.kill()
        if database is not None:
            database.stop()
        shutil.rmtree(work, ignore_errors=True)


main()
