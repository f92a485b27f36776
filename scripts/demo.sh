#!/usr/bin/env bash
# Shows what the command `vdm` does: sets up, builds it and plays the story of demo_story.sh in the
# folder out/, which it makes anew and leaves behind. Extra arguments go to the story.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# say TEXT...: a line of the narrator.
say() {
  printf '\n== %s\n' "$*"
}

# run COMMAND...: shows a command as a shell takes it, then runs it.
run() {
  local word
  printf '$'
  for word in "$@"; do
    case $word in
      *[!A-Za-z0-9_./:=-]*) printf " '%s'" "$word" ;;
      *) printf ' %s' "$word" ;;
    esac
  done
  printf '\n'
  "$@"
}

cd "$root"
scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --parallel 2 --target vdm make_samples undo_story

export PATH="$root/build/release/bin:$PATH"
stage=$root/out
rm -rf "$stage"
mkdir "$stage"

# shellcheck source=scripts/demo_story.sh
source "$root/scripts/demo_story.sh"
cd "$stage"
demo_story "$@"
