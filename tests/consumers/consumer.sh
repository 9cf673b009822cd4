#!/usr/bin/env bash
# Builds and runs, as somebody else's project would, two programs of twenty lines that use the libraries:
#
#     consumer.sh install FOLDER BUILD          installs the build into FOLDER/installed; the next two use that
#     consumer.sh find_package FOLDER COMPILER
#     consumer.sh pkg_config FOLDER COMPILER
#     consumer.sh add_subdirectory FOLDER COMPILER
#     consumer.sh readme                        the README shows that very program
set -euo pipefail

here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
project=$(cd -- "$here/../.." && pwd)

# The model breaks three rules: both programs must find exactly these.
check_findings() {
  diff -u "$here/expected.txt" <("$@" "$here/flow.rules.yaml" "$here/pipe.tdf")
}

# On the faulty example the program finds what `zev validate` finds, all of it.
check_faulty_example() {
  local rules=$project/examples/flow/rules model=$project/examples/flow/models/faulty.tdf
  diff -u <("$2" validate --rules "$rules" --format json "$model" 2>/dev/null | python3 -c '
import json, sys
findings = json.load(sys.stdin)["findings"]
assert len(findings) == 24, len(findings)
for one in findings:
    print((one["path"] + ": " if one["path"] else "") + one["message"])') <("$1" "$rules" "$model")
}

case $1 in
  install)
    rm -rf "$2/installed" "$2/moved"
    cmake --install "$3" --prefix "$2/installed" >/dev/null
    # An installation may be moved as a whole: what follows uses it at another place than it was made for.
    mv "$2/installed" "$2/moved"
    "$2/moved/bin/zev" --help >/dev/null
    # The manual page and the completion for the shell.
    groff -Tascii -P-cbou -mandoc "$2/moved/share/man/man1/zev.1" | grep 'zev console' >/dev/null
    bash --norc --noprofile -c '. "$1" && complete -p zev' bash "$2/moved/share/bash-completion/completions/zev" >/dev/null
    ;;
  find_package)
    cmake -G Ninja -S "$here/find_package" -B "$2/find_package" -DCMAKE_CXX_COMPILER="$3" \
      -DCMAKE_PREFIX_PATH="$2/moved" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
    cmake --build "$2/find_package"
    check_findings "$2/find_package/check-model"
    check_findings "$2/find_package/validate-model"
    check_faulty_example "$2/find_package/check-model" "$2/moved/bin/zev"
    ;;
  pkg_config)
    export PKG_CONFIG_PATH=$2/moved/lib/pkgconfig
    read -r -a flags < <(pkg-config --cflags --libs tarn-physical-dependency)
    mkdir -p "$2/pkg_config"
    for program in main validate; do
      "$3" -std=c++20 "$here/find_package/$program.cpp" "${flags[@]}" -o "$2/pkg_config/$program"
      LD_LIBRARY_PATH=$2/moved/lib check_findings "$2/pkg_config/$program"
    done
    ;;
  add_subdirectory)
    cmake -G Ninja -S "$here/add_subdirectory" -B "$2/add_subdirectory" -DCMAKE_CXX_COMPILER="$3" \
      -DTARN_SOURCE_DIR="$project" -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache || true)"
    cmake --build "$2/add_subdirectory"
    check_findings "$2/add_subdirectory/check-model"
    check_findings "$2/add_subdirectory/validate-model"
    ;;
  readme)
    diff -u "$here/find_package/main.cpp" <(sed -n '/^```cpp$/,/^```$/{//d;p}' "$project/README.md")
    ;;
esac
