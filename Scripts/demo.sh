#!/usr/bin/env bash
# Sets up this machine, builds the tool, makes the retail database, and answers a real report: goods
# that came back, by the store that took them and the category of the product.
# Usage: Scripts/demo.sh [--no-setup | --built FOLDER]
#   --no-setup      install nothing
#   --built FOLDER  install and build nothing: take qerefine from the PATH, write to FOLDER
set -euo pipefail
cd "$(dirname "$0")/.."

folder=build/demo
buildTool() {
  mkdir -p "$folder"
  echo "Building (the messages go to $folder/build.log) ..."
  { cmake --preset release && cmake --build --preset release --target qerefine; } \
    >"$folder/build.log" 2>&1 || { cat "$folder/build.log"; exit 1; }
  PATH="$PWD/build/release/bin:$PATH"
}
case ${1:-} in
  --built) folder=${2:?--built needs a folder} ;;
  --no-setup) buildTool ;;
  *) Scripts/setup.sh; buildTool ;;
esac

retail=Examples/retail
database=$folder/retail.db
rm -f "$database"
cat "$retail/warehouse.sql" "$retail/rows.sql" | sqlite3 "$database"

show() {
  printf '\n$ %s\n' "$*"
  "$@"
}

question=("$retail/model.json" returns store category --straightest)
show qerefine path "${question[@]}"
show qerefine path "${question[@]}" --format sql

report=$folder/report.sql
{
  echo 'SELECT store_name, category_name, sum(returned_quantity) AS quantity'
  qerefine path "${question[@]}" --format sql
  echo 'GROUP BY store_name, category_name'
  echo 'ORDER BY quantity DESC, store_name, category_name LIMIT 8;'
} >"$report"
printf '\n$ sqlite3 -box %s < %s\n' "$database" "$report"
sqlite3 -box "$database" <"$report"

picture=$folder/report.svg
qerefine path "${question[@]}" --format svg >"$picture"
qerefine path "${question[@]}" --format html >"$folder/report.html"
printf '\nThe paths as a picture: %s\nTo choose among them: %s\n' "$picture" "$folder/report.html"
