# Shared by ./run, ./test, .ci/run and the tools: installing packages, building, running tests, timing steps.
# shellcheck shell=bash

house=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*" >&2; }
die() {
  say "$@"
  exit 2
}

# step NAME COMMAND...: runs a command and remembers how long it took and whether it failed. Returns its status.
steps=()
step() {
  local name=$1 began=$SECONDS status=0
  shift
  "$@" || status=$?
  steps+=("$(printf '%-12s %6d s%s' "$name" $((SECONDS - began)) "$( ((status == 0)) || echo '  FAILED')")")
  return "$status"
}

# report_steps WHAT: prints the times of all steps. Returns 1 if one of them failed.
report_steps() {
  printf '%s\n' "${steps[@]}" >&2
  if [[ ${steps[*]} == *FAILED* ]]; then
    say "$1 failed after $SECONDS s."
    return 1
  fi
  say "$1 passed in $SECONDS s."
}

# needed run|web|test: the names of the packages.
needed() {
  local package task command
  grep -v '^#' "$house/tools/packages.txt" | while read -r package task command; do
    case "$1 $task" in 'run run' | 'web run' | 'web web' | 'test '?*) ;; *) continue ;; esac
    [[ $command ]] && command -v "$command" >/dev/null || printf '%s\n' "$package"
  done
}

# install_missing run|web|test: installs the Debian packages that are not there yet.
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
  if ! (cd "$house" && cmake --build --preset "$preset" -- -k 20) </dev/null 2>&1 | progress "$preset" "$log"; then
    grep -vE '^\[[0-9]+/[0-9]+\]|^ninja: |^-- ' "$log" >&2 || true
    die "The build failed; its whole output is in $log."
  fi
  grep -oE '^(-- )?The web editor is not built: .*' "$log" | sed 's/^-- //' >&2 || true
}

# progress PRESET LOG: keeps what the build prints in the log. Once something is built, says so; on a terminal, how far
# it is, in one line that goes away at the end.
progress() {
  local line told=
  while IFS= read -r line; do
    printf '%s\n' "$line"
    [[ $line =~ ^\[([0-9]+/[0-9]+)\]\ (Building|Linking) ]] || continue
    if [[ -t 2 ]]; then
      printf '\r\033[KBuilding (preset %s): %s' "$1" "${BASH_REMATCH[1]}" >&2
    elif [[ -z $told ]]; then
      say "Building (preset $1, log in build/$1/build.log)"
    fi
    told=yes
  done >"$2"
  if [[ -n $told && -t 2 ]]; then printf '\r\033[K' >&2; fi
}

# run_tests PRESET [OPTION...]: runs the tests of a build. The log holds all; shown are failures in full, suites that took
# more than five seconds, and the verdict.
run_tests() {
  local preset=$1
  shift
  mkdir -p "$house/build/$preset"
  (cd "$house" && ctest --preset "$preset" -j "$(nproc)" "$@") </dev/null 2>&1 |
    tee "$house/build/$preset/test.log" |
    awk '!/^ +Start +[0-9]+: / && !(/ Passed +[0-9.]+ sec$/ && $(NF - 1) < 5) && !/^$/ && !/^Internal ctest/'
}
