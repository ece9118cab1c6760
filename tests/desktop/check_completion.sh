#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_completion.sh SHELL PROGRAM DATA SUFFIX...: SHELL, with its file for PROGRAM below the folder DATA, completes the
# options of --help, the values that they take, files with the suffixes and folders.
set -uo pipefail
shell=$1 program=$2 name=${2##*/} data=$3
shift 3
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/inner"
for suffix in "$@" png txt; do touch "$folder/a.$suffix"; done
touch "$folder/OTHER.${1^^}"
readable=$(printf 'a.%s\n' "$@"; echo "OTHER.${1^^}"; echo inner)
# Fish does not know which argument is meant, and offers what either of the two can be.
[[ $shell-$name != fish-zrthumbnailer ]] || readable+=$'\na.png'
cd "$folder" || exit 1

# complete_SHELL WORD...: what the last word can become, one a line.
complete_bash() {
    # shellcheck disable=SC1090,SC1091
    source /usr/share/bash-completion/bash_completion && source "$data/bash-completion/completions/$name"
    COMP_WORDS=("$name" "$@")
    COMP_CWORD=$#
    COMP_LINE="${COMP_WORDS[*]}"
    COMP_POINT=${#COMP_LINE}
    # Without a command line there is nothing that compopt could change.
    "_$name" "$name" "${COMP_WORDS[-1]}" "${COMP_WORDS[-2]}" 2> >(grep -v compopt >&2)
    printf '%s\n' "${COMPREPLY[@]}"
}

complete_zsh() {
    timeout 60 zsh -f "$here/complete_line.zsh" "$data/zsh/vendor-completions" "$name $*"
}

# After a tab come descriptions, after folders a slash.
complete_fish() {
    HOME=$folder fish --no-config -c 'source $argv[1]; complete -C "$argv[2]"' \
        "$data/fish/vendor_completions.d/$name.fish" "$name $*" | cut -f 1 | sed 's|/$||'
}

failed=0
# expect WHAT EXPECTED WORD...
expect() {
    local what=$1 expected=$2
    shift 2
    diff <(LC_ALL=C sort <<<"$expected") <("complete_$shell" "$@" | LC_ALL=C sort -u) || { echo "$what" >&2; failed=1; }
}

expect "the options are those of --help" "$("$here/options-of" "$program")" -
expect "files of all formats and folders" "$readable" ''
expect "the begun one of them" inner inn
case $name in
zrthumb)
    expect "the renderers" $'auto\nopengl\nsoftware' --renderer ''
    expect "the ways to read OBJ files" $'server\nstandard' --obj ''
    expect "more files after a file" "$readable" "a.$1" ''
    expect "a picture" a.png --sheet a.pn
    expect "folders for pictures" inner --output-dir in
    expect "any file with names" a.txt --files-from a.tx
    expect "numbers of processes" $'0\n1\n2\n4\n8' --jobs ''
    ;;
zrthumbnailer)
    expect "sizes" $'1024\n128\n256\n512' --size ''
    expect "a picture after a file" a.png -s 512 "a.$1" a.pn
    ;;
esac
exit $failed
