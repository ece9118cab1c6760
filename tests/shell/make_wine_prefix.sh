#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes a new Wine prefix WINEPREFIX, with an empty registry and an empty profile.
set -euo pipefail
: "${WINEPREFIX:?names the prefix to make}"
if [[ -d $WINEPREFIX ]]; then
    wineserver -k || true
    wineserver -w
    rm -rf "$WINEPREFIX"
fi
exec "$(dirname "${BASH_SOURCE[0]}")/../../tools/wine-env" --prefix
