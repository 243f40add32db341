#!/usr/bin/env python3
"""Makes a wheel of the package, with the library, the simulator, and the libraries of both that a machine may lack.

usage: make_wheel.py BUILD VERSION TAG OUTPUT

BUILD is the folder in which the build puts the package together. Writes OUTPUT/zk_base-VERSION-TAG.whl. With
SOURCE_DATE_EPOCH set, the same files make the same wheel.
"""
import base64
import hashlib
import os
import re
import subprocess
import sys
import time
import zipfile
from pathlib import Path

BROUGHT = ("libcjson", "liborocos-kdl")  # all others come with the C++ runtime


def libraries_of(program):
    """Paths of the libraries that come along, by their names for the loader."""
    found = re.findall(r"(\S+) => (/\S+)", subprocess.run(["ldd", program], text=True, capture_output=True).stdout)
    return {name: Path(path).resolve() for name, path in found if name.startswith(BROUGHT)}


def notice_of(library):
    """The copyright notice of a library of the distribution, or none."""
    package = subprocess.run(["dpkg-query", "-S", library], text=True, capture_output=True).stdout.split(":")[0]
    notice = Path("/usr/share/doc") / package / "copyright"
    return (f"{package}.txt", notice) if package and notice.exists() else None


def main(build, version, tag, output):
    build, info = Path(build), f"zk_base-{version}.dist-info"
    files = {f"zk_base/{one.name}": one.resolve() for one in (build / "zk_base").iterdir() if one.is_file()}
    files.update({f"{info}/{one.name}": one.resolve() for one in (build / info).iterdir()})
    for program in ("zk_base/libZK_Base.so.1", "zk_base/zk_simulator"):
        for name, path in libraries_of(files[program]).items():
            files[f"zk_base/{name}"] = path
            if notice := notice_of(path):
                files[f"{info}/licenses/{notice[0]}"] = notice[1]
    contents = {name: path.read_bytes() for name, path in files.items()}
    contents[f"{info}/WHEEL"] = (f"Wheel-Version: 1.0\nGenerator: make_wheel\nRoot-Is-Purelib: false\n"
                                 f"Tag: {tag}\n").encode()
    record = "".join(f"{name},sha256={base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b'=').decode()},"
                     f"{len(data)}\n" for name, data in sorted(contents.items()))
    contents[f"{info}/RECORD"] = f"{record}{info}/RECORD,,\n".encode()
    when = time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time())))[:6]
    Path(output).mkdir(parents=True, exist_ok=True)
    with zipfile.ZipFile(Path(output) / f"zk_base-{version}-{tag}.whl", "w", zipfile.ZIP_DEFLATED) as wheel:
        for name, data in sorted(contents.items()):
            entry = zipfile.ZipInfo(name, when)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = (0o100755 if name.endswith("/zk_simulator") else 0o100644) << 16
            wheel.writestr(entry, data)


if __name__ == "__main__":
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    main(*sys.argv[1:])
