# What ./run and ./test share: the packages they need, and a build that is silent when there is nothing to do.
# shellcheck shell=bash

house=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*" >&2; }
die() {
  say "$@"
  exit 2
}

# needed run|test: the names of the packages.
needed() {
  awk -v all="$1" '!/^#/ && NF == 2 && ($2 == "run" || all == "test") { print $1 }' "$house/tools/packages.txt"
}

# install_missing run|test: installs the Debian packages that are not there yet.
install_missing() {
  command -v dpkg-query >/dev/null || {
    say "This is not a Debian system, so nothing is installed. Needed are: $(needed "$1" | xargs)"
    return 0
  }
  local installed missing
  installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' | awk '$1 == "installed" { print $2 }')
  mapfile -t missing < <(needed "$1" | grep -vxFf <(echo "$installed"))
  ((${#missing[@]})) || return 0

  local root=()
  if ((EUID)); then
    root=(sudo)
    [[ -t 0 ]] || root=(sudo -n)
    if ! command -v sudo >/dev/null || ! "${root[@]}" true; then
      die "Packages are missing, and only root can install them. Please run as root: apt-get install ${missing[*]}"
    fi
  fi
  say "Installing Debian packages: ${missing[*]}"
  local log
  log=$(mktemp)
  root+=(env DEBIAN_FRONTEND=noninteractive)
  if ! { "${root[@]}" apt-get update && "${root[@]}" apt-get install -y --no-install-recommends "${missing[@]}"; } \
    </dev/null >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    die "The packages could not be installed (all of it: $log). Check the network, then run again: apt-get install ${missing[*]}"
  fi
  rm -f "$log"
}

# build PRESET: configures where needed and builds. Says so only when there is something to build; the output goes to a
# log that is shown when the build fails.
build() {
  local preset=$1 folder="$house/build/$1"
  local log="$folder/build.log"
  mkdir -p "$folder"
  if [[ ! -f $folder/build.ninja || $house/CMakePresets.json -nt $folder/build.ninja ]]; then
    (cd "$house" && cmake --preset "$preset") </dev/null >"$log" 2>&1 || {
      cat "$log" >&2
      die "The build could not be configured. If a package is named above, install it; else remove $folder and try again."
    }
  fi
  if (cd "$house" && cmake --build --preset "$preset" -- -n) </dev/null 2>&1 | grep '^ninja: no work to do' >/dev/null; then
    return 0
  fi
  say "Building (preset $preset, log in build/$preset/build.log)"
  if ! (cd "$house" && cmake --build --preset "$preset" -- -k 20) </dev/null 2>&1 | progress "$log"; then
    grep -vE '^\[[0-9]+/[0-9]+\]|^ninja: ' "$log" >&2 || true
    die "The build failed; its whole output is in $log."
  fi
}

# progress LOG: copies its input to the log and, on a terminal, shows how far it is in one line that moves.
progress() {
  if [[ -t 2 ]]; then
    tee "$1" | sed -nuE 's|^(\[[0-9]+/[0-9]+\]).*|\r\1 |p' | tr -d '\n' >&2
    printf '\r\033[K' >&2
  else
    cat >"$1"
  fi
}
