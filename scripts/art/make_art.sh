#!/bin/sh
# Builds the skin generator in a scratch folder and writes the default skin and the resource
# pictures into data/, and the desktop icon into dist/icons/.
# Usage: scripts/art/make_art.sh [build folder]
set -e
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=${1:-${TMPDIR:-/tmp}/tessaly-skinart}
cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2
QT_QPA_PLATFORM=offscreen "$build/skinart" "$root/data"
