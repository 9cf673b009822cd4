#!/usr/bin/env bash
# `pip install .` without a network, into a folder of its own; then the installed package works alone. It compiles all
# libraries, unless ccache has them: tools/packages runs it when it has just compiled the same.
#
#     pip.sh PYTHON SOURCES FOLDER
set -euo pipefail
python=$1 sources=$2 folder=$3
rm -rf "$folder"
mkdir -p "$folder"

"$python" -m pip install --quiet --no-index --no-build-isolation --no-deps --target "$folder/place" "$sources"
# The package does not need the folder where it was built.
mv "$folder/place" "$folder/moved"

cd "$sources"
env -u LD_LIBRARY_PATH PYTHONPATH="$folder/moved" "$python" - "$folder/moved" "$sources" <<'END'
import pathlib
import sys

import tarn
from tarn import _tarn

place, sources = sys.argv[1:]
assert pathlib.Path(tarn.__file__).is_relative_to(place), tarn.__file__
session = tarn.Session(tarn.load_rules("examples/heating/rules"), "examples/heating/models/house.tdf")
assert session.set("Boiler:main/Fuel", "Oil").applied
libraries = {line.split()[-1] for line in open("/proc/self/maps") if "libTARN" in line}
assert libraries and all(one.startswith(place) for one in libraries), libraries
assert (pathlib.Path(place) / "tarn" / "py.typed").exists()
from tarn.study import read_study, prepare
prepare(read_study("examples/heating/studies/pumps.study.yaml"))
print("installed by pip, and at work:", session)
END
