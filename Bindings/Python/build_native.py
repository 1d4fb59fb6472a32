"""Makes the extension module qerefine._native of what the header of the C library declares."""
import os
import pathlib
import re

import cffi

PREFIX = pathlib.Path(os.environ["QEREFINE_PREFIX"])


def read_declarations():
    """Returns the header as cffi takes it: without the preprocessor's lines and comments."""
    text = (PREFIX / "include" / "qerefine.h").read_text(encoding="utf-8")
    text = re.sub(r"^#ifdef __cplusplus$.*?^#endif$", "", text, flags=re.MULTILINE | re.DOTALL)
    text = re.sub(r"/\*.*?\*/|//[^\n]*", "", text, flags=re.DOTALL)
    text = re.sub(r"^#.*$", "", text, flags=re.MULTILINE)
    return text.replace("QE_API ", "")


ffibuilder = cffi.FFI()
ffibuilder.cdef(read_declarations())
ffibuilder.set_source(
    "qerefine._native",
    "#include <qerefine.h>",
    include_dirs=[str(PREFIX / "include")],
    library_dirs=[str(path.parent) for path in PREFIX.glob("lib*/**/libqerefine.so")],
    libraries=["qerefine"],
    extra_link_args=["-Wl,-rpath,$ORIGIN"],
    py_limited_api=True,
)
