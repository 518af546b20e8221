#!/usr/bin/env bash
# Fails when a source file under src/ includes a header of a layer above its
# own. The layers, lowest first:
#   platform -> board -> position -> eval | book | tablebase -> search -> frontend
# eval, book and tablebase stand side by side: none includes another.
# Run by the build before any library compiles; usage: scripts/check-layers.sh [SRC_DIR]
set -euo pipefail
src="${1:-$(dirname "$0")/../src}"

# The layers each layer may include, its own among them.
declare -A allowed=(
  [platform]="platform"
  [board]="platform board"
  [position]="platform board position"
  [eval]="platform board position eval"
  [book]="platform board position book"
  [tablebase]="platform board position tablebase"
  [search]="platform board position eval book tablebase search"
  [frontend]="platform board position eval book tablebase search frontend"
)

status=0
for layer in "${!allowed[@]}"; do
  [ -d "$src/$layer" ] || continue
  while IFS= read -r line; do
    file="${line%%:*}"
    rest="${line#*:}"
    lineno="${rest%%:*}"
    target="$(sed -E 's/^[^"]*"([^/"]+)\/.*$/\1/' <<<"$rest")"
    case " ${allowed[$layer]} " in
      *" $target "*) ;;
      *)
        echo "$file:$lineno: layer '$layer' may not include '$target/' (allowed: ${allowed[$layer]})" >&2
        status=1
        ;;
    esac
  done < <(grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]+"[^/"]+/' "$src/$layer" || true)
done
for dir in "$src"/*/; do
  name="$(basename "$dir")"
  if [ -z "${allowed[$name]+x}" ]; then
    echo "$dir: folder outside the layer list" >&2
    status=1
  fi
done
exit $status
