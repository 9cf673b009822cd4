#!/usr/bin/env bash
# tools/mutate finds in a small project exactly what its tests leave open, distinguishes mutants that are listed
# rightly and wrongly, reports by its exit status that too few were caught, and leaves the source as it was.
set -euo pipefail
cd "$(dirname -- "${BASH_SOURCE[0]}")"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
before=$(sha256sum valve/*)
status=0
../../tools/mutate --project valve --scratch "$scratch" --patience 1 --known valve/mutants.txt \
  valve.cpp 2>"$scratch/log" >"$scratch/output" || status=$?
if ((status > 1)); then
  cat "$scratch/log" "$scratch"/build.log
  exit 1
fi

sed -E 's/ [0-9]+ s\.$//' "$scratch/output" | LC_ALL=C sort | diff -u valve/mutate.expected.txt -
[[ $status -eq 1 ]] || { echo "the exit status is $status although fewer than 90 % were caught"; exit 1; }
[[ $(sha256sum valve/*) == "$before" ]] || { echo "the source is not as it was"; exit 1; }
