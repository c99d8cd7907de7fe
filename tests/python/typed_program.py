"""What a type checker sees in a program: a line that is wrong says so, and warn_unused_ignores finds the others."""

from kvx2800t import Channel, CurrentLimitBehavior, Reading, Supply, ValueOutOfRangeError

with Supply("BenchSupply", io_timeout=500) as supply:
    rail: Channel = supply.channels["CH1"]
    several: Channel = supply.channels[1:3]
    volts: float = rail.voltage_level
    is_on: bool = rail.output_enabled
    behavior: CurrentLimitBehavior = rail.current_limit_behavior
    reading: Reading = rail.measure()
    cycles: int = rail.list.cycles
    rail.current_limit_behavior = CurrentLimitBehavior.TRIP
    rail.voltage_level = 5
    rail.output_enabled = "off"  # type: ignore[assignment]
    rail.pairing = "off"  # type: ignore[assignment]
    text: str = rail.voltage_level  # type: ignore[assignment]
    supply.channels[1]  # type: ignore[index]
    supply.configure_voltage_level(1, 5.0)  # type: ignore[arg-type]
    rail.voltage  # type: ignore[attr-defined]
    try:
        rail.voltage_level = 100.0
    except ValueOutOfRangeError as error:
        code: int = error.code

Supply("BenchSupply", banana=True)  # type: ignore[call-arg]
Supply("BenchSupply", simulate="off")  # type: ignore[arg-type]
