#include "tools/kvx2800t/command_line/sampling.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace command_line
{

std::int64_t Schedule::advance(double now)
{
    const std::int64_t first = next_ + 1;
    next_ = std::max(first, static_cast<std::int64_t>(std::ceil(now / period_)));
    return next_ - first;
}

void GapWatch::miss(std::int64_t count, const std::string& reason)
{
    if (count <= 0)
        return;
    if (!open_)
        open_ = Gap{last_, 0.0, 0, reason};
    open_->missed += count;
}

std::optional<Gap> GapWatch::read(double time)
{
    auto gap = close(time);
    last_ = time;
    return gap;
}

std::optional<Gap> GapWatch::close(double time)
{
    auto gap = std::exchange(open_, std::nullopt);
    if (gap) {
        gap->to = time;
        ++gaps_;
        missed_ += gap->missed;
    }
    return gap;
}

} // namespace command_line
