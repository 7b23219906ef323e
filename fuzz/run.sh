#!/usr/bin/env bash
# Runs every fuzz target built in BUILD_DIR for SECONDS each, starting from a copy of
# its seed corpus under BUILD_DIR so new entries stay out of the source tree.
# Exits non-zero when a target crashes; the reproducer is left in BUILD_DIR/fuzz/.
set -uo pipefail

build_dir=${1:?usage: fuzz/run.sh BUILD_DIR [SECONDS]}
seconds=${2:-60}
source_dir=$(cd "$(dirname "$0")" && pwd)
targets=(srecord_fuzz srecord_roundtrip_fuzz apply_patch_fuzz profile_fuzz tone_table_fuzz tone_check_fuzz picture_table_fuzz
         picture_finder_fuzz picture_scan_fuzz picture_encode_fuzz image_search_fuzz image_diff_fuzz translation_po_fuzz
         translation_xliff_fuzz translation_csv_fuzz)

work=$(cd "$build_dir" && pwd)/fuzz
failed=()
summary=()

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}

for target in "${targets[@]}"; do
  binary=$work/$target
  corpus_name=${target%_fuzz}
  if [[ ! -x $binary ]]; then
    echo "fuzz/run.sh: $binary is missing; build $build_dir with -DZEVRAN_FUZZ=ON first" >&2
    exit 2
  fi
  corpus=$work/corpus/$corpus_name
  mkdir -p "$corpus" "$work/artifacts/$target"
  cp -n "$source_dir/corpus/$corpus_name/"* "$corpus/" 2>/dev/null || true
  log=$work/$target.log
  echo "== $target: ${seconds}s from $corpus"
  (cd "$work" && "$binary" "$corpus" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 \
      -artifact_prefix="$work/artifacts/$target/" -print_final_stats=1) >"$log" 2>&1
  status=$?
  done_line=$(grep -E '^Done [0-9]+ runs in [0-9]+ second' "$log" | tail -n 1)
  if [[ $status -ne 0 || -z $done_line ]]; then
    failed+=("$target")
    summary+=("$target: FAILED (exit $status), see $log")
    tail -n 60 "$log"
  else
    runs=$(sed -E 's/^Done ([0-9]+) runs in ([0-9]+) second.*/\1/' <<<"$done_line")
    secs=$(sed -E 's/^Done ([0-9]+) runs in ([0-9]+) second.*/\2/' <<<"$done_line")
    summary+=("$target: $done_line, $((runs / (secs > 0 ? secs : 1))) inputs a second")
  fi
done

echo
echo "== fuzz summary"
printf '%s\n' "${summary[@]}"
if ((${#failed[@]})); then
  echo "crashes in: ${failed[*]} (reproducers in $work/artifacts/)" >&2
  exit 1
fi
