#!/usr/bin/env bash
# Checks that the code is formatted, installs what is missing, builds everything with
# AddressSanitizer and UndefinedBehaviorSanitizer, and runs every test with CTest.
set -euo pipefail
cd "$(dirname "$0")/.."

# Every C++ file of the project must be as clang-format makes it with the checked-in
# .clang-format; this fails before anything is built.
command -v clang-format >/dev/null || scripts/deps.sh
if ! git ls-files -z -- '*.cpp' '*.h' | xargs -0 --no-run-if-empty clang-format --dry-run --Werror; then
  echo "test.sh: the files above differ from what clang-format makes of them (run clang-format -i on them)" >&2
  exit 1
fi

scripts/deps.sh
cmake -S . -B build-test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" -DTESSALY_SANITIZE=ON -DTESSALY_BUILD_BENCH=OFF
cmake --build build-test -j "$(nproc)"
export QT_QPA_PLATFORM=offscreen SDL_AUDIODRIVER="${SDL_AUDIODRIVER:-dummy}"
ctest --test-dir build-test --output-on-failure -j "$(nproc)"
