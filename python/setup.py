# SPDX-License-Identifier: GPL-2.0-or-later
"""The package holds an extension that was built before, so the wheel is for one interpreter."""

from setuptools import Distribution, setup


class WithExtension(Distribution):
    def has_ext_modules(self) -> bool:
        return True


setup(distclass=WithExtension)
