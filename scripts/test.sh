#!/usr/bin/env bash
# Installs what is missing, builds everything with AddressSanitizer and UndefinedBehaviorSanitizer,
# and runs every test with CTest.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build-test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" -DTESSALY_SANITIZE=ON -DTESSALY_BUILD_BENCH=OFF
cmake --build build-test -j "$(nproc)"
export QT_QPA_PLATFORM=offscreen SDL_AUDIODRIVER=dummy
ctest --test-dir build-test --output-on-failure -j "$(nproc)"
