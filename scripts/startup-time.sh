#!/usr/bin/env bash
# Times Tessaly from process start to its main window shown, splash off, under a virtual X
# display, with hyperfine. The home is fresh but for a preferences file that turns the splash
# off; the program finds its data in the build tree's share/tessaly/.
# Usage: scripts/startup-time.sh [build folder]   (a Release build, e.g. build-rel)
set -euo pipefail
cd "$(dirname "$0")/.."
bin=$(realpath "${1:-build}/bin")
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
command -v hyperfine >/dev/null || { echo "hyperfine is not installed (apt-get install hyperfine)"; exit 1; }
cat >"$home/tessaly.xml" <<XML
<?xml version="1.0" encoding="utf-8"?>
<APPLICATIONS><APPLICATION name="tessaly"><SECTIONS><SECTION name="preferences"><KEY name="Initialized">1</KEY><KEY name="ShowSplash">0</KEY></SECTION></SECTIONS></APPLICATION></APPLICATIONS>
XML
TESSALY_HOME="$home" TESSALY_QUIT_WHEN_SHOWN=1 xvfb-run -a -s "-screen 0 1024x768x24" \
  hyperfine -N --warmup 3 --runs 30 --export-json "$home/result.json" "$bin/tessaly"
python3 -c "import json,sys; r=json.load(open(sys.argv[1]))['results'][0]; print('median %.1f ms, mean %.1f ms' % (r['median']*1e3, r['mean']*1e3))" "$home/result.json"
