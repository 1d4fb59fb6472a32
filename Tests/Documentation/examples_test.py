#!/usr/bin/env python3
"""Runs the examples of the documents and compares what they print with what stands there.

An example is a line "$ command" with the lines behind it that the command prints, up to the next
such line or the end of the block. Those of the documents run in Examples/retail; those of the
README are what Scripts/demo.sh shows.

Usage: examples_test.py QEREFINE
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
RETAIL = ROOT / "Examples" / "retail"


def read_examples(document):
    """Returns (command, output) for each example of a document, in reading order."""
    examples, output, fenced = [], None, False
    for line in document.read_text(encoding="utf-8").split("\n"):
        indented = line.startswith("    ")
        if line.startswith("```"):
            fenced, output = not fenced, None
        elif not fenced and not indented and line:
            output = None
        text = line[4:] if indented and not fenced else line
        if text.startswith("$ ") and (fenced or indented):
            output = []
            examples.append((text[2:], output))
        elif output is not None:
            output.append(text)
    return [(command, plain("\n".join(output))) for command, output in examples]


def plain(text):
    """Returns the text without empty lines around it."""
    return text.strip("\n")


class Documents(unittest.TestCase):
    maxDiff = None

    def run_with_tool(self, command, folder):
        environment = dict(os.environ, PATH=f"{TOOL.parent}:{os.environ['PATH']}")
        environment.pop("QEREFINER_SETTINGS", None)
        return subprocess.run(["bash", "-c", command], cwd=folder, env=environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)

    def test_examples_print_what_the_documents_show(self):
        count = 0
        for document in sorted((ROOT / "Documentation").glob("*.md")):
            for command, output in read_examples(document):
                with self.subTest(document=document.name, command=command):
                    printed = self.run_with_tool(command, RETAIL).stdout
                    self.assertEqual(plain(printed), output)
                count += 1
        self.assertGreater(count, 5)

    def test_demonstration_shows_what_the_readme_shows(self):
        examples = read_examples(ROOT / "README.md")
        self.assertGreater(len(examples), 1)
        with tempfile.TemporaryDirectory() as folder:
            demo = self.run_with_tool(f"Scripts/demo.sh --built '{folder}'", ROOT)
            self.assertEqual(demo.returncode, 0, demo.stdout)
            shown = plain(demo.stdout.replace(folder, "build/demo"))
            for command, output in examples:
                self.assertIn(f"$ {command}\n{output}", shown)


if __name__ == "__main__":
    TOOL = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
