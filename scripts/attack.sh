#!/usr/bin/env bash
# Attacks the command `vdm` with damaged files, absurd words, lying journals and kills, and prints a
# table of what held (docs/reliability.md). Failing cases come first, with what was run.
#   --times N    N times as many cases as an everyday run, 20 by default
#   --seed N     other cases, 1 by default
#   --only TEXT  only attacks with that text in their name
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

times=20 seed=1 only=
while (($# > 0)); do
  case $1 in
    --times) times=${2:?--times needs a number} ;;
    --seed) seed=${2:?--seed needs a number} ;;
    --only) only=${2:?--only needs a text} ;;
    *)
      sed -n '2,6s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" >&2
      exit 2
      ;;
  esac
  shift 2
done

cd "$root"
scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --parallel 2 --target vdm make_samples vdm_attack
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
build/release/bin/vdm_attack --times "$times" --seed "$seed" --only "$only" \
  --programs build/release/bin --folder "$folder"
