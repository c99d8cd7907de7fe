#include "virtual_instrument/programs/list_template.h"

#include "virtual_instrument/common/instrument_clock.h"
#include "virtual_instrument/common/value_range.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kvxvirtual
{
namespace
{

/// Where point `index` of `count` stands on a way from 0 to 1 that has a point at both ends.
double alongWay(int index, int count)
{
    return count > 1 ? static_cast<double>(index) / (count - 1) : 1.0;
}

double sineAt(double phase)
{
    return (1.0 + std::sin(2.0 * std::numbers::pi * phase)) / 2.0;
}

/// Rises in the first `rising` of the period and falls in the rest.
double rampAt(double phase, double rising)
{
    return phase < rising ? phase / rising : (1.0 - phase) / (1.0 - rising);
}

/// A capacitor's charge on its way from 0 to 1.
double riseAt(double way, int rate)
{
    return rate == 0 ? way : std::expm1(-rate * way) / std::expm1(-rate);
}

/// The height of a point, from 0 to 1.
double heightAt(const ListTemplate& shape, int index)
{
    const int count = shape.points();
    const double phase = static_cast<double>(index) / count;
    const double way = alongWay(index, count);
    switch (static_cast<Waveform>(shape.waveform)) {
    case Waveform::Sine:
        return sineAt(phase);
    case Waveform::Pulse:
        return index % 2 == 0 ? 1.0 : 0.0;
    case Waveform::Ramp:
        return rampAt(phase, shape.symmetryPercent / 100.0);
    case Waveform::Up:
        return way;
    case Waveform::Down:
        return 1.0 - way;
    case Waveform::UpDown:
        return 1.0 - std::abs(2.0 * way - 1.0);
    case Waveform::Rise:
        return riseAt(way, shape.curveRate);
    case Waveform::Fall:
        return 1.0 - riseAt(way, shape.curveRate);
    }
    return 0.0;
}

/// What a pulse leaves of its period; in the clock's steps, so that it is exact.
double pauseSeconds(const ListTemplate& shape)
{
    return secondsOf(durationOf(shape.periodSeconds) - durationOf(shape.pulseSeconds));
}

double secondsAt(const ListTemplate& shape, int index)
{
    if (static_cast<Waveform>(shape.waveform) != Waveform::Pulse)
        return shape.intervalSeconds;
    return index % 2 == 0 ? shape.pulseSeconds : pauseSeconds(shape);
}

ListGroup groupAt(const ListTemplate& shape, int index)
{
    const double height = heightAt(shape, index);
    const double level = std::lerp(shape.minimum, shape.maximum, shape.inverted ? 1.0 - height : height);
    const double seconds = secondsAt(shape, index);
    if (static_cast<TemplateObject>(shape.object) == TemplateObject::Voltage)
        return {level, shape.fixedLevel, seconds};
    return {shape.fixedLevel, level, seconds};
}

} // namespace

int ListTemplate::points() const
{
    switch (static_cast<Waveform>(waveform)) {
    case Waveform::Pulse:
        return 2 * pulseCount;
    case Waveform::Rise:
    case Waveform::Fall:
        return curvePoints;
    default:
        return std::max(1, static_cast<int>(std::lround(periodSeconds / intervalSeconds)));
    }
}

ErrorCode ListTemplate::check(const ChannelLimits& limits) const
{
    const bool shapesVoltage = static_cast<TemplateObject>(object) == TemplateObject::Voltage;
    const double highest = shapesVoltage ? limits.volts : limits.amperes;
    const double highestFixed = shapesVoltage ? limits.amperes : limits.volts;
    if (maximum > highest || minimum > highest || fixedLevel > highestFixed)
        return ErrorCode::DataOutOfRange;
    const bool pauseIsTooShort =
        static_cast<Waveform>(waveform) == Waveform::Pulse && !ranges::kSeconds.holds(pauseSeconds(*this));
    return minimum > maximum || pauseIsTooShort ? ErrorCode::SettingsConflict : ErrorCode::None;
}

std::vector<ListGroup> ListTemplate::groups() const
{
    const int count = points();
    std::vector<ListGroup> made;
    made.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        made.push_back(groupAt(*this, (i + start - 1) % count));
    return made;
}

} // namespace kvxvirtual
