#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_icon.sh MAKE_ICON ICON: the committed ICON is what MAKE_ICON draws.
set -euo pipefail
drawn=$(mktemp)
trap 'rm -f "$drawn"' EXIT
"$1" "$drawn"
cmp "$drawn" "$2"
