#!/usr/bin/env bash
# The bash completion of zevran-cli offers its commands, each command's options and
# file names: `completion_test.sh ZEVRAN_CLI COMPLETION_FILE`.
set -uo pipefail
cli=$1
source "$2"
failures=0

# complete WORD... : the completions of the last word after `zevran-cli WORD...`.
complete_words()
{
    COMP_WORDS=("$cli" "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _zevran_cli
    printf '%s\n' "${COMPREPLY[@]}" | sort
}

expect()
{
    local want=$1
    shift
    local got
    got=$(complete_words "$@")
    if [[ "$got" != "$want" ]]; then
        echo "completion of [$*]: expected"$'\n'"$want"$'\n'"got"$'\n'"$got"
        failures=$((failures + 1))
    fi
}

expect $'export-pictures\nexport-strings\nexport-tones' export-
expect $'tones' --home /tmp ton
expect $'--any-records\n--data-only\n--fill\n--help' s3-to-bin in.s3 --
expect $'--handset-codes\n--help\n--in-place' patch-strings phone.bin plan.txt --
expect $'--help\n-o' apply-patch -
expect $'--help\n--home\n--version' --
expect '' s3-to-bin in.s3 --fill F
expect $'handset' export-strings phone.bin --codes h
expect $'--help\n--in-place\n--partial\n--report' import-strings phone.bin zh.po --
# Every command of the help is offered for an empty word.
commands=$("$cli" --help | sed -n 's/^  \([a-z0-9][-a-z0-9]*\)\( .*\)\{0,1\}$/\1/p' | sort)
[[ $(wc -l <<<"$commands") -ge 10 ]] || { echo "too few commands in --help: $commands"; failures=$((failures + 1)); }
expect "$commands" ''

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
touch "$work/demo.bin" "$work/demo.asf"
mkdir "$work/tones"
expect "$work/demo.asf"$'\n'"$work/demo.bin" info "$work/demo."
expect "$work/tones" --home "$work/t"

exit $((failures > 0))
