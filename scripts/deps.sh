#!/usr/bin/env bash
# Installs the Debian 12 packages Tessaly needs to build, run and test, where they are missing.
set -euo pipefail

packages=(
  # build
  cmake ninja-build g++ pkg-config clang-format
  qt6-base-dev libpugixml-dev libfreeimage-dev libjpeg62-turbo-dev libgif-dev
  # sound: devices, sound files, MIDI with a General MIDI soundfont
  libsdl2-dev libsndfile1-dev libfluidsynth-dev timgm6mb-soundfont
  # publishing: AMR-NB, resampling, tar
  libopencore-amrnb-dev libsoxr-dev libarchive-dev
  # tests and benchmarks
  googletest libgtest-dev libgmock-dev libbenchmark-dev python3
  giflib-tools libjpeg-turbo-progs
  # independent checks of sound, packages and the session bus of the phone transports
  ffmpeg sox libsox-fmt-all dbus-daemon dbus python3-dbusmock
  # checking the installed desktop entry
  desktop-file-utils
  # looking at the program under a virtual display
  xvfb xauth xdotool
  # fonts so that the window draws real text
  fonts-dejavu-core
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
