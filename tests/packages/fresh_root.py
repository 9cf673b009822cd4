"""A fresh Debian system in a folder, made without a network from the packages that this machine has installed.

It contains the essential packages, the packages that are asked for, and everything that these depend on: their files as
they are here, and their entries in the database of dpkg. So `dpkg --install` in it checks dependencies as on a real
system, and nothing else of this machine is there.
"""
import os
import pathlib
import re
import shutil
import subprocess

STATUS = pathlib.Path("/var/lib/dpkg/status")
INFO = pathlib.Path("/var/lib/dpkg/info")


def installed_packages():
    """name -> fields, of every package that is installed here."""
    found = {}
    for paragraph in STATUS.read_text(encoding="utf-8").split("\n\n"):
        fields = dict(re.findall(r"^([A-Za-z-]+): *(.*)$", paragraph, re.MULTILINE))
        if fields.get("Status", "").endswith(" installed"):
            fields["paragraph"] = paragraph.strip("\n")
            found[fields["Package"]] = fields
    return found


def alternatives(field):
    """The names in a field of dependencies: a list of lists, one of each has to be there."""
    for group in field.split(","):
        names = [re.split(r"[ (:\[]", choice.strip(), maxsplit=1)[0] for choice in group.split("|")]
        if names != [""]:
            yield names


def closure(wanted, packages):
    """The wanted packages and all that they depend on."""
    providers = {}
    for name, fields in packages.items():
        for names in alternatives(fields.get("Provides", "")):
            providers.setdefault(names[0], name)
    found, open_names = set(), list(wanted)
    while open_names:
        name = open_names.pop()
        if name in found:
            continue
        found.add(name)
        fields = packages[name]
        for choices in alternatives(fields.get("Depends", "") + "," + fields.get("Pre-Depends", "")):
            known = [choice if choice in packages else providers.get(choice) for choice in choices]
            known = [choice for choice in known if choice]
            if not known:
                raise LookupError(f"{name} needs {' or '.join(choices)}, which is not installed here")
            open_names.append(known[0])
    return found


def info_files(name, fields):
    stem = f"{name}:{fields['Architecture']}" if fields.get("Multi-Arch") == "same" else name
    return [path for path in INFO.glob(f"{stem}.*") if path.name[len(stem) + 1:].isalnum()]


def make(root, wanted):
    """Makes the system in a folder that does not exist yet. Needs root. Returns the number of its packages."""
    root = pathlib.Path(root)
    packages = installed_packages()
    essential = {name for name, fields in packages.items() if fields.get("Essential") == "yes"}
    missing = sorted(set(wanted) - set(packages))
    if missing:
        raise LookupError(f"not installed here: {' '.join(missing)}")
    chosen = sorted(closure(essential | set(wanted), packages))

    for name in ("usr/bin", "usr/sbin", "usr/lib", "usr/lib64", "dev", "proc", "tmp", "etc", "var/lib/dpkg/info",
                 "var/lib/dpkg/updates", "var/log", "root"):
        (root / name).mkdir(parents=True)
    for name in ("bin", "sbin", "lib", "lib64"):
        (root / name).symlink_to(f"usr/{name}")

    listed = set()
    for name in chosen:
        for path in info_files(name, packages[name]):
            shutil.copy2(path, root / "var/lib/dpkg/info" / path.name)
            if path.suffix == ".list":
                listed.update(path.read_text(encoding="utf-8").splitlines())
    listed = sorted(path for path in listed if os.path.lexists(path) and path not in ("/.", "/"))
    given = "\0".join(path.lstrip("/") for path in listed)
    packed = subprocess.Popen(["tar", "-C", "/", "--no-recursion", "--null", "-T", "-", "-c"], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE)
    unpacked = subprocess.Popen(["tar", "-C", root, "--keep-directory-symlink", "-x"], stdin=packed.stdout)
    packed.stdout.close()
    with packed.stdin as names:
        names.write(given.encode())
    if packed.wait() or unpacked.wait():
        raise OSError("the files of the packages cannot be copied")
    # Scripts of packages make these: the links of programs with alternatives, and the accounts.
    for folder in ("/usr/bin", "/etc/alternatives"):
        for link in pathlib.Path(folder).iterdir():
            target = root / folder.lstrip("/") / link.name
            if link.is_symlink() and not os.path.lexists(target) and os.readlink(link).startswith(("/etc/alt", "/usr/")):
                if os.path.lexists(root / os.path.realpath(link).lstrip("/")):
                    target.parent.mkdir(parents=True, exist_ok=True)
                    target.symlink_to(os.readlink(link))
    for name in ("passwd", "group"):
        shutil.copy2(f"/etc/{name}", root / "etc" / name)
    for name in ("diversions", "statoverride", "available"):
        (root / "var/lib/dpkg" / name).touch()
    (root / "var/lib/dpkg/status").write_text("\n\n".join(packages[name]["paragraph"] for name in chosen) + "\n\n",
                                              encoding="utf-8")
    shutil.copy2("/var/lib/dpkg/arch", root / "var/lib/dpkg/arch") if os.path.exists("/var/lib/dpkg/arch") else None
    os.mknod(root / "dev/null", 0o666 | 0o020000, os.makedev(1, 3))
    os.chmod(root / "dev/null", 0o666)
    run(root, ["ldconfig"])
    run(root, ["dpkg", "--triggers-only", "--pending"])
    return len(chosen)


def run(root, command, folder="/"):
    """Runs a command in the system and returns its standard output. Raises an error with all output if it fails."""
    done = subprocess.run(["chroot", root, "env", "-i", "PATH=/usr/sbin:/usr/bin", "HOME=/root", "LC_ALL=C.UTF-8",
                           "DEBIAN_FRONTEND=noninteractive", "PYTHONDONTWRITEBYTECODE=1", "sh", "-c",
                           'cd "$0" && exec "$@"', folder, *command],
                          stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)
    if done.returncode:
        raise ChildProcessError(f"{' '.join(command)} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout
