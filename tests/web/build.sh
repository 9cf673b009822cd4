#!/usr/bin/env bash
# The page has no more than its budget, a rebuild gives the same bytes, and no lock file names a registry:
#
#     build.sh NODE PAGE SOURCE
set -euo pipefail
again=$(mktemp -d)
trap 'rm -rf "$again"' EXIT
(cd "$3/WebEditor" && "$1" scripts/build.mjs --out "$again")
diff -r "$2" "$again"

# The page is shown when these have come. The font comes later.
bytes=$(cat "$2"/index.html "$2"/*.js "$2"/*.css | gzip -9 | wc -c)
echo "index.html, scripts and styles: $bytes bytes compressed"
((bytes <= 64000))

for lock in "$3"/WebEditor/package-lock.json "$3"/tests/web/package-lock.json; do
  if grep -n '"resolved"' "$lock"; then
    echo "$lock names a registry; .npmrc has the setting that leaves it out" >&2
    exit 1
  fi
done
