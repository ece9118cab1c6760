#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# farm_test.sh BUILD CASE: the commands of docs/scale.md, as they stand there, make all pictures with the programs of the
# folder BUILD. Only the pieces are smaller. CASE is one of these:
#   local      on this machine; what failed is found, and made in a second run once that is possible
#   hosts      on two hosts over ssh
#   lost_host  one of them dies with half of a piece: the other one goes on; the only one dies: the next run goes on
#   transfer   on two hosts that fetch the files from a store
# Hosts are ssh servers on the loopback address, which end with the test.
set -euo pipefail
# All of it is bounded in time.
[ "${ZRTHUMB_FARM:-}" ] || ZRTHUMB_FARM=1 exec timeout --kill-after=20 500 "$0" "$@"
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
build=$(realpath "$1") name=$2
page=$here/../../docs/scale.md
declare -A sshd_of=()
background=
# shellcheck source=/dev/null
source "$here/hosts.sh"

work=$(mktemp -d)
chmod 755 "$work"
cleanup() {
    local pid
    for pid in $background "${sshd_of[@]}"; do kill_tree "$pid"; done
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 143' HUP INT TERM

complain() {
    echo "$name: $*" >&2
    exit 1
}

# Settings of the user's own do not count, neither here nor on the hosts.
make_surroundings() {
    mkdir -p "$work"/{bin,home/.parallel,ssh,tmp,models,references}
    touch "$work/home/.parallel/will-cite"
    # Tells how often it is run.
    printf '#!/bin/sh\necho >>%q\nexec %q "$@"\n' "$work/calls" "$build/zrthumb" >"$work/bin/zrthumb"
    chmod 755 "$work/bin/zrthumb"
    unset "${!PARALLEL@}" "${!RSYNC@}"
    export HOME=$work/home TMPDIR=$work/tmp PATH=$work/bin:$PATH
    export MODELS="$work/models of all"
}

# Files of all formats, some that are damaged, and names of all kinds; and a picture of each, made one by one.
make_models() {
    local sample copy content
    "$build/make-samples" "$work/models" >"$work/log"
    for sample in "$work/models"/*; do
        for copy in 1 2 3 4 5 6 7 8; do install -D -m 644 "$sample" "$MODELS/folder $copy/$copy ${sample##*/}"; done
        content=$(sha256sum "$sample")
        "$build/zrthumb" --no-cache --renderer software -s 256 -o "$work/references/${content%% *}.png" "$sample" >"$work/log"
    done
    sample=$work/models/gear.stl
    cp "$sample" "$MODELS/away.stl"
    cp "$sample" "$MODELS/"$'new\nline.STL'
    cp "$sample" "$MODELS/"$'\xff is no text.stl'
    cp "$sample" "$MODELS/ O'Brien's \"schönes\" \$Teil {} \\ -o.stl"
    head -c 1000 "$sample" >"$MODELS/folder 3/cut short.stl"
    : >"$MODELS/folder 4/empty.gf"
    echo "no such thing" >"$MODELS/folder 4/damaged.vrx"
}

# begin_run NAME: with folders of its own.
begin_run() {
    export PICTURES="$work/$1/pictures of all" RUN=$work/$1/run
    rm -f "$work/calls"
    run_block list
    run_block job
}

# run_block NAME: the commands of the page, in this shell.
run_block() {
    local commands
    commands=$(awk -v "name=<!-- run: $1 -->" '$0 == name { here = 1; next } here && /^(<!--|[^ ])/ { exit } here' "$page" |
        sed 's/-l 1000 /-l 8 /')
    [ "$commands" ] || complain "there are no commands $1"
    eval "$commands"
}

# run_all NAME: the same, which does all pieces.
run_all() {
    run_block "$1" || complain "status $?: $(cat "$RUN/jobs" "$RUN"/results/*.err)"
}

check_pictures() {
    python3 "$here/check_run.py" "$MODELS" "$work/references" "$PICTURES" "$RUN/results" "$RUN/names" || complain "$1"
}

count_calls() { wc -l <"$work/calls"; }
count_pieces() { find "$RUN/pieces" -type f | wc -l; }
# Without those that are just being written, which have hidden names.
list_pictures() { find "$PICTURES" -name '[!.]*.png' -printf '%i %T@ %p\0' | sort -z; }
list_all() { find "$PICTURES" "$RUN" -printf '%i %T@ %s %p\0' | sort -z; }
hosts_of_run() { tail -n +2 "$RUN/jobs" | cut -f 2 | sort -u | paste -sd ' '; }

# Each piece has been done once, although some files have no picture.
check_done_once() {
    check_pictures "the run"
    [ "$(cut -f 1,7,8 "$RUN/jobs" | grep -cP '^\d+\t0\t0$')" -eq "$(count_pieces)" ] || complain "$(cat "$RUN/jobs")"
    [ "$(count_calls)" -eq "$(count_pieces)" ] || complain "$(count_calls) calls for $(count_pieces) pieces"
    [ "$(run_block count | uniq | wc -l)" -eq 1 ] || complain "the numbers of lines and names differ"
}

# check_nothing_to_do COMMANDS: another run does nothing.
check_nothing_to_do() {
    list_all >"$work/before"
    run_all "$1"
    cmp "$work/before" <(list_all) || complain "the run after the last one did something"
}

# expect_kept LIST WHEN: what the list has is there, as it was.
expect_kept() {
    [ -s "$1" ] || complain "no pictures were there $2"
    [ -z "$(comm -z -23 "$1" <(list_pictures) | tr '\0' '\n')" ] || complain "pictures that were there were made again $2"
}

test_local() {
    begin_run first
    mv "$MODELS/away.stl" "$work/"
    run_all local
    check_done_once
    check_nothing_to_do local
    run_block failures >"$work/failures"
    grep -qE '^ +1 noSuchFile$' "$work/failures" || complain "$(cat "$work/failures")"
    grep -qF $'noSuchFile\t./away.stl\t' "$work/failures" || complain "$(cat "$work/failures")"
    list_pictures >"$work/before"
    mv "$work/away.stl" "$MODELS/"
    run_block again
    printf './away.stl\0' | cmp - "$RUN/names" || complain "the list of the second run is another one"
    run_all local
    expect_kept "$work/before" "before the second run"
    RUN=$work/first/run
    cp "$RUN.again/results/000000.jsonl" "$work/line"
    grep -vF '"./away.stl"' "$RUN"/results/*.jsonl -h | cat - "$work/line" >"$work/lines.jsonl"
    mkdir "$work/both" && mv "$work/lines.jsonl" "$work/both/"
    python3 "$here/check_run.py" "$MODELS" "$work/references" "$PICTURES" "$work/both" "$RUN/names" || complain "both runs"
}

test_hosts() {
    begin_run first
    printf 'one\ntwo\n' >hosts
    run_all hosts
    check_done_once
    [ "$(hosts_of_run)" = "one two" ] || complain "only these have worked: $(hosts_of_run)"
    check_nothing_to_do hosts
}

# The host "two" stops in the middle of its next piece and dies. Sets status to that of the run, and $work/half to the list of
# pictures that were there.
run_with_lost_host() {
    local gate=$work/gate
    rm -rf "$gate" && mkdir "$gate" && mkfifo "$gate/reached" && touch "$gate/armed"
    sed -e "s|@GATE@|$gate|g" -e "s|@ZRTHUMB@|$build/zrthumb|g" "$here/stopping_zrthumb.sh" >"$work/bin-two/zrthumb"
    chmod 755 "$work/bin-two/zrthumb"
    run_block hosts &
    background=$!
    timeout 200 cat "$gate/reached" || complain "the host did not get to the middle of a piece"
    list_pictures >"$work/half"
    kill_host two
    status=0
    wait "$background" || status=$?
    background=
}

test_lost_host() {
    begin_run first
    printf 'one\ntwo\n' >hosts
    run_with_lost_host
    [ "$status" -eq 0 ] || complain "the other host did not do the rest"
    expect_kept "$work/half" "when the host died"
    check_pictures "with one host lost"

    begin_run second
    start_host two
    echo two >hosts
    run_with_lost_host
    [ "$status" -ne 0 ] || complain "a run without hosts ended well"
    expect_kept "$work/half" "when the only host died"
    start_host two
    printf 'one\ntwo\n' >hosts
    run_all hosts
    expect_kept "$work/half" "when the run was resumed"
    check_pictures "resumed"
    # Not each of the files that were done has a picture.
    [ "$(cat results/*.jsonl | grep -c '"cached":true')" -ge "$(tr -dc '\0' <"$work/half" | wc -c)" ] ||
        complain "pictures that were there were not left"
    check_nothing_to_do hosts
}

test_transfer() {
    add_host store
    begin_run first
    printf 'one\ntwo\n' >hosts
    export STORE=store:$MODELS KEEP=store:$PICTURES
    mv "$MODELS/away.stl" "$work/"
    run_all transfer
    check_done_once
    [ "$(hosts_of_run)" = "one two" ] || complain "only these have worked: $(hosts_of_run)"
    [ -z "$(find "$work"/home-{one,two} -type f)" ] || complain "left: $(find "$work"/home-{one,two} -type f)"
    check_nothing_to_do transfer
}

make_surroundings
make_models
if [ "$name" != local ]; then
    make_keys
    # Debian's sshd wants this folder, which is made when the system starts it as a service. Other tests may use it.
    [ "$(id -u)" -ne 0 ] || install -d -m 755 /run/sshd
    add_host one
    add_host two
fi
"test_$name"
