#!/usr/bin/env bash
# man_pages_test.sh PROGRAM PAGE [PROGRAM PAGE]...
# Each manual page, as man shows it, names every option and command of its program's --help and
# the program's version. The pages are made from --help, so a miss is a page left stale by the build
# or a help line that help2man misread.
set -euo pipefail
source "$(dirname "$0")/help_words.sh"

failures=0
while [ $# -ge 2 ]; do
  program="$1" page="$2"
  shift 2
  rendered="$(MANWIDTH=200 man -l "$page" | col -b)"
  words="$(HelpWords "$program")"
  # Guards against passing on an empty --help: every program has these two.
  for word in --help --version; do
    grep -qx -- "$word" <<<"$words" || { echo "FAIL: $program --help doesn't list $word"; failures=$((failures + 1)); }
  done
  for word in $words "$("$program" --version)"; do
    # Whole words only: --game must not pass on the strength of --game-dir.
    if ! grep -qE -- "(^|[^[:alnum:]-])$word([^[:alnum:]-]|\$)" <<<"$rendered"; then
      echo "FAIL: $page doesn't show \"$word\" of $program --help"
      failures=$((failures + 1))
    fi
  done
done
echo "man pages: $failures failed"
[ "$failures" -eq 0 ]
