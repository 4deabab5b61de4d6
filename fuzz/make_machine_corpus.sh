#!/usr/bin/env bash
# Writes the bytecode machine's fuzz seeds into corpus/machine: each program
# of seeds/machine assembled with kavlin-asm (built in build/ or the folder
# given), behind one byte that gives the length of the serial input after it.
set -euo pipefail
cd "$(dirname "$0")"
asm="${1:-../build/bin/kavlin-asm}"
mkdir -p corpus/machine
for source in seeds/machine/*.kva; do
  name="$(basename "$source" .kva)"
  image="$(mktemp)"
  "$asm" "$source" -o "$image"
  input="hello chip"$'\n'
  { printf "\\x$(printf %02x ${#input})"; cat "$image"; printf '%s' "$input"; } \
    > "corpus/machine/$name.seed"
  rm -f "$image"
done
