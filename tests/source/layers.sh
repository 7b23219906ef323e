#!/bin/bash
# The layers of the source tree: the logic folders are plain C++ (the one reader of
# picture files through QImage aside), include nothing of the window, and every
# source file stays short enough to read.
set -u
cd "$1"
status=0
logic_files=$(find src/image src/tones src/strings src/pictures src/bytes -path '*/ui' -prune -o \
                   -type f \( -name '*.cpp' -o -name '*.hpp' -o -name '*.inc' \) -print | sort)
for file in $logic_files; do
  if [ "$file" != src/pictures/picture_file.cpp ] && grep -qE '^#include <Q' "$file"; then
    echo "$file: a logic file includes a Qt header"; status=1
  fi
  if grep -qE '^#include "(window|app)/|^#include "[a-z]+/ui/' "$file"; then
    echo "$file: a logic file includes window code"; status=1
  fi
done
for file in $(find src -type f \( -name '*.cpp' -o -name '*.hpp' \) | sort); do
  lines=$(wc -l < "$file")
  if [ "$lines" -gt 500 ]; then
    echo "$file: $lines lines (at most 500)"; status=1
  fi
done
[ $status = 0 ] && echo "$(echo "$logic_files" | wc -l) logic files checked"
exit $status
