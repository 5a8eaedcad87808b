#!/usr/bin/env bash
# Takes the screenshots in docs/screenshots/ under a virtual X display. Needs xvfb and
# ImageMagick's import (apt-get install imagemagick).
#
#   main-window-en.png, main-window-de.png  the program of the build tree, in each shipped
#                                           language (a preferences file that names only the
#                                           language; the program adds the rest itself)
#   installed-fresh-home-en.png             the program installed into a temporary prefix and
#                                           started with an empty HOME, splash and all
#
# Usage: scripts/screenshots.sh [build folder]
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "${1:-build}")
out=docs/screenshots
mkdir -p "$out"
command -v import >/dev/null || { echo "ImageMagick's import is missing (apt-get install imagemagick)"; exit 1; }

# Runs a program under a virtual display and a session bus of its own (the phone transport
# starts on it) with the environment given, waits, and saves the main window's corner of the
# screen. Arguments: program, picture, seconds, then VAR=value pairs.
shoot() {
  local program=$1 picture=$2 seconds=$3
  shift 3
  env -u TESSALY_HOME -u XDG_DATA_HOME "$@" dbus-run-session -- xvfb-run -a -s "-screen 0 1024x768x24" bash -c "
    '$program' & pid=\$!
    sleep $seconds
    import -window root -crop 886x488+0+0 '$out/$picture'
    kill \$pid" 2>/dev/null
}

# A home whose preferences name only the language, with the splash off.
language_home() {
  local home
  home=$(mktemp -d)
  mkdir -p "$home/.local/share/tessaly"
  cat >"$home/.local/share/tessaly/tessaly.xml" <<XML
<?xml version="1.0" encoding="utf-8"?>
<APPLICATIONS><APPLICATION name="tessaly"><SECTIONS><SECTION name="preferences"><KEY name="Language">$1</KEY><KEY name="Initialized">1</KEY><KEY name="ShowSplash">0</KEY></SECTION></SECTIONS></APPLICATION></APPLICATIONS>
XML
  echo "$home"
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for lang in en-us:en de-de:de; do
  home=$(language_home "${lang%%:*}")
  shoot "$build/bin/tessaly" "main-window-${lang##*:}.png" 3 HOME="$home"
  rm -rf "$home"
done

cmake --install "$build" --prefix "$work/prefix" >/dev/null
mkdir "$work/home"
shoot "$work/prefix/bin/tessaly" installed-fresh-home-en.png 12 HOME="$work/home" LANG=C.UTF-8
echo "wrote $out/main-window-en.png $out/main-window-de.png $out/installed-fresh-home-en.png"
