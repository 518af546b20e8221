#!/usr/bin/env bash
# Installs what the build and the tests need, only where it is missing.
set -euo pipefail
need=()
command -v cmake >/dev/null || need+=(cmake)
command -v g++ >/dev/null || need+=(g++)
command -v make >/dev/null || need+=(make)
[ -f /usr/include/gtest/gtest.h ] || need+=(libgtest-dev)
if [ "${1:-}" = "--test" ]; then
  # Independent move-generation oracle for the perft comparison tests.
  command -v stockfish >/dev/null || [ -x /usr/games/stockfish ] || need+=(stockfish)
  # Independent endgame tables that the table generator is checked against.
  [ -d /usr/share/gaviotatb/gtb1 ] || need+=(gaviotatb)
  [ -f /usr/include/gtb-probe.h ] || need+=(libgaviotatb-dev)
  [ -f /usr/include/zlib.h ] || need+=(zlib1g-dev)  # the Gaviota library needs it
fi
if [ ${#need[@]} -gt 0 ]; then
  echo "Installing: ${need[*]}"
  SUDO=""
  [ "$(id -u)" = 0 ] || SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${need[@]}" >/dev/null
fi
# Opening lines for the default book. Optional: without them the engine is
# built and plays without a book, so a failure here stops nothing.
if [ ! -f /usr/share/scid/data/scid.eco ]; then
  echo "Installing: scid-data (opening lines for the default book)"
  SUDO=""
  [ "$(id -u)" = 0 ] || SUDO="sudo"
  if ! { $SUDO apt-get update -qq && DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq scid-data >/dev/null; }; then
    echo "scid-data could not be installed: the engine will play without a default book (see README)"
  fi
fi
