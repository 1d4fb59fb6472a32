#!/usr/bin/env bash
# Sets up this machine, builds the tool, makes the retail database, and answers a real report: goods
# that came back, by the store that took them and the category of the product.
# Usage: Scripts/demo.sh [--no-setup]
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" != --no-setup ]; then
  Scripts/setup.sh
fi

echo "Building (the messages go to build/demo/build.log) ..."
mkdir -p build/demo
buildTool() {
  cmake --preset release
  cmake --build --preset release --target qerefine
}
buildTool >build/demo/build.log 2>&1 || { cat build/demo/build.log; exit 1; }
PATH="$PWD/build/release/bin:$PATH"

retail=Examples/retail
database=build/demo/retail.db
rm -f "$database"
cat "$retail/warehouse.sql" "$retail/rows.sql" | sqlite3 "$database"

show() {
  printf '\n$ %s\n' "$*"
  "$@"
}

question=("$retail/model.json" returns store category --straightest)
show qerefine path "${question[@]}"
show qerefine path "${question[@]}" --format sql

report=build/demo/report.sql
{
  echo 'SELECT store_name, category_name, sum(returned_quantity) AS quantity'
  qerefine path "${question[@]}" --format sql
  echo 'GROUP BY store_name, category_name'
  echo 'ORDER BY quantity DESC, store_name, category_name LIMIT 8;'
} >"$report"
printf '\n$ sqlite3 -box %s < %s\n' "$database" "$report"
sqlite3 -box "$database" <"$report"

picture=build/demo/report.svg
qerefine path "${question[@]}" --format svg >"$picture"
qerefine path "${question[@]}" --format html >build/demo/report.html
printf '\nThe paths as a picture: %s\nTo choose among them: build/demo/report.html\n' "$picture"
