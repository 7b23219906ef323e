#!/usr/bin/env bash
# Times zevran-cli's S-record conversions beside objcopy and srec_cat on one
# synthetic 64 MiB image, checks that all of them produce the same bytes, checks
# that converter memory does not grow with the output, then runs the in-process
# benchmarks. Usage: bench/run.sh BUILD_DIR
# BENCH_RUNS (default 5) sets the runs of zevran-cli and objcopy, BENCH_SLOW_RUNS
# (default 3) those of srec_cat, which takes some seconds a run.
set -euo pipefail
export LC_ALL=C

BUILD=${1:?usage: bench/run.sh BUILD_DIR}
RUNS=${BENCH_RUNS:-5}
SLOW_RUNS=${BENCH_SLOW_RUNS:-3}
BIN=$BUILD/bin
CLI=$BIN/zevran-cli
DATA=$BUILD/bench-data
LOG=$DATA/tools.log

for tool in srec_cat objcopy cmp; do
  command -v "$tool" >/dev/null || { echo "bench: $tool is missing ('make deps' installs it)" >&2; exit 1; }
done
[[ -x /usr/bin/time ]] || { echo "bench: /usr/bin/time is missing (package time)" >&2; exit 1; }
for program in "$CLI" "$BIN/zevran-bench" "$BIN/zevran-bench-data" "$BIN/zevran-bench-changed" "$BIN/zevran-bench-scan"; do
  [[ -x $program ]] || { echo "bench: $program is not built" >&2; exit 1; }
done

mkdir -p "$DATA"
: >"$LOG"
failures=()
targets=()

# --- data: made once, through a temporary name so an interrupted run leaves none ---
if [[ ! -f $DATA/image.bin ]]; then
  echo "Making $DATA/image.bin (64 MiB, fixed seed, 300 planted tones)..."
  "$BIN/zevran-bench-data" "$DATA/image.bin.part"
  mv "$DATA/image.bin.part" "$DATA/image.bin"
fi
if [[ ! -f $DATA/image.s3 ]]; then
  echo "Making $DATA/image.s3 with srec_cat (S3 lines of 16 bytes)..."
  srec_cat "$DATA/image.bin" -binary -o "$DATA/image.s3.part" -motorola -address-length=4 -obs=16 \
    -disable=data-count -header "" 2>>"$LOG"
  mv "$DATA/image.s3.part" "$DATA/image.s3"
fi
# One 16-byte record near the bottom of the address space and one at the handset's
# entry point A0020000: full-address output of 4 KiB against one of 2.5 GiB.
if [[ ! -f $DATA/low.s3 || ! -f $DATA/high.s3 ]]; then
  head -c 16 "$DATA/image.bin" >"$DATA/sixteen.bin"
  for place in low:0x1000 high:0xA0020000; do
    srec_cat "$DATA/sixteen.bin" -binary -offset "${place#*:}" -o "$DATA/${place%%:*}.s3" -motorola \
      -address-length=4 -disable=data-count -header "" 2>>"$LOG"
  done
fi

# --- measuring ---
declare -A MEDIAN BEST CPU PEAK

now_us() { local t=${EPOCHREALTIME//[.,]/}; echo "$t"; }

# time_runs KEY RUNS OUTPUT COMMAND...: COMMAND RUNS times; before each, OUTPUT is
# removed and the disk synced, so no run pays for the writeback of the run before.
# Wall time is what the ratios use; CPU time (user + system) is shown beside it as
# the figure that other work on the machine disturbs less.
time_runs() {
  local key=$1 runs=$2 output=$3
  shift 3
  local times=() cpus=() peak=0 start end mem user system run
  for ((run = 0; run < runs; run++)); do
    rm -f "$output"
    sync
    start=$(now_us)
    if ! /usr/bin/time -f '%M %U %S' -o "$DATA/peak.txt" "$@" >/dev/null 2>>"$LOG"; then
      echo "bench: failed: $* (see $LOG)" >&2
      exit 1
    fi
    end=$(now_us)
    times+=($((end - start)))
    read -r mem user system <"$DATA/peak.txt"
    cpus+=("$(awk -v u="$user" -v s="$system" 'BEGIN { printf "%.0f", (u + s) * 1e6 }')")
    if ((mem > peak)); then peak=$mem; fi
  done
  MEDIAN[$key]=$(printf '%s\n' "${times[@]}" | sort -n | sed -n "$(((runs + 1) / 2))p")
  BEST[$key]=$(printf '%s\n' "${times[@]}" | sort -n | head -n 1)
  CPU[$key]=$(printf '%s\n' "${cpus[@]}" | sort -n | sed -n "$(((runs + 1) / 2))p")
  PEAK[$key]=$peak
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }

# verdict LABEL VALUE OP LIMIT: VERDICT is PASS when VALUE OP LIMIT holds (OP is >=
# or <=), else MISS; the line joins the summary. Called outside any subshell, so
# the summary keeps it.
verdict() {
  VERDICT=$(awk -v v="$2" -v op="$3" -v l="$4" 'BEGIN { ok = op == ">=" ? v >= l : v <= l; print ok ? "PASS" : "MISS" }')
  targets+=("$VERDICT  $1: $2 (target $3 $4)")
}

# table KEY... : one row per tool, ratios against the first key (ours).
table() {
  local ours=$1 key
  printf '  %-10s %9s %9s %9s %9s %9s %9s\n' tool "median s" "best s" "CPU s" "MB/s" "peak MiB" "vs ours"
  for key in "$@"; do
    awk -v name="${key#*:}" -v m="${MEDIAN[$key]}" -v b="${BEST[$key]}" -v c="${CPU[$key]}" \
      -v p="${PEAK[$key]}" -v o="${MEDIAN[$ours]}" -v bytes="$TABLE_BYTES" \
      'BEGIN { printf "  %-10s %9.3f %9.3f %9.2f %9.0f %9.1f %8.2fx\n", name, m / 1e6, b / 1e6, c / 1e6,
               bytes / m, p / 1024, m / o }'
  done
}

# check LABEL COMMAND...: prints LABEL with ok or FAILED; a failure fails the run.
check() {
  local label=$1
  shift
  if "$@" >/dev/null 2>&1; then
    printf '  %-38s ok\n' "$label"
  else
    failures+=("$label")
    printf '  %-38s FAILED\n' "$label"
  fi
}

s3_bytes=$(stat -c %s "$DATA/image.s3")
bin_bytes=$(stat -c %s "$DATA/image.bin")
echo
echo "Runs: $RUNS of zevran-cli and objcopy, $SLOW_RUNS of srec_cat; MB/s = S-record text bytes / median wall time"
echo "Load average before the runs: $(cut -d ' ' -f 1-3 /proc/loadavg) on $(nproc) cores"

# --- S-record to binary ---
echo
echo "S-record to binary: $s3_bytes bytes of S3 text -> $bin_bytes bytes"
time_runs s2b:zevran-cli "$RUNS" "$DATA/out.bin" "$CLI" s3-to-bin "$DATA/image.s3" --data-only -o "$DATA/out.bin"
time_runs s2b:objcopy "$RUNS" "$DATA/out2.bin" objcopy -I srec -O binary "$DATA/image.s3" "$DATA/out2.bin"
time_runs s2b:srec_cat "$SLOW_RUNS" "$DATA/out3.bin" srec_cat "$DATA/image.s3" -motorola -o "$DATA/out3.bin" -binary
TABLE_BYTES=$s3_bytes table s2b:zevran-cli s2b:objcopy s2b:srec_cat
check "zevran-cli output = image.bin" cmp "$DATA/out.bin" "$DATA/image.bin"
check "objcopy output = zevran-cli's" cmp "$DATA/out2.bin" "$DATA/out.bin"
check "srec_cat output = zevran-cli's" cmp "$DATA/out3.bin" "$DATA/out.bin"
s2b_objcopy=$(ratio "${MEDIAN[s2b:objcopy]}" "${MEDIAN[s2b:zevran-cli]}")
s2b_srec=$(ratio "${MEDIAN[s2b:srec_cat]}" "${MEDIAN[s2b:zevran-cli]}")
verdict "s3-to-bin, objcopy time / ours" "$s2b_objcopy" ">=" 6
echo "  objcopy / ours:  $s2b_objcopy  $VERDICT (target >= 6)"
echo "  srec_cat / ours: $s2b_srec"
rm -f "$DATA/out.bin" "$DATA/out2.bin" "$DATA/out3.bin"

# --- the same conversion in the window, and the tone list ---
if [[ -x $BIN/zevran-window-bench ]]; then
  echo
  echo "In the window (offscreen): S-record to binary in slices on the event loop; 5000 tone rows"
  ln -sf image.s3 "$DATA/window.s3"
  # The converter asks before it replaces a file, and the bench answers No: start clean.
  rm -f "$DATA/window.bin"
  QT_QPA_PLATFORM=offscreen "$BIN/zevran-window-bench" "$DATA/window.s3" >"$DATA/window.txt" 2>>"$LOG"
  window_value() { awk -v key="$1" '$1 == key { print $2 }' "$DATA/window.txt"; }
  check "window output = image.bin" cmp "$DATA/window.bin" "$DATA/image.bin"
  window_ratio=$(awk -v w="$(window_value window_s3_to_bin_s)" -v c="${MEDIAN[s2b:zevran-cli]}" 'BEGIN { printf "%.2f", w * 1e6 / c }')
  verdict "window s3-to-bin, window time / zevran-cli's" "$window_ratio" "<=" 1.5
  echo "  window $(window_value window_s3_to_bin_s) s, zevran-cli $(awk -v c="${MEDIAN[s2b:zevran-cli]}" 'BEGIN { printf "%.3f", c / 1e6 }') s: $window_ratio  $VERDICT (target <= 1.5)"
  verdict "window s3-to-bin, longest pause of the event loop, ms" "$(window_value window_longest_pause_ms)" "<=" 100
  echo "  longest pause between event-loop turns: $(window_value window_longest_pause_ms) ms  $VERDICT (target <= 100)"
  verdict "ListView4 filled with 5000 rows, s" "$(window_value listview4_fill_s)" "<=" 0.5
  echo "  ListView4, $(window_value listview4_rows) rows: $(window_value listview4_fill_s) s  $VERDICT (target <= 0.5)"
  rm -f "$DATA/window.bin"
fi

# --- the picture preview: one frame shown, decode and load included ---
if [[ -x $BIN/zevran-window-bench ]]; then
  echo
  echo "Picture preview in the window: 60 frames of 128*160 at 16 bits shown one after another"
  QT_QPA_PLATFORM=offscreen "$BIN/zevran-window-bench" --preview >"$DATA/preview.txt" 2>>"$LOG"
  preview_ms=$(awk '$1 == "preview_frame_ms" { print $2 }' "$DATA/preview.txt")
  verdict "preview of one 128*160 frame, ms (median)" "$preview_ms" "<=" 16
  echo "  median $preview_ms ms, worst $(awk '$1 == "preview_frame_worst_ms" { print $2 }' "$DATA/preview.txt") ms  $VERDICT (target <= 16)"
fi

# --- the picture finder in the window: a 512*1024 view redrawn and painted ---
if [[ -x $BIN/zevran-window-bench ]]; then
  echo
  echo "Picture finder in the window: a 512*1024-pixel view moved a row, redrawn and painted (median of 60)"
  QT_QPA_PLATFORM=offscreen "$BIN/zevran-window-bench" --finder >"$DATA/finder.txt" 2>>"$LOG"
  for depth in 1 4 8 12 16 24; do
    finder_ms=$(awk -v key="finder_redraw_ms_$depth" '$1 == key { print $2 }' "$DATA/finder.txt")
    verdict "finder window redraw of 512*1024 at depth $depth, ms" "$finder_ms" "<=" 16
    printf '  depth %-3s %8s ms  %s (target <= 16)\n' "$depth" "$finder_ms" "$VERDICT"
  done
fi

# --- the byte view over a 256 MiB image: repaint and find ---
if [[ -x $BIN/zevran-bytes-bench ]]; then
  echo
  echo "Byte view over a 256 MiB image: one repaint of 900*700 pixels (median of 40), a find of hex bytes over it"
  QT_QPA_PLATFORM=offscreen "$BIN/zevran-bytes-bench" >"$DATA/bytes.txt" 2>>"$LOG"
  bytes_value() { awk -v key="$1" '$1 == key { print $2 }' "$DATA/bytes.txt"; }
  for place in start middle end; do
    bytes_ms=$(bytes_value "bytes_repaint_ms_$place")
    verdict "byte view repaint at the $place of 256 MiB, ms" "$bytes_ms" "<=" 16
    printf '  repaint at the %-7s %8s ms  %s (target <= 16)\n' "$place" "$bytes_ms" "$VERDICT"
  done
  for way in forward backward; do
    bytes_rate=$(bytes_value "bytes_find_${way}_gbps")
    verdict "byte view find $way over 256 MiB, GB/s" "$bytes_rate" ">=" 3
    printf '  find %-9s %12s GB/s  %s (target >= 3, as FindHexInImage)\n' "$way" "$bytes_rate" "$VERDICT"
  done
fi

# --- the picture scan: the bench image, and an 8 MiB firmware-like image with planted pictures ---
if [[ -x $BIN/zevran-bench-scan ]]; then
  echo
  echo "Picture scan (all depths, both cores): the 64 MiB bench image, and an 8 MiB firmware-like image"
  "$BIN/zevran-bench-scan" >"$DATA/scan.txt" 2>>"$LOG"
  scan_value() { awk -v key="$1" '$1 == key { print $2 }' "$DATA/scan.txt"; }
  verdict "picture scan of the 64 MiB bench image, s (median of 3)" "$(scan_value scan_64mib_s)" "<=" 5
  echo "  64 MiB bench image: $(scan_value scan_64mib_s) s, $(scan_value scan_64mib_candidates) candidates  $VERDICT (target <= 5)"
  verdict "picture scan of an 8 MiB firmware-like image, s (median of 5)" "$(scan_value scan_8mib_s)" "<=" 1
  echo "  8 MiB firmware-like image: $(scan_value scan_8mib_s) s  $VERDICT (target <= 1)"
  verdict "planted pictures of 16x16 or more found with depth and width, %" "$(scan_value scan_found_percent)" ">=" 90
  echo "  found $(scan_value scan_found) of $(scan_value scan_pictures) planted pictures: $(scan_value scan_found_percent) %  $VERDICT (target >= 90)"
  verdict "candidates covering no picture, per MiB" "$(scan_value scan_false_per_mib)" "<=" 2
  echo "  $(scan_value scan_false) candidates cover no picture: $(scan_value scan_false_per_mib) per MiB  $VERDICT (target <= 2)"
fi

# --- the picture scan in the window: the gallery stays responsive while it runs ---
if [[ -x $BIN/zevran-window-bench ]]; then
  echo
  echo "Scan for pictures in the window (offscreen): a 32 MiB firmware-like image, the gallery shown and scrolled"
  QT_QPA_PLATFORM=offscreen "$BIN/zevran-window-bench" --gallery >"$DATA/gallery.txt" 2>>"$LOG"
  gallery_value() { awk -v key="$1" '$1 == key { print $2 }' "$DATA/gallery.txt"; }
  verdict "gallery scan, longest pause of the event loop, ms" "$(gallery_value gallery_longest_pause_ms)" "<=" 100
  echo "  scan $(gallery_value gallery_scan_s) s, $(gallery_value gallery_candidates) candidates; longest pause between event-loop turns: $(gallery_value gallery_longest_pause_ms) ms  $VERDICT (target <= 100)"
fi

# --- load: a 256 MiB phone file opened, scanned and searched in the window ---
if [[ -x $BIN/zevran-window-bench ]]; then
  echo
  echo "Load: a 256 MiB phone file (image.bin four times) opened in the window, tones scanned, a text searched"
  [[ -f $DATA/large.bin ]] || cat "$DATA/image.bin" "$DATA/image.bin" "$DATA/image.bin" "$DATA/image.bin" >"$DATA/large.bin"
  QT_QPA_PLATFORM=offscreen "$BIN/zevran-window-bench" --load "$DATA/large.bin" >"$DATA/load.txt" 2>>"$LOG"
  load_value() { awk -v key="$1" '$1 == key { print $2 }' "$DATA/load.txt"; }
  check "1200 tones listed in the 256 MiB image" test "$(load_value load_tone_rows)" -eq 1200
  check "the text found" test -n "$(load_value load_found_at)"
  over_mib=$(awk -v peak="$(load_value load_peak_kib)" -v bytes="$(load_value load_image_bytes)" \
    'BEGIN { printf "%.1f", (peak * 1024 - bytes) / 1048576 }')
  verdict "256 MiB load, peak memory above the image size, MiB" "$over_mib" "<=" 100
  echo "  open $(load_value load_open_s) s, scan $(load_value load_scan_s) s, search $(load_value load_search_s) s"
  echo "  peak $(awk -v k="$(load_value load_peak_kib)" 'BEGIN { printf "%.0f", k / 1024 }') MiB: the image plus $over_mib MiB  $VERDICT (target <= 100)"
fi

# --- binary to S-record ---
echo
echo "Binary to S-record: $bin_bytes bytes -> S3 text"
time_runs b2s:zevran-cli "$RUNS" "$DATA/x.s3" "$CLI" bin-to-s3 "$DATA/image.bin" -o "$DATA/x.s3"
time_runs b2s:objcopy "$RUNS" "$DATA/y.s3" objcopy -I binary -O srec --srec-forceS3 "$DATA/image.bin" "$DATA/y.s3"
time_runs b2s:srec_cat "$SLOW_RUNS" "$DATA/z.s3" srec_cat "$DATA/image.bin" -binary -o "$DATA/z.s3" -motorola -address-length=4
TABLE_BYTES=$(stat -c %s "$DATA/x.s3") table b2s:zevran-cli b2s:objcopy b2s:srec_cat
# objcopy writes 16-byte S3 lines too: its data lines must be ours, bar the CR.
same_data_lines() { cmp <(grep '^S3' "$1" | tr -d '\r') <(grep '^S3' "$2" | tr -d '\r'); }
check "S3 lines = objcopy's" same_data_lines "$DATA/x.s3" "$DATA/y.s3"
objcopy -I srec -O binary "$DATA/x.s3" "$DATA/back.bin"
check "read back by objcopy = image.bin" cmp "$DATA/back.bin" "$DATA/image.bin"
b2s_objcopy=$(ratio "${MEDIAN[b2s:objcopy]}" "${MEDIAN[b2s:zevran-cli]}")
b2s_srec=$(ratio "${MEDIAN[b2s:srec_cat]}" "${MEDIAN[b2s:zevran-cli]}")
verdict "bin-to-s3, objcopy time / ours" "$b2s_objcopy" ">=" 2
echo "  objcopy / ours:  $b2s_objcopy  $VERDICT (target >= 2)"
echo "  srec_cat / ours: $b2s_srec"
rm -f "$DATA/x.s3" "$DATA/y.s3" "$DATA/z.s3" "$DATA/back.bin"

# --- memory against output size ---
echo
echo "Peak memory of s3-to-bin in full-address mode (output counted through a pipe, not kept)"
declare -A OUT_BYTES
for place in low high; do
  OUT_BYTES[$place]=$(/usr/bin/time -f %M -o "$DATA/peak.txt" "$CLI" s3-to-bin "$DATA/$place.s3" -o /dev/stdout | wc -c)
  PEAK[$place]=$(tail -n 1 "$DATA/peak.txt")
done
printf '  %-28s %14s %10s\n' record "output bytes" "peak MiB"
printf '  %-28s %14s %10.1f\n' "one at 0x00001000" "${OUT_BYTES[low]}" "$(awk -v k="${PEAK[low]}" 'BEGIN { print k / 1024 }')"
printf '  %-28s %14s %10.1f\n' "one at 0xA0020000" "${OUT_BYTES[high]}" "$(awk -v k="${PEAK[high]}" 'BEGIN { print k / 1024 }')"
check "output sizes 0x1010 and 0xA0020010" test "${OUT_BYTES[low]}" -eq 4112 -a "${OUT_BYTES[high]}" -eq 2684485648
# Independent of the output means at most 1 MiB of noise between the two and a few
# MiB in all: the converter's own buffers are 1 MiB in and 1 MiB out.
growth_kib=$((PEAK[high] - PEAK[low]))
verdict "s3-to-bin, peak growth from 4 KiB to 2.5 GiB of output, KiB" "$growth_kib" "<=" 1024
echo "  peak growth from 4 KiB to 2.5 GiB of output: ${growth_kib} KiB  $VERDICT (target <= 1024)"
high_mib=$(awk -v k="${PEAK[high]}" 'BEGIN { printf "%.1f", k / 1024 }')
verdict "s3-to-bin, peak MiB with 2.5 GiB of output" "$high_mib" "<=" 16
echo "  peak with 2.5 GiB of output: ${high_mib} MiB  $VERDICT (target <= 16)"

# --- tone scan against grep ---
echo
echo "Tone scan of image.bin: zevran-cli tones against LC_ALL=C grep -c -a -o MMMD"
time_runs tones:zevran-cli "$RUNS" "$DATA/none" sh -c "\"$CLI\" tones \"$DATA/image.bin\" >\"$DATA/tones.txt\""
time_runs tones:grep "$RUNS" "$DATA/none" sh -c "LC_ALL=C grep -c -a -o MMMD \"$DATA/image.bin\" >\"$DATA/grep.txt\""
TABLE_BYTES=$bin_bytes table tones:zevran-cli tones:grep
tone_rows=$(wc -l <"$DATA/tones.txt")
check "at least the 300 planted tones listed" test "$tone_rows" -ge 300
tones_grep=$(ratio "${MEDIAN[tones:grep]}" "${MEDIAN[tones:zevran-cli]}")
verdict "tones, grep time / ours" "$tones_grep" ">=" 1
echo "  $tone_rows tones listed; grep counts $(cat "$DATA/grep.txt") lines holding MMMD"
echo "  grep / ours: $tones_grep  $VERDICT (target >= 1)"

# --- translation: every string out to a PO file, 10,000 translations back in ---
echo
echo "Translation: export-strings of image.bin (64 MiB) to PO; import-strings of 10,000 CSV entries"
if [[ ! -f $DATA/strings.bin ]]; then
  "$BIN/zevran-bench-data" --strings "$DATA/strings.bin.part"
  mv "$DATA/strings.bin.part" "$DATA/strings.bin"
fi
time_runs export:po "$RUNS" "$DATA/image.po" "$CLI" export-strings "$DATA/image.bin" -o "$DATA/image.po"
"$CLI" export-strings "$DATA/image.bin" -o "$DATA/image.po" >"$DATA/export.txt" 2>>"$LOG"
# The first 10,000 strings of the strings image, each translated as itself.
"$CLI" export-strings "$DATA/strings.bin" -o "$DATA/strings.csv" >/dev/null 2>>"$LOG"
head -n 10001 "$DATA/strings.csv" | awk 'BEGIN { FS = OFS = "," }
  NR == 1 { print; next } { sub(/\r$/, ""); $5 = $4; printf "%s\r\n", $0 }' >"$DATA/same.csv"
check "10,000 entries to import" test "$(($(wc -l <"$DATA/same.csv") - 1))" -eq 10000
time_runs import:csv "$RUNS" "$DATA/same.s3" "$CLI" import-strings "$DATA/strings.bin" "$DATA/same.csv" -o "$DATA/same.s3"
"$CLI" import-strings "$DATA/strings.bin" "$DATA/same.csv" -o "$DATA/same.s3" >/dev/null 2>>"$LOG"
"$CLI" apply-patch "$DATA/strings.bin" "$DATA/same.s3" -o "$DATA/same.bin" 2>>"$LOG"
check "round trip changes no byte" cmp "$DATA/same.bin" "$DATA/strings.bin"
export_s=$(awk -v m="${MEDIAN[export:po]}" 'BEGIN { printf "%.3f", m / 1e6 }')
import_s=$(awk -v m="${MEDIAN[import:csv]}" 'BEGIN { printf "%.3f", m / 1e6 }')
verdict "export-strings of the 64 MiB image, median s" "$export_s" "<=" 1
echo "  export: $(cut -d' ' -f2- "$DATA/export.txt" | tr -d '\n'), median $export_s s  $VERDICT (target <= 1)"
verdict "import-strings of 10,000 entries, median s" "$import_s" "<=" 1
echo "  import of 10,000 entries: median $import_s s  $VERDICT (target <= 1)"
rm -f "$DATA/image.po" "$DATA/same.s3" "$DATA/same.bin"

# --- comparison of two 256 MiB images against cmp ---
echo
echo "Comparison: zevran-cli diff of two 256 MiB images differing in 1000 places, cmp of two equal 256 MiB files"
[[ -f $DATA/large.bin ]] || cat "$DATA/image.bin" "$DATA/image.bin" "$DATA/image.bin" "$DATA/image.bin" >"$DATA/large.bin"
# cmp answers at once for one file named twice: the equal file is a copy.
[[ -f $DATA/large-copy.bin ]] || cp "$DATA/large.bin" "$DATA/large-copy.bin"
if [[ ! -f $DATA/large-changed.bin ]]; then
  "$BIN/zevran-bench-changed" "$DATA/large.bin" "$DATA/large-changed.bin.part" 1000
  mv "$DATA/large-changed.bin.part" "$DATA/large-changed.bin"
fi
time_runs diff:zevran-cli "$RUNS" "$DATA/none" "$CLI" diff "$DATA/large.bin" "$DATA/large-changed.bin"
time_runs diff:cmp "$RUNS" "$DATA/none" cmp "$DATA/large.bin" "$DATA/large-copy.bin"
TABLE_BYTES=$(stat -c %s "$DATA/large.bin") table diff:zevran-cli diff:cmp
"$CLI" diff "$DATA/large.bin" "$DATA/large-changed.bin" -o "$DATA/change.s3" >"$DATA/regions.txt"
check "1000 regions, each of one byte, listed" test "$(wc -l <"$DATA/regions.txt")" -eq 1000 \
  -a "$(awk '$3 != 1' "$DATA/regions.txt" | wc -l)" -eq 0
"$CLI" apply-patch "$DATA/large.bin" "$DATA/change.s3" -o "$DATA/patched.bin"
check "apply-patch of its patch = the changed image" cmp "$DATA/patched.bin" "$DATA/large-changed.bin"
rm -f "$DATA/change.s3" "$DATA/patched.bin"
diff_cmp=$(ratio "${MEDIAN[diff:zevran-cli]}" "${MEDIAN[diff:cmp]}")
verdict "diff of 256 MiB images, our time / cmp's on equal files" "$diff_cmp" "<=" 1.2
echo "  ours / cmp: $diff_cmp  $VERDICT (target <= 1.2)"
# The images are read through windows of a few MiB, so memory does not follow their size.
diff_mib=$(awk -v k="${PEAK[diff:zevran-cli]}" 'BEGIN { printf "%.1f", k / 1024 }')
verdict "diff of two 256 MiB images, peak MiB" "$diff_mib" "<=" 32
echo "  peak memory: $diff_mib MiB  $VERDICT (target <= 32)"

# --- in-process ---
echo
echo "In-process benchmarks (Google Benchmark; bytes_per_second in 2^30 units)"
echo "(Debian's libbenchmark calls itself a DEBUG build: that is its own bookkeeping, not the code timed.)"
"$BIN/zevran-bench" --benchmark_out="$DATA/bench.json" --benchmark_out_format=json
rate_of() {
  awk -v want="\"$1\"," '$1 == "\"name\":" { name = $2 } $1 == "\"bytes_per_second\":" && name == want {
    sub(",", "", $2); print $2 / 1e9 }' "$DATA/bench.json"
}
echo
echo "In-process rates (GB = 10^9 bytes)"
hex_rate=$(printf '%.2f' "$(rate_of BM_FindHexInImage)")
verdict "FindHexInImage, GB/s" "$hex_rate" ">=" 3
printf '  %-36s %8.2f GB/s  %s (target >= 3)\n' "FindHexInImage, every MMMD" "$hex_rate" "$VERDICT"
printf '  %-36s %8.2f GB/s\n' "findBytes, every MMMD" "$(rate_of BM_findBytes)"
printf '  %-36s %8.2f GB/s\n' "appendSRecordLines, 16 MiB" "$(rate_of BM_appendSRecordLines)"
printf '  %-36s %8.2f GB/s\n' "sRecordRegionText, 16 MiB" "$(rate_of BM_sRecordRegionText)"
printf '  %-36s %8.2f GB/s\n' "binaryToSRecord, 16 MiB" "$(rate_of BM_binaryToSRecord)"
# Reading S-records: text in memory handed over as zevran-cli hands over a mapped file;
# the stream figures beside them add the copy out of an istringstream.
read_kernel=$(awk '$1 == "\"name\":" { name = $2 } $1 == "\"label\":" && name ~ /InMemory/ { gsub(/[",]/, "", $2); print $2; exit }' \
  "$DATA/bench.json")
echo "  (S-record lines decoded by the ${read_kernel:-?} block decoder)"
for mode in 0:"data only" 1:"full address" 2:"strict reading"; do
  read_rate=$(printf '%.2f' "$(rate_of "BM_SRecordToBinaryInMemory/mode:${mode%%:*}")")
  verdict "SRecordToBinary, ${mode#*:}, GB/s of text" "$read_rate" ">=" 4
  printf '  %-36s %8.2f GB/s of text  %s (target >= 4; through a stream %.2f)\n' "SRecordToBinary, ${mode#*:}" \
    "$read_rate" "$VERDICT" "$(rate_of "BM_SRecordToBinary/mode:${mode%%:*}")"
done
scan_rate=$(printf '%.2f' "$(rate_of BM_scanTones)")
verdict "scanTones, GB/s" "$scan_rate" ">=" 3
printf '  %-36s %8.2f GB/s  %s (target >= 3)\n' "scanTones, 64 MiB" "$scan_rate" "$VERDICT"
frames_of() {
  awk -v want="\"$1\"," '$1 == "\"name\":" { name = $2 } $1 == "\"frames_per_second\":" && name == want {
    sub(",", "", $2); printf "%.0f", $2 }' "$DATA/bench.json"
}
for depth in 1 4 8 12 16 24; do
  fps=$(frames_of "BM_exportFrames/depth:$depth")
  if ((depth == 16)); then
    verdict "export of 128*160 frames at 16 bits, frames/s" "$fps" ">=" 2000
    printf '  %-36s %8s frames/s  %s (target >= 2000)\n' "export, 128*160 at depth $depth" "$fps" "$VERDICT"
  else
    printf '  %-36s %8s frames/s\n' "export, 128*160 at depth $depth" "$fps"
  fi
done
# The import of the same frames (BMP read back and encoded), beside the export's figure.
if grep -q '"BM_importFrames/depth:16"' "$DATA/bench.json"; then
  for depth in 1 4 8 12 16 24; do
    export_fps=$(frames_of "BM_exportFrames/depth:$depth")
    import_fps=$(frames_of "BM_importFrames/depth:$depth")
    verdict "import of 128*160 frames at depth $depth, frames/s, against the export's" "$import_fps" ">=" "$export_fps"
    printf '  %-36s %8s frames/s  %s (export %s)\n' "import, 128*160 at depth $depth" "$import_fps" "$VERDICT" "$export_fps"
  done
fi

# The picture finder: one redraw of a 512*1024-pixel view (wall and CPU time, ms).
time_of() {
  awk -v want="\"$1\"," -v field="\"$2\":" '$1 == "\"name\":" { name = $2 } $1 == field && name == want {
    sub(",", "", $2); printf "%.2f", $2 }' "$DATA/bench.json"
}
for depth in 1 4 8 12 16 24; do
  redraw_ms=$(time_of "BM_finderRedraw/depth:$depth" real_time)
  verdict "finder redraw of 512*1024 pixels at depth $depth, ms" "$redraw_ms" "<=" 16
  printf '  %-36s %8s ms (CPU %s ms)  %s (target <= 16)\n' "finder redraw, 512*1024 at depth $depth" "$redraw_ms" \
    "$(time_of "BM_finderRedraw/depth:$depth" cpu_time)" "$VERDICT"
done
printf '  %-36s %8s ms\n' "finder width guess, widths 8 to 320" "$(time_of BM_guessWidth real_time)"

echo
echo "Targets"
printf '  %s\n' "${targets[@]}"
if ((${#failures[@]})); then
  echo "Output checks FAILED:"
  printf '  %s\n' "${failures[@]}"
  exit 1
fi
echo "Output checks: all identical"
