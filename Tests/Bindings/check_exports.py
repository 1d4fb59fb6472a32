#!/usr/bin/env python3
"""Checks that a library exports what its header declares, and nothing else.

Usage: check_exports.py LIBRARY HEADER
"""
import pathlib
import re
import subprocess
import sys

library, header = sys.argv[1], pathlib.Path(sys.argv[2])
listed = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True,
                        text=True).stdout
exported = {line.split()[-1].split("@")[0] for line in listed.splitlines()}
declared = set(re.findall(r"^QE_API .*?\b(qe_\w+)\(", header.read_text(encoding="utf-8"), re.MULTILINE))
problems = [f"missing: {name}" for name in sorted(declared - exported)]
problems += [f"exported by mistake: {name}" for name in sorted(exported - declared)]
print("\n".join(problems) or f"{len(exported)} exported names, all as declared")
sys.exit(bool(problems))
