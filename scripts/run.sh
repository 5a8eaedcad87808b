#!/usr/bin/env bash
# Installs what is missing, builds Tessaly and starts it from the build tree. The program reads
# its data from build/share/tessaly/ and keeps your messages and preferences in
# ~/.local/share/tessaly/ (or $TESSALY_HOME), so removing build/ loses nothing of yours.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build --target tessaly
exec build/bin/tessaly "$@"
