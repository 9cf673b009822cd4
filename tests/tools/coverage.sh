#!/usr/bin/env bash
# tools/coverage counts the lines and branches of a small project as a person does, names those that its tests leave
# out, and says nothing of a build of which no test ran.
set -euo pipefail
cd "$(dirname -- "${BASH_SOURCE[0]}")"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
sources=$PWD
cd "$scratch"
c++ -O0 --coverage "$sources/valve/valve_test.cpp" "$sources/valve/valve.cpp" -o valve_test

status=0
"$sources/../../tools/coverage" --project "$sources/valve" --build "$scratch" >untouched 2>&1 || status=$?
[[ $status -eq 2 ]] || { echo "the exit status is $status although no test ran:"; cat untouched; exit 1; }

./valve_test
"$sources/../../tools/coverage" --project "$sources/valve" --build "$scratch" --open valve.cpp >output
diff -u "$sources/valve/coverage.expected.txt" output
[[ -s report/index.html ]] || { echo "there is no report"; exit 1; }
