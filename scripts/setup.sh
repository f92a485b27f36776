#!/usr/bin/env bash
# Installs the Debian packages of packages.txt that are missing; does nothing when all are there.
# Runs as root or through sudo, asks no questions.
set -euo pipefail
scripts=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

wanted_packages() {
  sed -e 's/#.*//' -e 's/[[:space:]]*$//' -e '/^$/d' "$scripts/packages.txt"
}

# Prints the wanted packages that are not fully installed.
missing_packages() {
  local -A present=()
  local package status
  while read -r package status; do
    [[ $status == "install ok installed" ]] && present[$package]=1
  done < <(wanted_packages | xargs dpkg-query -W -f '${binary:Package} ${Status}\n' 2>/dev/null |
           sed 's/^\([^ :]*\):[^ ]*/\1/')
  while read -r package; do
    [[ -n ${present[$package]:-} ]] || printf '%s\n' "$package"
  done < <(wanted_packages)
}

# Runs a command with the rights to install.
as_root() {
  if ((EUID == 0)); then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "setup: need root or sudo to run: $*" >&2
    return 1
  fi
}

install_packages() {
  echo "setup: installing $# missing packages: $*"
  as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$@" </dev/null
}

main() {
  if ! command -v dpkg-query >/dev/null; then
    echo "setup: dpkg-query not found: this script knows Debian packages only; install by hand what" \
         "$scripts/packages.txt lists" >&2
    return 1
  fi
  local missing
  mapfile -t missing < <(missing_packages)
  if ((${#missing[@]} == 0)); then
    echo "setup: all packages are installed"
    return
  fi
  install_packages "${missing[@]}"
  mapfile -t missing < <(missing_packages)
  if ((${#missing[@]} > 0)); then
    echo "setup: still missing after installation: ${missing[*]}" >&2
    return 1
  fi
}

main "$@"
