#!/usr/bin/env bash
# Sets up and builds the program, installs it for this user (prefix ~/.local),
# writes the settings the user has not set (the install directory, the work
# path, the simulated chip as download and monitor port), puts the examples
# the user does not have yet into the work path, and starts the installed
# program with the blink example open. Arguments go to the program in its
# place. KAVLIN_PREFIX and KAVLIN_PROJECTS choose other folders.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh -DKAVLIN_BUILD_TESTS=OFF

prefix="${KAVLIN_PREFIX:-$HOME/.local}"
projects="${KAVLIN_PROJECTS:-$HOME/Kavlin}"
cmake --install build --prefix "$prefix" >/dev/null
"$prefix/bin/kavlin-setup" --run-dir "$prefix/share/kavlin" --work-dir "$projects" \
  --simulated-chip
# A compile writes beside its project, so the examples are the user's own
# copies; one he has changed stays as it is.
for example in "$prefix/share/kavlin/examples/"*; do
  if [ ! -e "$projects/$(basename "$example")" ]; then
    cp "$example" "$projects/"
  fi
done

if (($#)); then
  exec "$prefix/bin/kavlin" "$@"
fi
# The quotes are part of the argument: a full project file name.
exec "$prefix/bin/kavlin" "\"$projects/blink.kvp\""
