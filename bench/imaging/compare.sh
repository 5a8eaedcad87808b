#!/usr/bin/env bash
# Times tessaly-img as a whole process against the reference command-line tools on the same
# 640x480 picture: BMP to GIF against giflib's gif2rgb making a GIF from raw RGB, and BMP to
# JPEG against cjpeg -quality 90.
# Usage: bench/imaging/compare.sh [BUILD_DIR]   (default: build)
# Needs: hyperfine giflib-tools libjpeg-turbo-progs python3
set -euo pipefail

build=${1:-build}
tool=$(realpath -m "$build/bin/tessaly-img")
[[ -x $tool ]] || { echo "no $tool: build the tessaly-img target first" >&2; exit 1; }
for program in hyperfine gif2rgb cjpeg python3; do
  command -v "$program" >/dev/null || { echo "$program is missing" >&2; exit 1; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A photo-like picture, as a 24-bit BMP and as raw RGB for gif2rgb.
python3 - "$work" <<'PY'
import math, random, struct, sys
folder = sys.argv[1]
random.seed(1)
w, h = 640, 480
rgb = bytearray()
for y in range(h):
    for x in range(w):
        r = int(128 + 100 * math.sin(x / 37.0) + 20 * math.cos(y / 11.0))
        g = int(128 + 90 * math.cos((x + y) / 53.0))
        b = int(128 + 100 * math.sin(y / 29.0) * math.cos(x / 71.0))
        if (x // 40 + y // 30) % 5 == 3:
            r, g, b = 230, 40, 60
        n = random.randint(-6, 6)
        rgb += bytes(max(0, min(255, c + n)) for c in (r, g, b))
open(f"{folder}/photo.rgb", "wb").write(rgb)
stride = (w * 3 + 3) & ~3
rows = []
for y in range(h - 1, -1, -1):
    row = bytearray()
    for x in range(w):
        r, g, b = rgb[(y * w + x) * 3:(y * w + x) * 3 + 3]
        row += bytes((b, g, r))
    rows.append(bytes(row) + b"\0" * (stride - len(row)))
data = b"".join(rows)
header = struct.pack("<2sIHHI", b"BM", 54 + len(data), 0, 0, 54)
header += struct.pack("<IiiHHIIiiII", 40, w, h, 1, 24, 0, len(data), 0, 0, 0, 0)
open(f"{folder}/photo.bmp", "wb").write(header + data)
PY

cd "$work"
# gif2rgb writes the GIF it makes to its standard output.
hyperfine -N --warmup 5 --runs 60 --export-markdown gif.md --output=pipe \
  "$tool photo.bmp out.gif" \
  "gif2rgb -c 8 -s 640 480 -1 photo.rgb"
hyperfine -N --warmup 5 --runs 60 --export-markdown jpeg.md --output=pipe \
  "$tool photo.bmp out.jpg" \
  "cjpeg -quality 90 -outfile ref.jpg photo.bmp"
echo
cat gif.md
echo
cat jpeg.md
