#!/usr/bin/env python3
"""The user's pages: each is whole, reached from the contents, and there for what sends a user to it.

  help_test.py SOURCE_FOLDER
"""

import html.parser
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
HELP = ROOT / "docs" / "help"
VOID = {"meta", "link", "br", "img", "path", "rect"}
faults = []


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.path, self.open, self.links, self.ids = path, [], set(), set()
        self.feed(path.read_text(encoding="utf-8"))
        if self.open:
            faults.append(f"{path.name}: <{self.open[-1]}> is not closed")

    def handle_starttag(self, tag, attributes):
        if tag not in VOID:
            self.open.append(tag)
        for name, value in attributes:
            if name == "href":
                self.links.add(value)
            if name == "id":
                if value in self.ids:
                    faults.append(f"{self.path.name}: two places have the name {value}")
                self.ids.add(value)

    def handle_endtag(self, tag):
        if tag in VOID:
            return
        if not self.open or self.open.pop() != tag:
            faults.append(f"{self.path.name}:{self.getpos()[0]}: </{tag}> closes nothing")


pages = {path.name: Page(path) for path in HELP.glob("*.html")}
for name, page in pages.items():
    for link in page.links:
        file, _, place = link.partition("#")
        target = pages.get(file or name)
        if file.endswith(".css"):
            if not (HELP / file).exists():
                faults.append(f"{name}: there is no {file}")
        elif target is None:
            faults.append(f"{name}: there is no {file}")
        elif place and place not in target.ids:
            faults.append(f"{name}: {file} has no place {place}")

reached, open_ = {"index.html"}, ["index.html"]
while open_:
    for link in pages[open_.pop()].links:
        file = link.partition("#")[0]
        if file in pages and file not in reached:
            reached.add(file)
            open_.append(file)
faults += [f"no way leads to {name}" for name in sorted(set(pages) - reached)]

topics = (ROOT / "adapters/qt/help_topics.cpp").read_text()
for name in re.findall(r'"(\w+\.html)"', topics):
    if name not in pages:
        faults.append(f"a topic has no page: {name}")

# Every window of the library has a topic, and every number of an error a row.
made = "".join(path.read_text() for folder in ("vane", "adapters/conversions")
               for path in (ROOT / folder).rglob("*.cpp"))
for window in sorted(set(re.findall(r'MakeForm\("(\w+)"\)', made))):
    if f'"{window}"' not in topics:
        faults.append(f"the window {window} has no topic")
numbers = "".join((ROOT / name).read_text() for name in (
    "vane/components/library_error.h", "adapters/serial/line_errors.h",
    "adapters/qt/pumped_communications.h"))
found = re.findall(r"ErrorCode\(0x([0-9A-F]{8})\)", numbers)
assert len(found) > 10
for number in found:
    if f"e{number}" not in pages["errors.html"].ids:
        faults.append(f"errors.html doesn't tell of 0x{number}")

print("\n".join(faults))
sys.exit(1 if faults else 0)
