#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_manual.sh PROGRAM DATA: the manual page of PROGRAM below the folder DATA is sound and has the options of --help, and
# no others.
set -euo pipefail
program=$1 page=$2/man/man1/${1##*/}.1
here=$(dirname "${BASH_SOURCE[0]}")

complaints=$(groff -man -ww -z "$page" 2>&1; mandoc -T lint -W warning "$page" 2>&1 || true)
[ -z "$complaints" ] || { echo "$complaints" >&2; exit 1; }

# The line after .TP names options, before what they take.
options() { sed -n '/^\.SH OPTIONS/,/^\.SH EXIT/p' "$page" | sed -n '/^\.TP/{n;s/\\-/-/g;p}' | grep -oE -- '(^| )--?[a-z0-9][a-z-]*'; }
diff <("$here/options-of" "$program") <(options | tr -d ' ' | LC_ALL=C sort)
