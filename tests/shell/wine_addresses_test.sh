#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# wine_addresses_test.sh WINE_ENV: programs under Wine, and those that they start, have their heap at a fixed place, since
# Wine does not start where a random one collides with its own. Where that is not allowed, they start nonetheless.
set -euo pipefail

readonly fixed_addresses=$((0x40000)) # ADDR_NO_RANDOMIZE in sys/personality.h
export ZRTHUMB_TEST_PROGRAM=wine-addresses-$$

# The test's programs: they have its variable.
programs() {
    local environment comm
    for environment in /proc/[0-9]*/environ; do
        read -r comm 2>/dev/null <"${environment%environ}comm" || continue
        if [[ $comm == cmd* ]] && grep -qzFx "ZRTHUMB_TEST_PROGRAM=$ZRTHUMB_TEST_PROGRAM" "$environment" 2>/dev/null; then
            echo "${environment%/environ}"
        fi
    done
}

# The outer program waits for the inner one, which answers and then waits for input.
coproc outer { exec "$1" cmd /c cmd /q /k echo ready; }
# shellcheck disable=SC2154 # the coprocess sets it
outer_pid=$outer_PID
while read -r answer <&"${outer[0]}" && [[ $answer != ready* ]]; do :; done
mapfile -t folders < <(programs)
personalities=()
for folder in "${folders[@]}"; do personalities+=("$(<"$folder/personality")"); done
echo exit >&"${outer[1]}"
wait "$outer_pid"

(( ${#personalities[@]} == 2 )) || { echo "${#personalities[@]} programs found" >&2; exit 1; }
setarch -R true || exit 0
for personality in "${personalities[@]}"; do
    (( 16#$personality & fixed_addresses )) || { echo "addresses are random: personality $personality" >&2; exit 1; }
done
