#!/usr/bin/env python3
"""Lets agents talk to `qerefine mcp`: sessions by the protocol's own clients, floods, and what no client
sends.

Usage: agent_test.py QEREFINE CLIENT_FOLDER [--long] [unittest argument...]

The clients are those of Scripts/fetch_mcp_client.sh; without them or node, their sessions are skipped.
With --long, 10,000 calls are made instead of 2,000.
"""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
MODEL = ROOT / "Examples" / "retail" / "model.json"
NEWEST = {"io.modelcontextprotocol/protocolVersion": "2026-07-28",
          "io.modelcontextprotocol/clientCapabilities": {}}
QUESTIONS = [
    ("join_path", {"subjects": ["returns", "store", "category"]}),
    ("join_path", {"subjects": ["sales", "customer country"], "dialect": "duckdb"}),
    ("join_path", {"subjects": ["sale", "category"]}),
    ("alternatives", {"subjects": ["returns", "inventory"]}),
    ("explain", {"subjects": ["sales", "inventory", "category"]}),
    ("describe", {"subject": "sales"}),
    ("list_subjects", {"match": "c"}),
    ("check", {"limit": 1}),
]


def request(number, tool, arguments):
    params = {"name": tool, "arguments": arguments, "_meta": NEWEST}
    return json.dumps({"jsonrpc": "2.0", "id": number, "method": "tools/call", "params": params})


class Agents(unittest.TestCase):
    def start(self, *arguments):
        server = subprocess.Popen([TOOL, "mcp", MODEL, *arguments], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        for stream in (server.stdin, server.stdout, server.stderr):
            self.addCleanup(stream.close)
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)
        return server

    def ask(self, server, line):
        server.stdin.write(line + "\n")
        server.stdin.flush()
        return json.loads(server.stdout.readline())

    @unittest.skipUnless(shutil.which("node"), "node is not installed")
    def test_clients_hold_sessions(self):
        if not (CLIENTS / "fetched").exists():
            self.skipTest("Scripts/fetch_mcp_client.sh has not fetched the clients")
        run = subprocess.run(["node", pathlib.Path(__file__).with_name("agent_session.mjs"), TOOL, CLIENTS,
                              MODEL], capture_output=True, text=True, timeout=120, check=False)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        self.assertEqual(run.stdout.count("session: "), 3)

    def test_many_calls_take_no_more_memory(self):
        server = self.start("--jobs", "1")
        first, curve = {}, []
        for number in range(CALLS):
            tool, arguments = QUESTIONS[number % len(QUESTIONS)]
            answer = self.ask(server, request(number, tool, arguments))
            self.assertEqual(answer["id"], number)
            self.assertEqual(answer["result"], first.setdefault(number % len(QUESTIONS), answer["result"]))
            if (number + 1) % (CALLS // 10) == 0:
                status = pathlib.Path(f"/proc/{server.pid}/status").read_text(encoding="utf-8")
                curve.append(int(status.split("VmRSS:")[1].split()[0]))
        print("resident KiB after each tenth of", CALLS, "calls:", *curve)
        self.assertLess(curve[-1] - curve[1], SLACK, curve)
        server.stdin.close()
        self.assertEqual(server.wait(30), 0)

    def test_nothing_that_is_said_ends_it_or_reaches_its_output(self):
        server = self.start()
        lines = ["{", "[]", "null", '"' + "x" * 2_000_000 + '"', "[" * 100_000, "\ud800".encode(
            "utf-8", "surrogatepass").decode("latin-1"), json.dumps({"jsonrpc": "2.0", "id": 1}),
            request(2, "join_path", {"subjects": ["x" * 900_000]}),
            request(3, "join_path", {"subjects": ["sales"] * 50_000}),
            request("done", "describe", {})]
        for line in lines:
            answer = self.ask(server, line)
            self.assertEqual(answer["jsonrpc"], "2.0")
            self.assertTrue("result" in answer or answer["error"]["code"] in (-32700, -32600), line[:80])
        server.stdin.close()
        self.assertEqual(server.stdout.read(), "")
        self.assertEqual(server.wait(30), 0)

    def test_floods_are_answered_each_once_while_nobody_reads(self):
        server = self.start("--jobs", "2")
        calls = [request(number, *QUESTIONS[number % 4]) for number in range(600)]
        answers = server.communicate("\n".join(calls) + "\n", timeout=120)[0].splitlines()
        self.assertEqual(sorted(json.loads(answer)["id"] for answer in answers), list(range(600)))

    def test_signals_and_closed_pipes_end_it(self):
        for sent, code in ((signal.SIGTERM, -signal.SIGTERM), (signal.SIGINT, -signal.SIGINT)):
            server = self.start()
            self.ask(server, request(1, "describe", {}))
            server.send_signal(sent)
            self.assertEqual(server.wait(10), code)
        reader, writer = os.pipe()
        os.close(reader)
        run = subprocess.run([TOOL, "mcp", MODEL], input=request(1, "describe", {}), stdout=writer,
                             stderr=subprocess.PIPE, text=True, timeout=60, check=False)
        os.close(writer)
        self.assertEqual(run.returncode, 6)
        self.assertIn("cannot be written", run.stderr)

    def test_what_cannot_be_served_is_told_before(self):
        for arguments, code, told in ((["-"], 2, "can be no model"), (["no/such/file"], 3, "no/such/file"),
                                      ([MODEL, MODEL], 2, "Two models have one name"), ([], 2, "MODEL")):
            run = subprocess.run([TOOL, "mcp", *arguments], input="", capture_output=True, text=True,
                                 timeout=60, check=False)
            self.assertEqual(run.returncode, code, run.stderr)
            self.assertIn(told, run.stderr)
            self.assertEqual(run.stdout, "")


if __name__ == "__main__":
    TOOL, CLIENTS = pathlib.Path(sys.argv.pop(1)).resolve(), pathlib.Path(sys.argv.pop(1))
    CALLS = 10_000 if "--long" in sys.argv else 2_000
    SLACK = 4096
    sys.argv = [argument for argument in sys.argv if argument != "--long"]
    unittest.main()
