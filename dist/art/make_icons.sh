#!/bin/sh
# Builds the icon generator in a scratch folder and writes dist/icons/tessaly-{48,256}.png.
# Usage: dist/art/make_icons.sh [build folder]
set -e
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-${TMPDIR:-/tmp}/tessaly-iconart}
cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2
QT_QPA_PLATFORM=offscreen "$build/iconart" "$here/../icons"
