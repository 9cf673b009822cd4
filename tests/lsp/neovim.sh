#!/usr/bin/env bash
# A real editor uses the language server, with the configuration that the documentation shows.
#
#     neovim.sh ZEV SOURCE_DIR
set -euo pipefail
zev=$1 source=$2

if ! command -v nvim > /dev/null; then
  echo "nvim is missing; install the Debian package neovim" >&2
  exit 1
fi
folder=$(mktemp -d)
trap 'rm -rf -- "$folder"' EXIT
mkdir -p "$folder/config/nvim/lua" "$folder/bin" "$folder/plant"
cp "$source/editors/neovim/zev.lua" "$folder/config/nvim/lua/"
echo "require('zev').setup()" > "$folder/config/nvim/init.lua"
cp "$source"/tests/lsp/rules/* "$folder/plant/"
ln -s "$zev" "$folder/bin/zev"

cd "$folder/plant"
PATH="$folder/bin:$PATH" XDG_CONFIG_HOME="$folder/config" XDG_DATA_HOME="$folder/data" XDG_CACHE_HOME="$folder/cache" \
  XDG_STATE_HOME="$folder/state" TEST_RESULT="$folder/result" \
  timeout 100 nvim --headless -i NONE 20-pump.rules.yaml -c "luafile $source/tests/lsp/neovim.lua" > "$folder/output" 2>&1 ||
  echo "nvim ended with $?" >> "$folder/output"
if [[ $(cat "$folder/result" 2> /dev/null) != good ]]; then
  cat "$folder/result" "$folder/output" "$folder"/{cache,state}/nvim/lsp.log 2> /dev/null || true
  exit 1
fi
