#!/usr/bin/env python3
"""Checks JSON documents against a JSON Schema.

Usage: check_schema.py SCHEMA DOCUMENT...

Prints a line for each document that the schema refuses. Exits with 77 where the validator is not
installed.
"""
import json
import os
import sys

try:
    from jsonschema import Draft202012Validator
except ImportError:
    sys.exit(77)


def read(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


schema = read(sys.argv[1])
Draft202012Validator.check_schema(schema)
validator = Draft202012Validator(schema)
for path in sys.argv[2:]:
    error = next(validator.iter_errors(read(path)), None)
    if error is not None:
        place = "".join(f"/{part}" for part in error.absolute_path)
        print(f"{os.path.basename(path)}{place}: {error.message[:200]!r}")
