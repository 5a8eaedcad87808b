#!/usr/bin/env bash
# Starts the built program under a virtual X display in each shipped language and saves a
# screenshot of the main window to docs/screenshots/. Needs xvfb and ImageMagick's import.
# Usage: scripts/screenshots.sh [build folder]
set -euo pipefail
cd "$(dirname "$0")/.."
bin=${1:-build}/bin
out=docs/screenshots
mkdir -p "$out"

shoot() { # language, file, splash (0/1), seconds to wait
  local home
  home=$(mktemp -d)
  cp -r "$bin/tessaly.xml" "$bin/language" "$bin/skin" "$bin/resources" "$home/"
  sed -i -e "s|<KEY name=\"Language\">[^<]*</KEY>|<KEY name=\"Language\">$1</KEY>|" \
         -e "s|<KEY name=\"Initialized\">[^<]*</KEY>|<KEY name=\"Initialized\">1</KEY>|" \
         -e "s|<KEY name=\"ShowSplash\">[^<]*</KEY>|<KEY name=\"ShowSplash\">$3</KEY>|" "$home/tessaly.xml"
  TESSALY_HOME="$home" xvfb-run -a -s "-screen 0 1024x768x24" bash -c "
    '$bin/tessaly' & pid=\$!
    sleep $4
    import -window root -crop 644x488+0+0 '$out/$2'
    kill \$pid" 2>/dev/null
  rm -rf "$home"
}

shoot en-us main-window-en.png 0 3
shoot de-de main-window-de.png 0 3
echo "wrote $out/main-window-en.png $out/main-window-de.png"
