#!/bin/sh
# Makes the sample media of the archive that comes with the program, all drawn or synthesised
# here (no outside material):
#   data/Archive/Backgrounds  160 x 120 backgrounds (BMP, 24-bit, classic header)
#   data/Archive/Pictures     48 x 48 symbols (GIF with a transparent colour)
#   data/Archive/Sounds       short sounds: 8 kHz 16-bit mono WAV, and two small MIDI tunes
#   data/resources/101.png, 302.png   the tile icons of wave sounds and of other sounds
# Needs ImageMagick's convert, sox and python3.
# Usage: scripts/art/make_archive.sh
set -e
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
back="$root/data/Archive/Backgrounds"
pics="$root/data/Archive/Pictures"
sounds="$root/data/Archive/Sounds"
res="$root/data/resources"
mkdir -p "$back" "$pics" "$sounds" "$res"
rm -f "$back"/* "$pics"/* "$sounds"/*

# --- Backgrounds -----------------------------------------------------------------------------
bg() { # name, then convert arguments that draw on a 160 x 120 canvas
  name=$1
  shift
  convert "$@" -strip -type TrueColor "BMP3:$back/$name.bmp"
}
bg "Blue sky" -size 160x120 gradient:'#3d7fd9-#bfe3ff' \
  -fill '#ffffffd0' -draw "ellipse 40,30 22,9 0,360" -draw "ellipse 56,26 16,9 0,360" \
  -draw "ellipse 118,58 26,10 0,360" -draw "ellipse 100,55 15,8 0,360"
bg "Sunset" -size 160x120 gradient:'#ff7a30-#ffd27a' \
  -fill '#fff1b0' -draw "circle 80,86 80,64" \
  -fill '#2a3a78' -draw "rectangle 0,88 160,120" \
  -fill '#ffb36a' -draw "rectangle 40,94 120,96" -draw "rectangle 56,102 104,104"
bg "Night" -size 160x120 gradient:'#0b1030-#283a78' \
  -fill '#fff6c8' -draw "circle 124,28 124,14" -fill '#162050' -draw "circle 118,24 118,12" \
  -fill white -draw "point 20,20" -draw "point 44,12" -draw "point 70,34" -draw "point 92,16" \
  -draw "point 30,60" -draw "point 60,74" -draw "point 100,52" -draw "point 140,70" \
  -draw "point 14,96" -draw "point 80,100" -draw "point 130,104" -draw "point 150,40"
bg "Meadow" -size 160x120 gradient:'#8fd0ff-#dff3ff' \
  -fill '#5cb85c' -draw "ellipse 40,130 110,50 0,360" -fill '#4aa34a' -draw "ellipse 140,132 90,44 0,360" \
  -fill '#ffe14d' -draw "circle 30,26 30,14"
bg "Sea" -size 160x120 gradient:'#9fd8ff-#e8f6ff' \
  -fill '#1f78c8' -draw "rectangle 0,64 160,120" \
  -fill '#4aa0e8' -draw "ellipse 20,70 20,4 0,180" -draw "ellipse 70,84 22,4 0,180" \
  -draw "ellipse 130,76 20,4 0,180" -draw "ellipse 100,102 24,4 0,180" \
  -fill '#f4e1a8' -draw "rectangle 0,110 160,120"
bg "Hearts" -size 160x120 xc:'#ffe0ea' -fill '#ff6f91' \
  -draw "path 'M 30,40 C 30,28 48,28 48,40 C 48,28 66,28 66,40 C 66,52 48,60 48,68 C 48,60 30,52 30,40 Z'" \
  -draw "path 'M 96,64 C 96,52 114,52 114,64 C 114,52 132,52 132,64 C 132,76 114,84 114,92 C 114,84 96,76 96,64 Z'" \
  -fill '#ffa3bb' \
  -draw "path 'M 100,14 C 100,8 110,8 110,14 C 110,8 120,8 120,14 C 120,20 110,24 110,28 C 110,24 100,20 100,14 Z'" \
  -draw "path 'M 20,86 C 20,80 30,80 30,86 C 30,80 40,80 40,86 C 40,92 30,96 30,100 C 30,96 20,92 20,86 Z'"
bg "Confetti" -size 160x120 xc:'#fffaf0' \
  -fill '#e94f4f' -draw "rectangle 12,14 18,20" -draw "rectangle 90,70 96,76" -draw "rectangle 140,20 146,26" \
  -fill '#3fa7e0' -draw "rectangle 40,50 46,56" -draw "rectangle 120,96 126,102" -draw "rectangle 70,18 76,24" \
  -fill '#f5c532' -draw "circle 60,92 60,88" -draw "circle 130,50 130,46" -draw "circle 24,70 24,66" \
  -fill '#6ac46a' -draw "circle 100,30 100,26" -draw "circle 40,104 40,100" -draw "circle 150,80 150,76"
bg "Stripes" -size 160x120 xc:'#fff3c4' -fill '#ffd66b' \
  -draw "polygon 0,0 20,0 0,20" -draw "polygon 0,40 60,-20 80,-20 0,60" -draw "polygon 0,80 100,-20 120,-20 0,100" \
  -draw "polygon 0,120 140,-20 160,-20 20,120" -draw "polygon 40,120 160,0 160,20 60,120" \
  -draw "polygon 80,120 160,40 160,60 100,120" -draw "polygon 120,120 160,80 160,100 140,120"
bg "Checks" -size 160x120 pattern:checkerboard -fill '#8ac6ff' -opaque '#999999' \
  -fill '#e8f4ff' -opaque '#666666' -fill '#e8f4ff' -opaque white -fill '#8ac6ff' -opaque black
bg "Snow" -size 160x120 gradient:'#5d84c4-#cfe0f6' -fill white \
  -draw "ellipse 80,140 120,40 0,360" \
  -draw "circle 20,14 20,12" -draw "circle 50,36 50,34" -draw "circle 84,10 84,8" -draw "circle 120,30 120,28" \
  -draw "circle 146,12 146,10" -draw "circle 30,64 30,62" -draw "circle 70,58 70,56" -draw "circle 110,70 110,68" \
  -draw "circle 150,56 150,54" -draw "circle 10,90 10,88"
bg "Balloons" -size 160x120 gradient:'#bfe8ff-#ffffff' -stroke '#7a7a7a' \
  -draw "line 40,60 48,118" -draw "line 80,48 80,118" -draw "line 120,62 112,118" -stroke none \
  -fill '#ff5a5a' -draw "ellipse 40,42 16,20 0,360" -fill '#ffd23a' -draw "ellipse 80,30 16,20 0,360" \
  -fill '#4fb0ff' -draw "ellipse 120,44 16,20 0,360"
bg "Bricks" -size 160x120 xc:'#e9dcc9' -fill '#c0603c' \
  -draw "rectangle 1,1 38,18" -draw "rectangle 41,1 78,18" -draw "rectangle 81,1 118,18" -draw "rectangle 121,1 158,18" \
  -draw "rectangle 0,21 18,38" -draw "rectangle 21,21 58,38" -draw "rectangle 61,21 98,38" -draw "rectangle 101,21 138,38" -draw "rectangle 141,21 160,38" \
  -draw "rectangle 1,41 38,58" -draw "rectangle 41,41 78,58" -draw "rectangle 81,41 118,58" -draw "rectangle 121,41 158,58" \
  -draw "rectangle 0,61 18,78" -draw "rectangle 21,61 58,78" -draw "rectangle 61,61 98,78" -draw "rectangle 101,61 138,78" -draw "rectangle 141,61 160,78" \
  -draw "rectangle 1,81 38,98" -draw "rectangle 41,81 78,98" -draw "rectangle 81,81 118,98" -draw "rectangle 121,81 158,98" \
  -draw "rectangle 0,101 18,118" -draw "rectangle 21,101 58,118" -draw "rectangle 61,101 98,118" -draw "rectangle 101,101 138,118" -draw "rectangle 141,101 160,118"

# --- Symbols ---------------------------------------------------------------------------------
sym() { # name, then convert drawing arguments on a transparent 48 x 48 canvas
  name=$1
  shift
  convert -size 48x48 xc:none +antialias "$@" -strip "GIF:$pics/$name.gif"
}
sym "Heart" -fill '#e8304f' \
  -draw "path 'M 6,18 C 6,6 24,4 24,16 C 24,4 42,6 42,18 C 42,30 24,36 24,44 C 24,36 6,30 6,18 Z'"
sym "Star" -fill '#ffc21a' -stroke '#c88a00' \
  -draw "polygon 24,3 29,18 45,18 32,27 37,43 24,33 11,43 16,27 3,18 19,18"
sym "Sun" -fill '#ffb000' -draw "polygon 24,1 28,12 20,12" -draw "polygon 24,47 28,36 20,36" \
  -draw "polygon 1,24 12,20 12,28" -draw "polygon 47,24 36,20 36,28" \
  -draw "polygon 8,8 18,13 13,18" -draw "polygon 40,40 30,35 35,30" \
  -draw "polygon 40,8 35,18 30,13" -draw "polygon 8,40 13,30 18,35" \
  -fill '#ffd84a' -draw "circle 24,24 24,12"
sym "Smiley" -fill '#ffd23a' -stroke '#b98a00' -strokewidth 2 -draw "circle 24,24 24,4" \
  -stroke none -fill '#3a2a00' -draw "circle 17,19 17,16" -draw "circle 31,19 31,16" \
  -fill none -stroke '#3a2a00' -strokewidth 3 -draw "arc 13,18 35,36 20,160"
sym "Balloon" -stroke '#606060' -draw "line 24,36 26,47" -stroke none \
  -fill '#ff4d4d' -draw "ellipse 24,19 14,17 0,360" -draw "polygon 21,36 27,36 24,32" \
  -fill '#ffb0b0' -draw "ellipse 18,12 3,5 0,360"
sym "Flower" -fill '#3a9a3a' -draw "rectangle 23,26 25,47" -draw "ellipse 30,40 7,3 0,360" \
  -fill '#ff73b3' -draw "circle 24,8 24,1" -draw "circle 14,15 14,8" -draw "circle 34,15 34,8" \
  -draw "circle 17,26 17,19" -draw "circle 31,26 31,19" -fill '#ffd23a' -draw "circle 24,18 24,12"
sym "Note" -fill '#2a3a78' -draw "ellipse 14,38 8,6 0,360" -draw "ellipse 36,34 8,6 0,360" \
  -draw "rectangle 20,8 23,38" -draw "rectangle 41,4 44,34" -draw "polygon 20,8 44,2 44,10 20,16"
sym "Moon" -fill '#ffe37a' -draw "path 'M 30,4 A 20,20 0 1 0 44,34 A 16,16 0 1 1 30,4 Z'"
sym "Cloud" -fill '#8fb8e8' -draw "circle 16,28 16,18" -draw "circle 28,22 28,9" \
  -draw "circle 36,30 36,21" -draw "rectangle 8,28 44,38" -fill '#d9e8fa' -draw "circle 26,20 26,12"
sym "Gift" -fill '#3fa7e0' -draw "rectangle 6,20 42,45" -fill '#1f78c8' -draw "rectangle 4,14 44,22" \
  -fill '#ff4d6d' -draw "rectangle 21,14 27,45" -draw "ellipse 18,10 7,5 0,360" -draw "ellipse 30,10 7,5 0,360"
sym "Arrow" -fill '#34a853' -draw "polygon 2,18 28,18 28,6 46,24 28,42 28,30 2,30"
sym "Cake" -fill '#f5d7a8' -draw "rectangle 8,24 40,44" -fill '#ff8fb1' -draw "rectangle 8,22 40,28" \
  -fill '#ffffff' -draw "rectangle 8,34 40,36" -fill '#6aa8ff' -draw "rectangle 15,10 17,22" \
  -draw "rectangle 23,10 25,22" -draw "rectangle 31,10 33,22" -fill '#ffb000' \
  -draw "ellipse 16,7 2,3 0,360" -draw "ellipse 24,7 2,3 0,360" -draw "ellipse 32,7 2,3 0,360"

# --- Sounds ----------------------------------------------------------------------------------
wav() { # name, then sox effects after the synthesiser
  name=$1
  shift
  sox -n -r 8000 -b 16 -c 1 -e signed-integer "$sounds/$name.wav" "$@"
}
wav "Beep" synth 0.3 sine 880 fade 0.01 0.3 0.05 gain -6
wav "Chime" synth 0.25 sine 1318.5 sine 1046.5 sine 784 : synth 0.9 sine 523.25 fade 0 0.9 0.6 gain -8
wav "Doorbell" synth 0.45 sine 659.25 fade 0 0.45 0.2 : synth 0.8 sine 523.25 fade 0 0.8 0.5 gain -6
wav "Whistle" synth 0.8 sine 1200-2200 fade 0.05 0.8 0.2 gain -10
wav "Knock" synth 0.08 brownnoise fade 0 0.08 0.06 pad 0 0.12 repeat 2 gain -3
wav "Rising" synth 1.2 square 220-880 gain -14 lowpass 1500 fade 0.05 1.2 0.3
python3 "$here/make_midi.py" "$sounds"

# --- Tile icons ------------------------------------------------------------------------------
convert -size 32x32 xc:none -fill '#3b6fd1' -stroke none \
  -draw "roundrectangle 1,1 30,30 6,6" -fill none -stroke white -strokewidth 2 \
  -draw "polyline 5,16 8,16 10,9 13,23 16,5 19,27 22,11 24,19 27,16" -strip "PNG32:$res/101.png"
convert -size 32x32 xc:none -fill '#e8842a' -stroke none \
  -draw "roundrectangle 1,1 30,30 6,6" -fill white \
  -draw "ellipse 11,23 4,3 0,360" -draw "ellipse 22,21 4,3 0,360" \
  -draw "rectangle 14,7 15,23" -draw "rectangle 25,5 26,21" -draw "polygon 14,7 26,4 26,8 14,11" \
  -strip "PNG32:$res/302.png"
echo "made $(ls "$back" | wc -l) backgrounds, $(ls "$pics" | wc -l) symbols, $(ls "$sounds" | wc -l) sounds"
