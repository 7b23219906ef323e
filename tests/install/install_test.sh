#!/usr/bin/env bash
# The installed workshop as an ordinary user meets it: `cmake --install` into a fresh
# prefix, the layout checked, then zevran-cli and the window run as user 65534 (when
# this test runs as root; as the calling user otherwise) with HOME and the XDG folders
# in a folder that user owns, and a Chinese locale.
#   install_test.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$1
source=$2

work=$(mktemp -d /tmp/zevran-install-XXXXXX)
window=
cleanup()
{
    if [[ -n $window ]]; then kill -KILL "$window" 2>/dev/null || true; fi
    rm -rf "$work"
}
trap cleanup EXIT
fail()
{
    echo "install test: $*" >&2
    exit 1
}
chmod 755 "$work"
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >"$work/install.log" || { cat "$work/install.log"; fail "cmake --install failed"; }
touch "$work/installed"

# The layout: programs in bin/ and nothing else there; read-only data in share/zevran/;
# what a desktop looks for in its places. No settings file is installed.
for file in bin/zevran bin/zevran-cli \
    share/zevran/16.dat share/zevran/zevran.xpm \
    share/zevran/language/English.ini share/zevran/language/ChineseS.ini \
    share/zevran/help/English.html share/zevran/help/ChineseS.html \
    share/applications/org.example.ZevranWorkshop.desktop \
    share/metainfo/org.example.ZevranWorkshop.metainfo.xml \
    share/icons/hicolor/scalable/apps/zevran.svg \
    share/icons/hicolor/48x48/apps/zevran.png share/icons/hicolor/96x96/apps/zevran.png \
    share/icons/hicolor/192x192/apps/zevran.png \
    share/man/man1/zevran.1.gz share/man/man1/zevran-cli.1.gz \
    share/bash-completion/completions/zevran-cli \
    share/doc/zevran/copyright share/doc/zevran/changelog.Debian.gz; do
    [[ -f $prefix/$file ]] || fail "missing $file"
done
[[ $(ls "$prefix/bin") == $'zevran\nzevran-cli' ]] || fail "bin/ holds more than the two programs: $(ls "$prefix/bin")"
# zevran-cli reads pictures through a helper of its own, out of the user's PATH.
[[ -x $prefix/libexec/zevran/zevran-picture-reader ]] || fail "missing libexec/zevran/zevran-picture-reader"
[[ -z $(find "$prefix" -name zevran.ini) ]] || fail "a zevran.ini was installed"
for program in zevran zevran-cli; do
    gzip -dc "$prefix/share/man/man1/$program.1.gz" | grep -q '^\.SH NAME' || fail "$program(1) has no NAME section"
    gzip -dc "$prefix/share/man/man1/$program.1.gz" | grep -q '^\.SH FILES' || fail "$program(1) has no FILES section"
done
# The manual pages' FILES sections name the shipped data folder of this very prefix, put in
# as they were installed (a page made at build time could only name the configured one).
files_section() { gzip -dc "$prefix/share/man/man1/$1.1.gz" | sed -n '/^\.SH FILES/,/^\.SH /p'; }
for program in zevran zevran-cli; do
    section=$(files_section "$program")
    [[ $section != *PREFIX* && $section != *@ZEVRAN* ]] || fail "$program(1) FILES keeps a placeholder: $section"
done
grep -qxF ".I $prefix/share/zevran/" <<<"$(files_section zevran)" || fail "zevran(1) FILES does not name $prefix/share/zevran/"
grep -qxF ".I $prefix/share/zevran/16.dat" <<<"$(files_section zevran-cli)" ||
    fail "zevran-cli(1) FILES does not name $prefix/share/zevran/16.dat"
# Debian's documents. The copyright file is machine-readable: its header names the format,
# every Files paragraph has its Copyright and a License whose text a paragraph of its own gives.
doc=$prefix/share/doc/zevran
[[ $(head -1 "$doc/copyright") == "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/" ]] ||
    fail "the copyright file does not start with the format line"
copyright_problems=$(awk 'BEGIN { RS = "" }
    NR == 1 { next }
    /^Files: / {
        if ($0 !~ /(^|\n)Copyright: [^\n]+/) print "no Copyright in: " $0
        if (match($0, /(^|\n)License: [^ \n]+(\n|$)/)) { name = substr($0, RSTART, RLENGTH); gsub(/\n|License: /, "", name); used[name] = 1 }
        else print "no single License name in: " $0
        next }
    /^License: [^ \n]+\n / { name = $2; explained[name] = 1; next }
    { print "neither Files nor License with text: " $0 }
    END { for (name in used) if (!(name in explained)) print "License " name " has no text" }' "$doc/copyright")
[[ -z $copyright_problems ]] || fail "copyright file: $copyright_problems"
# The changelog is compressed by gzip -9n (no name, no time stamp: the same bytes every build)
# and its newest entry is this version, in the Debian changelog format.
[[ $(od -A n -t x1 -N 10 "$doc/changelog.Debian.gz" | tr -d ' \n') == 1f8b0800000000000203 ]] ||
    fail "changelog.Debian.gz is not compressed by gzip -9n: $(od -A n -t x1 -N 10 "$doc/changelog.Debian.gz")"
changelog=$(gzip -dc "$doc/changelog.Debian.gz")
[[ $(head -1 <<<"$changelog") =~ ^zevran\ \(1\.11\)\ [a-z][-a-z]*\;\ urgency=(low|medium|high|emergency|critical)$ ]] ||
    fail "the changelog's first line is not the entry of zevran 1.11: $(head -1 <<<"$changelog")"
[[ $(grep -m1 '^ -- ' <<<"$changelog") =~ ^\ --\ [^\<]+\ \<[^\>]+@[^\>]+\>\ \ [A-Z][a-z]{2},\ [0-9]{2}\ [A-Z][a-z]{2}\ [0-9]{4}\ [0-9]{2}:[0-9]{2}:[0-9]{2}\ [-+][0-9]{4}$ ]] ||
    fail "the changelog entry has no trailer line of name, address and date"
grep -qx 'Exec=zevran %f' "$prefix/share/applications/org.example.ZevranWorkshop.desktop" || fail "the entry does not open %f"
[[ $("$prefix/bin/zevran-cli" --version) == "zevran-cli (Zevran Handset Workshop) 1.11" ]] || fail "zevran-cli --version"
[[ $("$prefix/bin/zevran" --version) == "zevran 1.11" ]] || fail "zevran --version"

# The user and their folders.
user=$work/user
mkdir -p "$user/home" "$user/config" "$user/data" "$user/cache" "$user/run" "$user/demo"
chmod 700 "$user/run"
as_user=()
if [[ $(id -u) -eq 0 ]]; then
    chown -R 65534:65534 "$user"
    as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups --)
fi
environment=(env -i PATH=/usr/bin:/bin HOME="$user/home" XDG_CONFIG_HOME="$user/config" XDG_DATA_HOME="$user/data"
             XDG_CACHE_HOME="$user/cache" XDG_RUNTIME_DIR="$user/run" LANG=zh_CN.UTF-8 QT_QPA_PLATFORM=offscreen)
for name in ASAN_OPTIONS UBSAN_OPTIONS LSAN_OPTIONS; do
    if [[ -n ${!name:-} ]]; then environment+=("$name=${!name}"); fi
done
run_as_user() { "${as_user[@]}" "${environment[@]}" "$@"; }

# zevran-cli finds 16.dat in share/zevran and the user's settings; it writes as the user.
run_as_user "$prefix/bin/zevran-cli" make-demo "$user/demo" >"$work/demo.log" || fail "make-demo as the user: $(cat "$work/demo.log")"
[[ $(run_as_user "$prefix/bin/zevran-cli" info "$user/demo/demo.bin" | head -1) == "kind: bin" ]] || fail "zevran-cli info"
# A picture exported and imported again: the installed zevran-cli finds its picture reader.
run_as_user "$prefix/bin/zevran-cli" picture "$user/demo/demo.bin" "$user/demo/demo-pictures.txt" 001 -o "$user/demo/p.bmp" \
    >"$work/picture.log" 2>&1 || fail "picture as the user: $(cat "$work/picture.log")"
run_as_user "$prefix/bin/zevran-cli" import-picture "$user/demo/demo.bin" "$user/demo/demo-pictures.txt" 001 \
    --from "$user/demo/p.bmp" -o "$user/demo/p.s3" >"$work/import.log" 2>&1 || fail "import-picture as the user: $(cat "$work/import.log")"
[[ -s $user/demo/p.s3 ]] || fail "import-picture wrote no patch"

# The window stays up; its first start names the locale's language in the user's settings.
# Started directly, not through the function, so $! is the window's own process.
"${as_user[@]}" "${environment[@]}" "$prefix/bin/zevran" >"$work/window.log" 2>&1 &
window=$!
for _ in $(seq 600); do
    [[ -S $user/run/zevran/zevran.socket ]] && break
    kill -0 "$window" 2>/dev/null || fail "the window ended at once: $(cat "$work/window.log")"
    sleep 0.1
done
[[ -S $user/run/zevran/zevran.socket ]] || fail "the window never listened for a second start"
kill -0 "$window" 2>/dev/null || fail "the window did not stay up"
settings=$user/config/zevran/zevran.ini
grep -q $'^Language=ChineseS.ini\r$' "$settings" || fail "the user's settings do not name ChineseS.ini: $(cat "$settings")"

# A second start hands its file over and ends with status 0; the first opens it.
timeout 120 "${as_user[@]}" "${environment[@]}" "$prefix/bin/zevran" "$user/demo/demo.bin" || fail "the second start ended with $?"
kill -0 "$window" 2>/dev/null || fail "the first window ended at the second start"
kill -TERM "$window"
status=0
wait "$window" || status=$?
window=
[[ $status -eq 0 ]] || fail "the window ended with $status on SIGTERM: $(cat "$work/window.log")"

# Its settings landed in the user's config folder: the opened file's folder, the home
# folder for every folder still empty, and the language of the locale.
grep -q $'^Mobile File Path='"$user/demo"$'\r$' "$settings" || fail "the opened file's folder is not remembered: $(cat "$settings")"
grep -q $'^Ring Save Path='"$user/home"$'\r$' "$settings" || fail "an empty folder is not the home folder: $(cat "$settings")"
grep -q $'^Language=ChineseS.ini\r$' "$settings" || fail "the language was not kept"
# The shipped files were read, never written: nothing under the prefix changed, and no
# language file was made for the user.
changed=$(find "$prefix" -newer "$work/installed" -print)
[[ -z $changed ]] || fail "the installed files changed: $changed"
cmp -s "$prefix/share/zevran/language/ChineseS.ini" "$source/data/language/ChineseS.ini" || fail "ChineseS.ini was written"
[[ ! -e $user/data/zevran/language ]] || fail "a user language file was made: $(ls -R "$user/data")"
echo "install test: passed"
