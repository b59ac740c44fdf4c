"""What the makers of test vectors share: the form of the file, and their command line.

    MAKER            write the file
    MAKER --check    make it again and compare it with the committed one; status 1 where they differ
"""

import argparse
import json
import pathlib
import sys

DATA = pathlib.Path(__file__).resolve().parents[2] / "data"


def text(groups):
    """Groups of items as JSON, one item a line."""
    lists = [f' "{key}": [\n' + ",\n".join("  " + json.dumps(item) for item in items) + "\n ]"
             for key, items in groups.items()]
    return "{\n" + ",\n".join(lists) + "\n}\n"


def main(description, target, build):
    """Runs one maker. target: the file below data/; build() returns its groups."""
    parser = argparse.ArgumentParser(description=description.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="make them again and compare with the committed file")
    path = DATA / target
    if not parser.parse_args().check:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text(build()))
    elif path.read_text() != text(build()):
        sys.exit(f"{path.name} differs from what the generator makes")
