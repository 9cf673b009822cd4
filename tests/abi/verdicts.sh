#!/usr/bin/env bash
# tools/abi distinguishes a change that breaks programs from one that does not, in a clone with a library, a release, and what
# came after it.
set -euo pipefail
abi="$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)/tools/abi"

clone=$(mktemp -d)
trap 'rm -rf "$clone"' EXIT
mkdir -p "$clone/Pump/include" "$clone/Pump/src"
faults=0

cat >"$clone/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(Pump LANGUAGES CXX)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(TARN_SOVERSION 3)
add_library(Pump SHARED Pump/src/Pump.cpp)
target_include_directories(Pump PRIVATE Pump/include)
set_target_properties(Pump PROPERTIES SOVERSION ${TARN_SOVERSION})
END
cat >"$clone/Pump/include/Pump.h" <<'END'
#pragma once
struct Impeller;
class Pump {
 public:
  virtual ~Pump();
  virtual double head(double flow) const;
  double speed() const;

 private:
  double speed_ = 1450;
  Impeller* impeller_ = nullptr;
};
END
cat >"$clone/Pump/src/Pump.cpp" <<'END'
#include "Pump.h"
struct Impeller {
  int blades = 5;
};
Pump::~Pump() = default;
double Pump::head(double flow) const { return impeller_ ? impeller_->blades - flow : 10 - flow; }
double Pump::speed() const { return speed_; }
END
in_git() { git -C "$clone" -c user.name=Pump -c user.email=pump@localhost "$@"; }

# expect STATUS TEXT WHAT: what tools/abi makes of the clone as it stands; then the clone is as it was released.
expect() {
  local output status=0
  output=$("$abi" "$clone" 2>&1) || status=$?
  if [[ $status != "$1" || $output != *"$2"* ]]; then
    printf '%s: expected status %s and "%s", but the status is %s:\n%s\n' "$3" "$1" "$2" "$status" "$output"
    faults=$((faults + 1))
  fi
  if in_git rev-parse -q --verify v2.1.0 >/dev/null 2>&1; then in_git checkout -q -- .; fi
}
edit() { sed -i "$2" "$clone/$1"; }

expect 0 "not compared, as this is not a clone" "sources without a repository"
in_git init -q
in_git add -A
in_git commit -q -m "A pump"
expect 0 "not compared, as there is no release yet" "a repository without a release"
in_git tag v2.1.0
expect 0 "1 libraries are as programs that were compiled with v2.1.0 need them" "no change"

edit Pump/include/Pump.h 's/  double speed() const;/&\n  double power() const;/'
edit Pump/src/Pump.cpp '$a double Pump::power() const { return 2 * speed_; }'
edit Pump/src/Pump.cpp 's/int blades = 5;/& double width = 1;/'
expect 0 "need them" "a function more, and a hidden class that is larger"

edit Pump/include/Pump.h 's/  double speed_ = 1450;/&\n  double width_ = 1;/'
expect 1 "raise TARN_SOVERSION in CMakeLists.txt" "a member more"

edit Pump/include/Pump.h 's/  virtual ~Pump();/&\n  virtual void start();/'
edit Pump/src/Pump.cpp '$a void Pump::start() {}'
expect 1 "would not run with libPump.so" "a virtual function more"

edit Pump/include/Pump.h '/double speed() const/d'
edit Pump/src/Pump.cpp '/Pump::speed/d'
expect 1 "Pump::speed" "a function less"

edit Pump/include/Pump.h '/double speed() const/d'
edit Pump/src/Pump.cpp '/Pump::speed/d'
edit CMakeLists.txt 's/TARN_SOVERSION 3/TARN_SOVERSION 4/'
expect 0 "is number 4 since v2.1.0" "a function less, and the number raised"

edit CMakeLists.txt 's/TARN_SOVERSION 3/TARN_SOVERSION 2/'
expect 1 "numbers only rise" "a number that falls"

edit CMakeLists.txt 's/Pump SHARED/Pumps SHARED/; s/(Pump P/(Pumps P/'
rm -rf "$clone/build/abi/now"
expect 1 "libPump.so is in v2.1.0" "a library less"

edit Pump/src/Pump.cpp '$a no C++'
rm -rf "$clone/build/abi/now"
expect 2 "cannot be built" "sources that do not compile"

echo "$faults faults"
((faults == 0))
