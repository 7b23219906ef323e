#!/usr/bin/env bash
# Runs clang-tidy (the checks of .clang-tidy) over our own sources in the compilation
# databases of the given build folders: FOLDER:DIRS, e.g. build:src,tests build-fuzz:fuzz.
# Prints every finding and exits non-zero when there is one.
set -uo pipefail
jobs=${TIDY_JOBS:-$(nproc)}
root=$(cd "$(dirname "$0")/.." && pwd)
log=$(mktemp)
trap 'rm -f "$log"' EXIT
status=0
for part in "$@"; do
  folder=${part%%:*}
  dirs=${part#*:}
  [ -f "$folder/compile_commands.json" ] || { echo "$folder: no compile_commands.json (configure it first)"; exit 1; }
  pattern="^$root/(${dirs//,/|})/"
  echo "clang-tidy over ${dirs//,/, } of $folder"
  run-clang-tidy -p "$folder" -j "$jobs" -quiet -header-filter="$pattern.*\\.hpp\$" "$pattern" > "$log" 2>&1 || status=1
  # The findings and their context, without colours, invocations and summary lines.
  sed 's/\x1b\[[0-9;]*m//g' "$log" |
    grep -vE '^(clang-tidy|[0-9]+ (warnings?|errors?) generated|Suppressed [0-9]+ warnings|Use -header-filter|Error while processing)'
  grep -cE '(warning|error): ' "$log" | sed 's/$/ findings/'
done
if [ $status = 0 ]; then echo "clang-tidy: no finding"; else echo "clang-tidy: findings above"; fi
exit $status
