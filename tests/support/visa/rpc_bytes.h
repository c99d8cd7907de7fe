#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvxtest
{

/// Numbers as XDR has them.
inline std::string words(const std::vector<std::uint32_t>& numbers)
{
    std::string bytes;
    for (const std::uint32_t number : numbers) {
        for (const unsigned shift : {24U, 16U, 8U, 0U})
            bytes += static_cast<char>(number >> shift);
    }
    return bytes;
}

/// Opaque data or a string, with its length and padding.
inline std::string opaque(std::string_view data)
{
    return words({static_cast<std::uint32_t>(data.size())}) + std::string(data) +
           std::string((4 - data.size() % 4) % 4, '\0');
}

inline std::uint32_t wordIn(std::string_view bytes, std::size_t index)
{
    std::uint32_t number = 0;
    for (const char c : bytes.substr(index * 4, 4))
        number = number << 8U | static_cast<unsigned char>(c);
    return number;
}

/// One fragment of a record.
inline std::string fragment(const std::string& bytes, bool isLast = true)
{
    return words({static_cast<std::uint32_t>(bytes.size()) | (isLast ? 0x80000000U : 0U)}) + bytes;
}

/// A reply to a call that was carried out, as a record.
inline std::string reply(std::uint32_t number, const std::string& result)
{
    return fragment(words({number, 1, 0, 0, 0, 0}) + result);
}

struct RpcCall
{
    std::uint32_t number = 0;
    std::uint32_t program = 0;
    std::uint32_t version = 0;
    std::uint32_t procedure = 0;
    std::string arguments{};
};

/// The call in a record, whose credentials and verifier are empty.
inline RpcCall callIn(const std::string& record)
{
    constexpr std::size_t kHeaderWords = 10;
    return {wordIn(record, 0), wordIn(record, 3), wordIn(record, 4), wordIn(record, 5),
            record.substr(kHeaderWords * 4)};
}

} // namespace kvxtest
