#!/usr/bin/env bash
# The project's playing check: 10 games at 10+0.1 against fairymax through
# xboard, half with the engine speaking xboard and half speaking UCI (through
# polyglot). Games and xboard's debug logs are kept in the build directory.
# Usage: scripts/match.sh [BUILD_DIR]   (default: build)
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-${BUILD:-build}}"
scripts/install-match-deps.sh
if [ ! -x "$build/match" ] || [ ! -x "$build/morvane" ]; then
  echo "match.sh: $build/match or $build/morvane missing: build first (make build)" >&2
  exit 1
fi
games="${MATCH_GAMES:-5}"
tc="${MATCH_TC:-10+0.1}"
status=0
"$build/match" --opponent fairymax --games "$games" --tc "$tc" \
  --pgn "$build/match-xboard.pgn" --debug-log "$build/match-xboard.log" | tee "$build/match-xboard.txt" || status=1
"$build/match" --as-uci --opponent fairymax --games "$games" --tc "$tc" \
  --pgn "$build/match-uci.pgn" --debug-log "$build/match-uci.log" | tee "$build/match-uci.txt" || status=1
echo
echo "As xboard engine: $(grep '^Score:' "$build/match-xboard.txt" | tail -1)"
echo "As UCI engine:    $(grep '^Score:' "$build/match-uci.txt" | tail -1)"
exit $status
