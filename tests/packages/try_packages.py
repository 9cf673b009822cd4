#!/usr/bin/env python3
"""Installs our Debian packages in a fresh system, uses them, removes them, and sees that nothing is left.

    try_packages.py SOURCES PACKAGE.deb ...

Needs root for chroot. Without it, the test says so and exits with 77.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

import fresh_root

# Files that dpkg and ldconfig write for themselves.
BOOKKEEPING = ("var/lib/dpkg", "var/log", "etc/ld.so.cache", "var/cache/ldconfig", "tmp", "root")


def field(package, name):
    return subprocess.run(["dpkg-deb", "-f", package, name], capture_output=True, text=True, check=True).stdout.strip()


def contents(root):
    """path -> what it is, of every file of the system except the bookkeeping."""
    found = {}
    for folder, folders, files in os.walk(root):
        here = os.path.relpath(folder, root)
        folders[:] = [name for name in folders if os.path.normpath(f"{here}/{name}") not in BOOKKEEPING]
        for name in folders + files:
            path, shown = os.path.join(folder, name), os.path.normpath(f"{here}/{name}")
            if shown in BOOKKEEPING:
                continue
            if os.path.islink(path):
                found[shown] = os.readlink(path)
            elif os.path.isfile(path):
                # No package but ours changes, so size and time are enough to see a change.
                found[shown] = (os.path.getsize(path), os.stat(path).st_mtime_ns)
            else:
                found[shown] = "folder"
    return found


def expect(what, is_so):
    if not is_so:
        sys.exit(f"packages: {what}")


def use_program(root, version):
    expect("the program has another version than its package",
           fresh_root.run(root, ["zev", "--version"]) == f"zev {version.split('~')[0]}\n")
    example = "/usr/share/tarn/examples/heating"
    fresh_root.run(root, ["zev", "validate", "--rules", f"{example}/rules", f"{example}/models/house.tdf"])
    fresh_root.run(root, ["zev", "edit", "--rules", f"{example}/rules", f"{example}/models/house.tdf", "--set",
                          "/Plant/Building=Office", "--out", "/tmp/office.tdf"])
    expect("an edit of the installed program was not saved",
           "Building = Office" in (root / "tmp/office.tdf").read_text(encoding="utf-8"))
    expect("the manual is missing", (root / "usr/share/man/man1/zev.1.gz").is_file())


def use_development_files(root, sources):
    """Other people's programs are compiled with the installed headers and find what they should."""
    consumers = root / "tmp/consumers"
    shutil.copytree(sources / "tests/consumers", consumers)
    expected = (consumers / "expected.txt").read_text(encoding="utf-8")
    given = ["/tmp/consumers/flow.rules.yaml", "/tmp/consumers/pipe.tdf"]
    fresh_root.run(root, ["cmake", "-G", "Ninja", "-S", "find_package", "-B", "built", "-D", "CMAKE_CXX_COMPILER=g++"],
                   "/tmp/consumers")
    fresh_root.run(root, ["cmake", "--build", "built"], "/tmp/consumers")
    flags = fresh_root.run(root, ["pkg-config", "--cflags", "--libs", "tarn-physical-dependency"]).split()
    fresh_root.run(root, ["g++", "-std=c++20", "find_package/main.cpp", *flags, "-o", "built/main"], "/tmp/consumers")
    for program in ("check-model", "main"):
        # The model has faults, so the programs end with 1.
        shown = fresh_root.run(root, ["sh", "-c", f"built/{program} {' '.join(given)}; test $? = 1"], "/tmp/consumers")
        expect(f"{program} does not find what it should:\n{shown}", shown == expected)


def use_python(root):
    study = "/usr/share/tarn/examples/heating/studies/pumps.study.yaml"
    # Some of its points have errors, so it ends with 1.
    fresh_root.run(root, ["sh", "-c", f"zev study {study} --out /tmp/pumps --jobs 1; test $? = 1"])
    table = (root / "tmp/pumps/table.csv").read_text(encoding="utf-8")
    expect(f"the installed program has made another table:\n{table}", table.count("\n") == 13)
    compiled = list(root.glob("usr/lib/python3/dist-packages/tarn/__pycache__/*.pyc"))
    expect("the modules of Python were not compiled when the package was installed", compiled)


def main():
    sources, packages = pathlib.Path(sys.argv[1]).resolve(), [pathlib.Path(name).resolve() for name in sys.argv[2:]]
    if os.geteuid() != 0:
        print("The packages are not tried: only root can make a fresh system.")
        sys.exit(77)
    ours = {field(package, "Package"): package for package in packages}
    expect(f"packages are missing: there are {', '.join(sorted(ours))}", {"zev", "libtarn-dev"} <= set(ours))
    version = field(ours["zev"], "Version")

    needed = {"cmake", "ninja-build", "g++", "pkg-config"}
    for package in packages:
        for choices in fresh_root.alternatives(field(package, "Depends")):
            if choices[0] not in ours:
                needed.add(choices[0])
    with tempfile.TemporaryDirectory(prefix="tarn-packages-") as folder:
        root = pathlib.Path(folder) / "root"
        root.mkdir()
        number = fresh_root.make(root, needed)
        before = contents(root)
        (root / "tmp/packages").mkdir()
        for package in packages:
            shutil.copy(package, root / "tmp/packages")
        names = [f"/tmp/packages/{package.name}" for package in packages]

        fresh_root.run(root, ["dpkg", "--install", *names])
        broken = fresh_root.run(root, ["dpkg", "--audit"])
        expect(f"dpkg finds packages that are not whole:\n{broken}", not broken)
        use_program(root, version)
        use_development_files(root, sources)
        if "python3-tarn" in ours:
            use_python(root)
        fresh_root.run(root, ["dpkg", "--install", *names])  # again, as an upgrade does it
        use_program(root, version)

        fresh_root.run(root, ["dpkg", "--purge", *ours])
        after = contents(root)
        left = sorted(set(after) - set(before))
        gone = sorted(set(before) - set(after))
        changed = sorted(path for path in set(before) & set(after) if before[path] != after[path])
        expect(f"after the packages were removed: left {left[:20]}, gone {gone[:20]}, changed {changed[:20]}",
               not left and not gone and not changed)
    print(f"packages: {' '.join(sorted(ours))} {version} installed, used, installed again and removed in a fresh system "
          f"of {number} packages")


if __name__ == "__main__":
    main()
