"""What doctests and the tests of this folder find: a virtual instrument that the store calls BenchSupply."""

import os
import pathlib

import pytest
from virtual_instrument import VirtualInstrument

import kvx2800t


@pytest.fixture(scope="session", autouse=True)
def instrument(tmp_path_factory):
    """It is switched on once for all tests."""
    virtual = VirtualInstrument()
    store = tmp_path_factory.mktemp("store") / "IviConfigurationStore.xml"
    text = pathlib.Path(os.environ["KVX_EXAMPLE_STORE"]).read_text(encoding="utf-8")
    store.write_text(text.replace("TCPIP0::127.0.0.1::5025::SOCKET", virtual.resource), encoding="utf-8")
    with pytest.MonkeyPatch.context() as environment:
        environment.setenv("IVI_MASTER_STORE", str(store))
        yield virtual
    virtual.close()


@pytest.fixture(autouse=True)
def names_of_doctests(doctest_namespace):
    """What the examples in docstrings need not import."""
    doctest_namespace["Supply"] = kvx2800t.Supply


@pytest.fixture
def supply(instrument):
    """A session, as a program opens it."""
    with kvx2800t.Supply("BenchSupply", reset=True) as session:
        instrument.control("clear-log")
        yield session
