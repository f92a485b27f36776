#!/usr/bin/env bash
# Sets up, builds and tests the tree; the last lines are CTest's summary.
#   --long       also runs the tests labelled "long" and lets the others take more rounds
#   --sanitize   address and undefined-behaviour sanitizers (preset dev instead of release)
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

usage() {
  echo "usage: scripts/test.sh [--long] [--sanitize]"
}

preset=release
label_filter=(--label-exclude '^long$')
for argument in "$@"; do
  case $argument in
    --long)
      label_filter=()
      export VDM_LONG_TESTS=1
      ;;
    --sanitize) preset=dev ;;
    --help | -h)
      usage
      exit 0
      ;;
    *)
      echo "scripts/test.sh: unknown argument '$argument'" >&2
      usage >&2
      exit 2
      ;;
  esac
done

cd "$root"
scripts/setup.sh
cmake --preset "$preset"
cmake --build --preset "$preset" --parallel 2
exec ctest --test-dir "build/$preset" --output-on-failure --no-tests=error -j2 \
  ${label_filter[@]+"${label_filter[@]}"}
