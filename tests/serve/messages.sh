#!/usr/bin/env bash
# Runs the unit tests of the protocol and keeps their messages: messages.sh PROGRAM FILE
set -euo pipefail
rm -f "$2"
TARN_MESSAGES=$2 "$1" --gtest_filter='Service*' --gtest_brief=1
test -s "$2"
