#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kvxvirtual::vxi11
{

/// Reads values of XDR (RFC 4506) one after the other. What is not there, or longer than it may be, makes it fail, and
/// every value behind that is zero or empty.
class XdrReader
{
public:
    explicit XdrReader(std::string_view bytes) : bytes_(bytes) {}

    bool good() const { return good_; }
    /// What has not been read.
    std::string_view rest() const { return bytes_; }

    std::uint32_t word();
    bool flag() { return word() != 0; }
    /// Opaque data or a string; longer than `longest` is a failure.
    std::string_view opaque(std::size_t longest);

private:
    std::string_view take(std::size_t count);

    std::string_view bytes_;
    bool good_ = true;
};

/// Numbers, one after the other.
class XdrWriter
{
public:
    XdrWriter& word(std::uint32_t number);
    XdrWriter& opaque(std::string_view data);

    const std::string& bytes() const { return bytes_; }

private:
    std::string bytes_;
};

} // namespace kvxvirtual::vxi11
