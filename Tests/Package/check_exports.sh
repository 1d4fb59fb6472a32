#!/usr/bin/env bash
# Compares the symbols that LIBRARY defines for others with LIST; both ways.
# A line of LIST is "required NAME" or "allowed NAME", NAME as a demangler prints it.
set -euo pipefail
library=$1 list=$2
export LC_ALL=C

defined=$(nm -D --defined-only "$library" | cut -d' ' -f3- | c++filt | sort -u)
required=$(sed -n 's/^required //p' "$list" | sort -u)
listed=$(sed -n 's/^required //p; s/^allowed //p' "$list" | sort -u)

missing=$(comm -13 <(echo "$defined") <(echo "$required"))
unexpected=$(comm -23 <(echo "$defined") <(echo "$listed"))
[ -z "$missing" ] || printf 'missing: %s\n' "$missing"
[ -z "$unexpected" ] || printf 'exported by mistake: %s\n' "$unexpected"
[ -z "$missing$unexpected" ]
echo "$(wc -l <<<"$defined") exported names, all as listed"
