#!/usr/bin/python3
"""Loads a folder of conversion profiles with lxml into plain dicts: what a
user would script instead of calling praseXMLFolder. Uses python3-lxml from
Debian (apt-get install python3-lxml).

    lxml_folder.py FOLDER [--warmup N] [--rounds N]

Loads the folder N times untimed, then times each of the following loads
and prints the process CPU milliseconds of each, one per line."""
import argparse
import os
import time

from lxml import etree


def xml_files(folder):
    """The folder's .xml files, then its subfolders', as the library scans."""
    entries = sorted(os.scandir(folder), key=lambda e: e.name)
    files = [e.path for e in entries
             if e.is_file() and e.name.lower().endswith(".xml")]
    for e in entries:
        if e.is_dir(follow_symlinks=False):
            files += xml_files(e.path)
    return files


def texts(node, tag):
    """The texts of node's children named tag, by language."""
    return {child.get("lang", ""): child.text or ""
            for child in node.iterfind(tag)}


def split(text):
    return text.split(",")[:20] if text else []


def item(node):
    values = split(node.findtext("ListValue"))
    labels = {lang: split(text)
              for lang, text in texts(node, "ListItem").items()}
    return {
        "name": node.get("name", ""),
        "group": node.get("group", ""),
        "readyOnly": int(node.get("readyOnly") or 0),
        "displayType": node.get("displayType"),
        "valueType": node.get("valueType"),
        "label": texts(node, "Label"),
        "description": texts(node, "Description"),
        "listEntries": [
            {"value": value,
             "label": {lang: pieces[m] if m < len(pieces) else None
                       for lang, pieces in labels.items()}}
            for m, value in enumerate(values)],
        "defaultValue": node.findtext("DefaultValue") or "",
    }


def profile(path):
    root = etree.parse(path).getroot()
    main = root.find("Main")
    group = root.find("Group")
    config = root.find("Config")
    return {
        "fileName": os.path.basename(path),
        "name": main.findtext("Name") or "",
        "displayName": texts(main, "DisplayName"),
        "desc": texts(main, "Desc"),
        "format": main.findtext("Format") or "",
        "extName": main.findtext("ExtName") or "",
        "isSysProfile": int(main.findtext("IsSysProfile") or 0),
        "type": int(main.findtext("Type") or 0),
        "device": int(main.findtext("Device") or 0),
        "groupId": int(group.findtext("ID") or 0),
        "groupDisplayName": texts(group, "DisplayName"),
        "configItems": [item(n) for n in config.iterfind("ConfigItem")],
    }


def load(folder):
    return [profile(path) for path in xml_files(folder)]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder")
    parser.add_argument("--warmup", type=int, default=1)
    parser.add_argument("--rounds", type=int, default=1)
    args = parser.parse_args()
    for _ in range(args.warmup):
        load(args.folder)
    for _ in range(args.rounds):
        start = time.process_time()
        profiles = load(args.folder)
        elapsed = time.process_time() - start
        assert profiles
        print("%.3f" % (elapsed * 1e3))


if __name__ == "__main__":
    main()
