"""A wheel with the driver in it is for one kind of machine, but for every Python."""

from pathlib import Path

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

HAS_DRIVER = Path(__file__).parent.joinpath("kvx2800t", "lib").exists()


class Package(Distribution):
    def has_ext_modules(self):
        return HAS_DRIVER


class Wheel(bdist_wheel):
    def get_tag(self):
        python, abi, platform = super().get_tag()
        return ("py3", "none", platform) if HAS_DRIVER else (python, abi, platform)


setup(distclass=Package, cmdclass={"bdist_wheel": Wheel})
