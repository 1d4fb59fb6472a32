#!/usr/bin/env python3
"""Asks `qerefine mcp` one thing, as an agent does, and prints what the model behind the agent would read.

Usage: ask.py MODEL TOOL [ARGUMENTS]    ARGUMENTS is a JSON object
"""
import json
import subprocess
import sys


def call(model, tool, arguments):
    request = {"jsonrpc": "2.0", "id": 1, "method": "tools/call", "params": {
        "name": tool, "arguments": arguments,
        "_meta": {"io.modelcontextprotocol/protocolVersion": "2026-07-28",
                  "io.modelcontextprotocol/clientCapabilities": {}}}}
    server = subprocess.run(["qerefine", "mcp", model], input=json.dumps(request) + "\n",
                            stdout=subprocess.PIPE, text=True, check=True)
    return json.loads(server.stdout)


answer = call(sys.argv[1], sys.argv[2], json.loads(sys.argv[3] if len(sys.argv) > 3 else "{}"))
if "error" in answer:
    sys.exit(answer["error"]["message"])
print(answer["result"]["content"][0]["text"], end="")
