#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kvxvirtual
{

/// Cuts a stream of bytes into lines.
class LineAssembler
{
public:
    /// The input buffer's size: a line may have this many bytes before its line feed.
    static constexpr std::size_t kLongestLine = 4096;

    struct Line
    {
        /// Without the line feed.
        std::string bytes;
        /// More than kLongestLine bytes came without a line feed; `bytes` is empty, and what comes up to the next line
        /// feed is dropped.
        bool overrun = false;
    };

    void append(std::string_view bytes) { buffer_ += bytes; }

    /// Forgets what has come of a line, as if the last line were complete.
    void clear();

    /// The next complete line or overrun, if there is one. To be called until there is none before more is appended.
    std::optional<Line> next();

private:
    std::string buffer_;
    std::size_t consumed_ = 0;
    bool discarding_ = false;
};

} // namespace kvxvirtual
