#!/usr/bin/env bash
# Installs what the build and the tests need and this machine lacks, from the distribution's packages.
# usage: tools/setup.sh            needs root or a sudo that asks nothing; with nothing missing it needs neither
set -euo pipefail

# Needed to build and test; the rest makes builds quick, checks the style or adds line editing, plots to PDF and
# PNG, benchmarks.
needed=(cmake ninja-build g++ libgtest-dev libgmock-dev librapidcheck-dev libcli11-dev nlohmann-json3-dev libtomlplusplus-dev
        libpolyclipping-dev python3 python3-ezdxf git)
useful=(ccache lld clang-format clang-tidy libedit-dev libcairo2-dev pkg-config libbenchmark-dev libfmt-dev)

# A tool counts as there when its command runs, whoever installed it.
declare -A command_of=([cmake]=cmake [ninja-build]=ninja [g++]=g++ [python3]=python3 [git]=git [ccache]=ccache
                       [lld]=ld.lld [pkg-config]=pkg-config
                       [clang-format]=clang-format [clang-tidy]=clang-tidy)

is_there() {
  local command=${command_of[$1]:-}
  if [[ -n $command ]]; then
    command -v "$command" >/dev/null
  else
    [[ $(dpkg-query -W -f='${db:Status-Status}\n' "$1" 2>/dev/null | head -n 1) == installed ]]
  fi
}

missing_of() {
  local package
  for package in "$@"; do is_there "$package" || printf '%s ' "$package"; done
}

read -ra missing_needed <<<"$(missing_of "${needed[@]}")"
read -ra missing_useful <<<"$(missing_of "${useful[@]}")"
missing=("${missing_needed[@]}" "${missing_useful[@]}")
((${#missing[@]})) || exit 0

as_root=()
if ((EUID != 0)); then
  as_root=(sudo -n)
  command -v sudo >/dev/null && sudo -n true 2>/dev/null || as_root=(not-allowed)
fi

if command -v apt-get >/dev/null && [[ ${as_root[0]:-} != not-allowed ]]; then
  echo "setup: installing ${missing[*]}" >&2
  apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)
  "${apt[@]}" update >&2 || echo "setup: the package lists are old" >&2
  install=("${apt[@]}" install -y --no-install-recommends)
  if ((${#missing_needed[@]})); then "${install[@]}" "${missing_needed[@]}" >&2; fi
  if ((${#missing_useful[@]})); then
    "${install[@]}" "${missing_useful[@]}" >&2 || echo "setup: goes on without: ${missing_useful[*]}" >&2
  fi
  exit 0
fi

echo "setup: not installed: ${missing[*]}" >&2
echo "setup: install with: sudo apt-get install ${missing[*]}" >&2
if ((${#missing_needed[@]})); then
  echo "setup: can't go on without: ${missing_needed[*]}" >&2
  exit 1
fi
