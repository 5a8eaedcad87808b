#!/usr/bin/env bash
# Times wav2amr as a whole process (bench/store/wav2amr-cli) against sox's AMR-NB encoder on a
# 60 s WAV, once at 8 kHz mono and once at 44.1 kHz stereo, both at 10.2 kbit/s (sox -C 6).
# Usage: bench/store/amr-vs-sox.sh [BUILD_DIR]   (default: build)
# Needs: hyperfine sox (with its amr-nb format) python3
set -euo pipefail

build=${1:-build}
tool=$(realpath -m "$build/bin/wav2amr-cli")
[[ -x $tool ]] || { echo "no $tool: build the wav2amr-cli target first" >&2; exit 1; }
for program in hyperfine sox python3; do
  command -v "$program" >/dev/null || { echo "$program is missing" >&2; exit 1; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Speech-like test sound: a few tones with a slow swell, 60 seconds.
python3 - "$work" <<'PY'
import math, struct, sys, wave
folder = sys.argv[1]
for name, rate, channels in (("mono8k", 8000, 1), ("stereo44k", 44100, 2)):
    frames = rate * 60
    with wave.open(f"{folder}/{name}.wav", "wb") as out:
        out.setnchannels(channels)
        out.setsampwidth(2)
        out.setframerate(rate)
        data = bytearray()
        for i in range(frames):
            t = i / rate
            swell = 0.5 + 0.5 * math.sin(2 * math.pi * 0.7 * t)
            v = int(9000 * swell * (math.sin(2 * math.pi * 220 * t) + 0.4 * math.sin(2 * math.pi * 660 * t)))
            data += struct.pack("<h", v) * channels
        out.writeframes(bytes(data))
PY

sox -n -t amr-nb "$work/probe.amr" trim 0 0.02 2>/dev/null ||
  { echo "this sox cannot write amr-nb" >&2; exit 1; }

for name in mono8k stereo44k; do
  echo "== $name (60 s)"
  hyperfine --warmup 1 --runs 5 \
    -n wav2amr "$tool '$work/$name.wav' '$work/$name-tessaly.amr' MR102" \
    -n sox "sox '$work/$name.wav' -t amr-nb -C 6 '$work/$name-sox.amr'"
done
