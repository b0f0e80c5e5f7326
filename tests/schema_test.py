#!/usr/bin/python3
"""Runs every command of thermoscribe and holds what it prints as JSON to the schemas.

    schema_test.py PROGRAM FOLDER_OF_SCHEMAS
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

program = sys.argv[1]
folder = pathlib.Path(sys.argv[2]).resolve()
OUTPUT = json.loads((folder / "output.schema.json").read_text())
SNAPSHOT = json.loads((folder / "snapshot.schema.json").read_text())
# What is kept under names that aren't known before.
MAPS = ["changes"]

# The exit code, the options of the simulated readout, and the command line.
CASES = [
    (0, None, "ports"),
    (0, None, "completion fish"),
    (0, None, "config"),
    (0, None, "config set baud=9600 port=/dev/x"),
    (2, None, "config --baud 300 unset port nothing"),
    (0, None, "config unset port"),
    (0, "", "identify"),
    (0, "--no-scanner --firmware 5.02", "identify"),
    (5, "--model T999", "identify"),
    (0, "", "channels"),
    (0, "", "measure --count 2 --channel all"),
    (4, "--fault every=1:drop", "measure --timeout 0.02"),
    (0, "", "measure --stop"),
    (0, "", "record bath.t312 --channels 1,3 --count 1 --limit 1:..-50"),
    (0, "", "watch --count 1"),
    (0, None, "export bath.t312 --local-time"),
    (0, None, "export bath.t312 --events"),
    (0, None, "report bath.t312"),
    (0, None, "report bath.t312 --to 2000-01-01"),
    (1, None, "report passcode"),
    (1, None, "publish bath.t312 mqtt://127.0.0.1:1/lab --wait 0.1"),
    (2, None, "collect mqtt://127.0.0.1:1/lab --into postgresql://me:secret@x/y"),
    *((0, "", f"probe {number}") for number in range(1, 17)),
    (0, "", "channel 3"),
    (2, "--no-scanner", "channel 3"),
    (0, "", "channel 3 set probe=4 conversion=Ratio"),
    (0, "", "probe 3 set serial=A-1"),
    (0, "", "probe 3 set current=2 --dry-run"),
    (0, "", "convert --probe 3 26 Ohm 20 C --reference 100 0.3 Ratio --uncertainty resistance=1e-5,RTPW=1e-5"),
    (1, "", "convert --probe 14 26 Ohm"),
    (0, "", "table --probe 10 --from -200 --to 200 --step 100 --uncertainty resistance=0.01"),
    (0, "", "table --probe 13 --from 273 --to 300 --step 10 --unit K"),
    (0, "", "verify --channel 3,7"),
    (0, "", "settings show"),
    (0, "--no-scanner", "settings show"),
    *((0, "", f"settings show --group {group}") for group in ("filter", "scan", "protection")),
    (0, "", "settings set Units=K"),
    (2, "--no-scanner", "settings set ScanChannel=2"),
    (0, "", "settings save a.json"),
    (0, "--no-scanner --seed 4", "settings save b.json"),
    (0, "", "settings save -"),
    (10, None, "verify a.json"),
    (0, "", "settings diff a.json"),
    (10, None, "settings diff a.json b.json"),
    (1, None, "settings diff a.json missing.json"),
    (0, "--seed 5", "settings restore --yes a.json"),
    (1, "--no-scanner", "settings restore --yes a.json"),
    (0, "", "scan show"),
    (0, "--no-scanner", "scan show"),
    (0, "", "scan set --sequence 2,5"),
    (0, "", "protection show"),
    (0, "--passcode-file passcode", "protection unlock --passcode-file passcode"),
    (9, "", "protection unlock --passcode-file passcode"),
    (0, "", "clock set"),
    (0, "", "download --readings 2"),
    (0, "", "download --readings 2 --csv log.csv"),
    (2, None, "identify --nonsense"),
]

failures = []
kinds = set()


def validator(schema):
    resolver = jsonschema.RefResolver(folder.as_uri() + "/output.schema.json", OUTPUT)
    return jsonschema.Draft202012Validator(schema, resolver=resolver)


def check(schema, value, where):
    for error in validator(schema).iter_errors(value):
        failures.append(f"{where}: {error.message}: {json.dumps(value)}")


def check_line(line, where):
    try:
        value = json.loads(line)
    except json.JSONDecodeError:
        failures.append(f"{where}: no JSON: {line}")
        return
    kind = value.get("kind")
    kinds.add(kind)
    check(OUTPUT["$defs"].get(kind, False), value, where)


def check_file(snapshot, where):
    check({"$ref": (folder / "snapshot.schema.json").as_uri()}, snapshot, where)


def objects(schema):
    """All schemas of objects within."""
    if isinstance(schema, dict):
        if schema.get("type") == "object" and "properties" in schema:
            yield schema
        for part in schema.values():
            yield from objects(part)


def commands(before=()):
    """Each command that does something, as the program offers it to a shell."""
    words = [program, "__complete", "help", *before, ""]
    offered = subprocess.run(words, capture_output=True, text=True, check=True).stdout
    for line in offered.splitlines()[1:]:
        path = (*before, line.split("\t")[0])
        members = list(commands(path))
        yield from members or [path]


def main():
    for schema in (OUTPUT, SNAPSHOT):
        jsonschema.Draft202012Validator.check_schema(schema)
    for schema in [*objects(OUTPUT), *objects(SNAPSHOT)]:
        kind = schema["properties"].get("kind", {}).get("const")
        # A member is null and never left out; `settings` leaves out whole groups.
        required = [name for group in schema.get("anyOf", []) for name in group["required"]]
        if sorted(schema["properties"]) != sorted([*schema["required"], *required]):
            failures.append(f"{kind or schema}: a member may be left out")
        if (schema["additionalProperties"] is not False) != (kind in MAPS):
            failures.append(f"{kind or schema}: takes any member")

    os.environ.update(XDG_CONFIG_HOME=os.path.abspath("config"), TMPDIR=os.getcwd(), TZ="UTC")
    pathlib.Path("passcode").write_text("K9zQ\n")
    for exitcode, simulated, line in CASES:
        words = [program, "--json", *line.split()]
        if simulated is not None:
            words.insert(1, f"--simulate={simulated}")
        run = subprocess.run(words, capture_output=True, text=True, stdin=subprocess.DEVNULL)
        if run.returncode != exitcode:
            failures.append(f"{line}: {run.returncode} in place of {exitcode}: {run.stderr}")
        if line == "settings save -":
            check_file(json.loads(run.stdout), line)
            run.stdout = ""
        for text in run.stdout.splitlines() + run.stderr.splitlines():
            check_line(text, line)
    for name in ("a.json", "b.json"):
        check_file(json.loads(pathlib.Path(name).read_text()), name)

    known = {name for name, schema in OUTPUT["$defs"].items() if "kind" in schema.get("properties", ())}
    # A machine need not have a port, and not everybody who checks has a database.
    if kinds | {"port", "collected"} != known:
        failures.append(f"kinds without a schema or a line: {kinds ^ known}")
    if {part["$ref"].rpartition("/")[2] for part in OUTPUT["oneOf"]} != known:
        failures.append("not every kind is among the choices")
    run = [line.split() for _, _, line in CASES]
    for path in commands():
        words = [[word for word in line if not word.startswith("-")] for line in run]
        # The number of a channel or probe stands between.
        heads = [[word for word in line if not word.isdecimal()][: len(path)] for line in words]
        if list(path) not in heads and path != ("help",):
            failures.append(f"{' '.join(path)}: is not run")


with tempfile.TemporaryDirectory() as work:
    os.chdir(work)
    main()
    os.chdir("/")
print("\n".join(failures))
sys.exit(bool(failures))
