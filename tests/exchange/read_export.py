"""Reads an export the way other programs do and prints what it holds as JSON; complains on standard error.

read_export.py csv|atom|opml FILE
"""
import csv
import json
import re
import sys
import xml.etree.ElementTree as ET

ATOM = "{http://www.w3.org/2005/Atom}"
DATE = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")


def demand(condition, what):
    if not condition:
        sys.exit(f"not valid: {what}")


def only(parent, name):
    found = parent.findall(ATOM + name)
    demand(len(found) == 1, f"{len(found)} {name} in {parent.tag}")
    return found[0]


def atom(path):
    """A feed, held against what RFC 4287 demands of it."""
    feed = ET.parse(path).getroot()
    demand(feed.tag == ATOM + "feed", "the root element")
    demand(only(feed, "author").find(ATOM + "name").text, "a feed without author")
    only(feed, "title")
    ids, result = set(), []
    for element in feed.iter():
        if element.tag in (ATOM + "id", ATOM + "updated", ATOM + "published"):
            text = element.text
            demand(re.match(r"urn:uuid:[0-9a-f-]{36}$", text) or DATE.match(text), f"{element.tag}: {text}")
    for entry in feed.findall(ATOM + "entry"):
        identity, updated = only(entry, "id").text, only(entry, "updated").text
        demand(identity not in ids, "two entries of one id")
        ids.add(identity)
        demand(updated <= only(feed, "updated").text, "an entry newer than its feed")
        link = entry.find(ATOM + "link")
        demand(link is not None or entry.find(ATOM + "content") is not None, "neither link nor content")
        demand(link is None or re.match(r"(?i)https?://[!-~]+$", link.get("href")), "a link that is no address")
        demand(only(entry, "title").get("type") == "text", "a title that is markup")
        result.append({"id": identity, "title": only(entry, "title").text, "updated": updated,
                       "link": "" if link is None else link.get("href")})
    return {"id": only(feed, "id").text, "updated": only(feed, "updated").text, "entries": result}


def opml(path):
    root = ET.parse(path).getroot()
    demand(root.tag == "opml" and root.get("version") == "2.0", "the root element")
    demand(root.find("head") is not None, "no head")
    demand(all("text" in outline.attrib for outline in root.iter("outline")), "an outline without text")
    return [outline.get("text") for outline in root.iter("outline")]


def rows(path):
    with open(path, "rb") as file:
        demand(b"\n" not in re.sub(rb'"[^"]*"', b"", file.read()).replace(b"\r\n", b""), "a line end that is none")
    with open(path, encoding="utf-8", newline="") as file:
        lines = list(csv.reader(file, strict=True))
    demand(all(len(line) == len(lines[0]) for line in lines), "lines of different length")
    return [dict(zip(lines[0], line)) for line in lines[1:]]


json.dump({"csv": rows, "atom": atom, "opml": opml}[sys.argv[1]](sys.argv[2]), sys.stdout)
