#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# without_opengl.sh PROGRAM ARGS...: runs PROGRAM on its own display without OpenGL.
set -euo pipefail

coproc server { exec Xvfb -displayfd 1 -screen 0 640x480x24 -nolisten tcp -extension GLX 2>/dev/null; }
# shellcheck disable=SC2154 # the coprocess sets it
trap 'kill $server_PID 2>/dev/null' EXIT
read -r number <&"${server[0]}" || { echo "Xvfb does not start" >&2; exit 1; }
status=0
DISPLAY=:$number "$@" || status=$?
exit $status
