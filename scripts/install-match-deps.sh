#!/usr/bin/env bash
# Installs what tools/match needs to play real games, only where it is missing:
# the xboard interface, a virtual X server for it, polyglot (xboard's adapter
# for UCI engines) and opponents. The lists are refreshed only if a package
# can't be found without it.
set -euo pipefail
need=()
have() { command -v "$1" >/dev/null 2>&1 || [ -x "/usr/games/$1" ]; }
have xboard || need+=(xboard)
have Xvfb || need+=(xvfb)
have fairymax || need+=(fairymax)
have polyglot || need+=(polyglot)
# Optional stronger opponents; the runner works without them.
optional=()
if [ "${1:-}" = "--all" ]; then
  have phalanx || optional+=(phalanx)
  have gnuchess || optional+=(gnuchess)
fi
[ ${#need[@]} -eq 0 ] && [ ${#optional[@]} -eq 0 ] && exit 0

SUDO=""
[ "$(id -u)" = 0 ] || SUDO="sudo"
install() {
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "$@" >/dev/null
}
if [ ${#need[@]} -gt 0 ]; then
  echo "Installing: ${need[*]}"
  install "${need[@]}" 2>/dev/null || { $SUDO apt-get update -qq; install "${need[@]}"; }
fi
if [ ${#optional[@]} -gt 0 ]; then
  echo "Installing (optional): ${optional[*]}"
  install "${optional[@]}" 2>/dev/null || { $SUDO apt-get update -qq; install "${optional[@]}" || echo "Optional opponents not available: ${optional[*]}"; }
fi
