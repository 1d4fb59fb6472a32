#!/usr/bin/env python3
"""Asks which joins connect the subjects of a report, and prints the SQL that joins them.

    report_sql.py shop.sqlite orders region
    report_sql.py shop.sqlite orders region --dialect duckdb
"""
import argparse
import sys

import qerefine


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("model")
    arguments.add_argument("subjects", nargs="+")
    arguments.add_argument("--dialect")
    given = arguments.parse_args()
    try:
        answer = qerefine.Model(given.model).path(*given.subjects)
        # What it risks stands above it, as comments.
        print(answer.sql(given.dialect, select=True), end="")
    except qerefine.NotConnectedError as failure:
        sys.exit(f"the subjects cannot be connected; their groups are {failure.groups}")
    except qerefine.QerefineError as failure:
        sys.exit(str(failure))


if __name__ == "__main__":
    main()
