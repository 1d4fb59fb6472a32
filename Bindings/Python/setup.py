"""Builds the package; Scripts/wheel.sh calls it where the library lies.

QEREFINE_PREFIX names an installed tree of the C library, which goes into the package.
"""
import os
import pathlib
import shutil

from setuptools import setup

HERE = pathlib.Path(__file__).resolve().parent
PREFIX = pathlib.Path(os.environ["QEREFINE_PREFIX"])
LIBRARY = next(PREFIX.glob("lib*/**/libqerefine.so.[0-9]")).resolve()


def read_version():
    """Returns the version that the tree's pkg-config file tells."""
    text = next(PREFIX.glob("lib*/**/pkgconfig/qerefine.pc")).read_text(encoding="utf-8")
    return next(line.split()[1] for line in text.splitlines() if line.startswith("Version:"))


# Under the name by which the extension module looks for it, beside which it is found.
SONAME = ".".join(LIBRARY.name.split(".")[:3])
shutil.copyfile(LIBRARY, HERE / "qerefine" / SONAME)

setup(
    name="qerefine",
    version=read_version(),
    description="Which joins connect the subjects of a report, and what they risk",
    packages=["qerefine"],
    package_data={"qerefine": ["py.typed", "*.pyi", SONAME]},
    python_requires=">=3.9",
    install_requires=["cffi>=1.12"],
    cffi_modules=["build_native.py:ffibuilder"],
    options={"bdist_wheel": {"py_limited_api": "cp39"}},
    zip_safe=False,
)
