#!/usr/bin/env bash
# Times Tessaly from process start to its main window shown, splash off, under a virtual X
# display, with hyperfine. Usage: scripts/startup-time.sh [build folder]
set -euo pipefail
cd "$(dirname "$0")/.."
bin=$(realpath "${1:-build}/bin")
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
cp -r "$bin/tessaly.xml" "$bin/language" "$bin/skin" "$bin/resources" "$home/"
sed -i -e 's|<KEY name="ShowSplash">[^<]*</KEY>|<KEY name="ShowSplash">0</KEY>|' \
       -e 's|<KEY name="Initialized">[^<]*</KEY>|<KEY name="Initialized">1</KEY>|' "$home/tessaly.xml"
command -v hyperfine >/dev/null || { echo "hyperfine is not installed (apt-get install hyperfine)"; exit 1; }
TESSALY_HOME="$home" TESSALY_QUIT_WHEN_SHOWN=1 xvfb-run -a -s "-screen 0 1024x768x24" \
  hyperfine --warmup 3 --runs 20 --export-markdown "$home/result.md" "$bin/tessaly"
cat "$home/result.md"
