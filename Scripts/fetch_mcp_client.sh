#!/usr/bin/env bash
# Fetches the clients of the Model Context Protocol with which tests ask the tool, from the npm
# registry: the one for the newest revision, and the one that most agents still have. No script of a
# package is run.
# Usage: Scripts/fetch_mcp_client.sh [FOLDER]    the folder is build/mcp-client where none is named
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(@modelcontextprotocol/client@2.4.0 @modelcontextprotocol/sdk@1.32.2)
folder=${1:-build/mcp-client}
if [ "$(cat "$folder/fetched" 2>/dev/null)" = "${packages[*]}" ]; then
  exit 0
fi
mkdir -p "$folder"
npm install --no-audit --no-fund --no-save --ignore-scripts --prefix "$folder" "${packages[@]}"
echo "${packages[*]}" > "$folder/fetched"
