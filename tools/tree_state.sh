#!/usr/bin/env bash
# Prints one line per file of the tree with its checksum, so that two moments can be compared.
# Leaves out what .gitignore names; where there is no git, build/ and out/.
set -euo pipefail
cd "$(dirname "$0")/.."

listed() {
  if [[ $(git rev-parse --show-toplevel 2>/dev/null) -ef . ]]; then
    git ls-files -z -co --exclude-standard
  else
    find . \( -path ./build -o -path ./out \) -prune -o -type f -print0
  fi
}

listed | LC_ALL=C sort -zu | while IFS= read -r -d '' name; do
  if [[ -f $name ]]; then printf '%s\0' "$name"; fi
done | xargs -0 -r sha256sum
