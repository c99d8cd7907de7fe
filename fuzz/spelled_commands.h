#pragma once

#include "virtual_instrument/scpi/command_table.h"

#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvxfuzz
{

/// The headers of all commands as a client writes them: `SOURce2:VOLTage?`.
inline std::vector<std::string> spelledHeaders()
{
    std::vector<std::string> headers;
    for (const auto part : kvxvirtual::commandTable()) {
        for (const kvxvirtual::Command& command : part) {
            std::string header;
            bool isAlternative = false;
            for (const char c : command.pattern) {
                isAlternative = c == '|' || (isAlternative && c != ':' && c != '?');
                if (c == '<')
                    header += '2';
                else if (!isAlternative && c != '>' && !(c == 'n' && header.ends_with('2')))
                    header += c;
            }
            headers.push_back(header);
        }
    }
    return headers;
}

/// Bytes as messages: below 0x80 they stand for themselves, others for a word, so that generated inputs get past the
/// parser. 0x80 to 0x9F and the byte behind them stand for the header of a command.
inline std::string spelledMessages(const std::uint8_t* data, std::size_t size)
{
    static const auto& headers = *new std::vector<std::string>(spelledHeaders());
    static constexpr std::array<std::string_view, 32> kWords{
        " CH1", " CH2",  " CH3",   " CH4",  " SER", " PAR",  "ALL", ",",      ",ON",   ",OFF",   " ON",
        " OFF", "\n",    ";",      ";:",    " 1",   ",2",    " 5",  ",0.001", ",0.5",  " 512",   " 1e9",
        " -1",  " SINE", " PULSE", " RISE", " V",   " LAST", " 0",  " \"x\"", " 3600", " NORMAL"};
    std::string text;
    for (std::size_t at = 0; at < size; ++at) {
        const std::uint8_t byte = data[at];
        if (byte < 0x80)
            text += static_cast<char>(byte);
        else if (byte >= 0xA0)
            text += kWords[byte % kWords.size()];
        else
            text += headers[(byte * 256U + (++at < size ? data[at] : 0U)) % headers.size()];
    }
    return text;
}

} // namespace kvxfuzz
