#!/usr/bin/env bash
# check-no-widgets.sh PROGRAM...: fails when one of the programs loads QtWidgets.
set -uo pipefail
status=0
for program in "$@"; do
  if [ ! -x "$program" ]; then
    echo "missing program: $program" >&2
    status=1
    continue
  fi
  if ! libraries=$(ldd -- "$program"); then
    echo "ldd failed on $program" >&2
    status=1
  elif grep -q 'libQt6Widgets' <<<"$libraries"; then
    echo "$program loads QtWidgets" >&2
    status=1
  fi
done
exit $status
