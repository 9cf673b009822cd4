#!/usr/bin/env bash
# Every relative link in what people read leads to a file or folder that is there.
set -euo pipefail
cd "$(dirname -- "${BASH_SOURCE[0]}")/../.."

links=0
broken=0
while IFS= read -r page; do
  while IFS= read -r target; do
    links=$((links + 1))
    if [[ ! -e $(dirname -- "$page")/${target%%#*} ]]; then
      echo "$page links to $target, which is not there"
      broken=$((broken + 1))
    fi
  done < <(grep -oE '\]\([^)]+\)' "$page" | sed -E 's/^\]\(//; s/\)$//' | grep -vE '^(https?:|#)')
done < <(find . -name '*.md' -not -path './build/*' -not -path './.git/*' -not -path '*/node_modules/*')

echo "$links links, $broken broken"
((links > 0 && broken == 0))
