#include "virtual_instrument/scpi/line_assembler.h"

namespace kvxvirtual
{

std::optional<LineAssembler::Line> LineAssembler::next()
{
    while (true) {
        const auto end = buffer_.find('\n', consumed_);
        const bool complete = end != std::string::npos;
        const auto length = (complete ? end : buffer_.size()) - consumed_;
        if (!discarding_ && length > kLongestLine) {
            discarding_ = true;
            return Line{{}, true};
        }
        if (!complete) {
            buffer_.erase(0, discarding_ ? buffer_.size() : consumed_);
            consumed_ = 0;
            return std::nullopt;
        }
        const auto begin = consumed_;
        consumed_ = end + 1;
        if (!discarding_)
            return Line{buffer_.substr(begin, length), false};
        discarding_ = false;
    }
}

void LineAssembler::clear()
{
    buffer_.clear();
    consumed_ = 0;
    discarding_ = false;
}

} // namespace kvxvirtual
