#!/bin/bash
# The format of the source tree: every .cpp and .hpp of ours reads as clang-format
# writes it with the root .clang-format. Names each file that differs.
set -u
cd "$1"
format=${CLANG_FORMAT:-clang-format}
if ! command -v "$format" > /dev/null; then
  echo "$format is not installed (make deps installs it)"; exit 1
fi
status=0
count=0
for file in $(find src tests bench fuzz -type f \( -name '*.cpp' -o -name '*.hpp' \) | sort); do
  count=$((count + 1))
  if ! "$format" --style=file --dry-run --Werror "$file" > /dev/null 2>&1; then
    echo "$file: differs from clang-format (run: $format -i $file)"; status=1
  fi
done
[ $status = 0 ] && echo "$count files formatted as .clang-format says"
exit $status
