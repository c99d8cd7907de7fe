"""What goes wrong: calls that fail, calls that warn, and a driver that is not there."""

from __future__ import annotations


class Error(Exception):
    """A call that has failed; `kvx2800t` has a class for each status of the driver, which derives from this one.

    `code` is the status as KVX2800T.h writes it, `text` what was recorded, `function` the function that returned it.
    """

    def __init__(self, code: int, text: str, function: str = "") -> None:
        # What it is made of, so that it can be pickled.
        super().__init__(code, text, function)
        self.code = code
        self.text = text
        self.function = function

    def __str__(self) -> str:
        place = f"{self.function}: " if self.function else ""
        return f"{place}0x{self.code:08X} {self.text}"


class StatusWarning(UserWarning):
    """A call that has ended with a warning."""


class DriverNotInstalled(OSError):
    """The driver's library could not be loaded. `places` has each that was tried, with the reason."""

    def __init__(self, places: list[tuple[str, str]]) -> None:
        super().__init__(places)
        self.places = places

    def __str__(self) -> str:
        tried = "".join(f"\n  {place}: {reason}" for place, reason in self.places)
        return (
            f"the KVX2800T driver is not installed, or its library cannot be loaded. Looked at:{tried}\n"
            "Install the driver, or name its library by the environment variable KVX2800T_LIBRARY."
        )
