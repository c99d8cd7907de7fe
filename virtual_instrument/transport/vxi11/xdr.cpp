#include "virtual_instrument/transport/vxi11/xdr.h"

namespace kvxvirtual::vxi11
{
namespace
{

constexpr std::size_t kUnit = 4;

std::size_t fillTo(std::size_t length)
{
    return (kUnit - length % kUnit) % kUnit;
}

} // namespace

std::string_view XdrReader::take(std::size_t count)
{
    if (!good_ || count > bytes_.size()) {
        good_ = false;
        return {};
    }
    const auto taken = bytes_.substr(0, count);
    bytes_.remove_prefix(count);
    return taken;
}

std::uint32_t XdrReader::word()
{
    std::uint32_t number = 0;
    for (const char byte : take(kUnit))
        number = number << 8U | static_cast<unsigned char>(byte);
    return number;
}

std::string_view XdrReader::opaque(std::size_t longest)
{
    const std::size_t length = word();
    if (length > longest)
        good_ = false;
    const auto data = take(length);
    take(fillTo(length));
    return good_ ? data : std::string_view();
}

XdrWriter& XdrWriter::word(std::uint32_t number)
{
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        bytes_ += static_cast<char>(number >> shift);
    return *this;
}

XdrWriter& XdrWriter::opaque(std::string_view data)
{
    word(static_cast<std::uint32_t>(data.size()));
    bytes_ += data;
    bytes_.append(fillTo(data.size()), '\0');
    return *this;
}

} // namespace kvxvirtual::vxi11
