# SPDX-License-Identifier: GPL-2.0-or-later
"""Files that are written."""

from __future__ import annotations

import os
import pathlib
from contextlib import suppress
from typing import Union

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


def ending_of(path: Path) -> str:
    """The ending of a file name, in lower case without the point; empty for none."""
    return pathlib.Path(os.fsdecode(path)).suffix[1:].lower()


def write_whole(path: Path, content: bytes) -> None:
    """Writes a file in such a way that it is there in full or as it was."""
    file = pathlib.Path(os.path.realpath(os.fsdecode(path)))
    if file.exists() and not file.is_file():
        file.write_bytes(content)  # a pipe or a device
        return
    part = file.with_name(f".{file.name}.{os.getpid()}.part")
    try:
        part.write_bytes(content)
        part.replace(file)
    except OSError as error:
        if error.filename is None:
            raise
        # It names the part, of which nobody knows.
        raise OSError(error.errno, error.strerror, os.fsdecode(path)) from None
    finally:
        with suppress(OSError):
            part.unlink()
