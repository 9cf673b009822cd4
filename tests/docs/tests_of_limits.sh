#!/usr/bin/env bash
# Every test that the pages on limits and on guarantees name is there, and every row of their tables names one.
set -euo pipefail
cd "$(dirname -- "${BASH_SOURCE[0]}")/../.."

named=0
faults=0
for page in docs/limits.md docs/guarantees.md; do
  while IFS=. read -r suite test; do
    named=$((named + 1))
    if ! grep -rqE "^TEST(_F|_P)?\($suite, $test\)" tests --include='*.cpp'; then
      echo "$page names the test $suite.$test, which is not there"
      faults=$((faults + 1))
    fi
  done < <(grep -oE '`[A-Z][A-Za-z0-9]+\.[A-Z][A-Za-z0-9]+`' "$page" | tr -d '`')

  while IFS= read -r row; do
    if ! grep -qE '`[A-Z][A-Za-z0-9]+\.[A-Z][A-Za-z0-9]+` \|$|\]\(\.\./tests/[^)]+\) \|$' <<< "$row"; then
      echo "$page has a row without a test: $row"
      faults=$((faults + 1))
    fi
  done < <(grep -E '^\| [`a-z]' "$page")
done

echo "$named tests named, $faults faults"
((named > 0 && faults == 0))
