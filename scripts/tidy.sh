#!/usr/bin/env bash
# Runs clang-tidy over every source of the tree and the headers that they include; each finding is an
# error. Arguments are folders or files to check instead of the whole tree.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
scripts/setup.sh
# The compiler of the release preset precompiles headers in a form that clang-tidy cannot read.
cmake --preset tidy >/dev/null

mapfile -t sources < <(git ls-files -- "${@:-.}" | grep '\.cpp$' | grep -v '^tests/consumer/')
if ((${#sources[@]} == 0)); then
  echo "tidy: no sources in: $*" >&2
  exit 2
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
code=0
printf '%s\0' "${sources[@]}" |
  xargs -0 -P 2 -n 4 clang-tidy -p build/tidy --quiet --extra-arg=-Wno-unknown-warning-option >"$log" 2>/dev/null || code=$?
# A finding in a header comes once for each source that includes it.
grep -E '(warning|error): .*\[' "$log" | sort -u || true
if ((code != 0)); then
  echo "tidy: findings in ${#sources[@]} sources" >&2
  exit 1
fi
echo "tidy: ${#sources[@]} sources, no finding"
