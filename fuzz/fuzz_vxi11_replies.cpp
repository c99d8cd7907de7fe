// Any bytes as what a VXI-11 device sends, in reply to any calls: each call ends in a status, with a count that fits,
// and nothing is kept that would not end. The first bytes say which calls and how the bytes arrive.
#include "fuzz/input.h"
#include "tests/support/visa/scripted_stream.h"
#include "visa/transport/vxi11/vxi11_transport.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace
{

using namespace visa;
using kvxfuzz::require;

/// Gives a device's bytes in pieces, and then nothing any more.
class Device : public kvxtest::ScriptedStream
{
public:
    Device(std::string bytes, std::size_t piece) : bytes_(std::move(bytes)), piece_(piece) {}

    ViStatus readSome(std::span<ViByte> buffer, const Deadline&, std::size_t& count) noexcept override
    {
        count = std::min({buffer.size(), piece_, bytes_.size() - begin_});
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(begin_), count, buffer.begin());
        begin_ += count;
        return count == 0 ? VI_ERROR_TMO : VI_SUCCESS;
    }

    ViStatus writeAll(std::span<const ViByte> bytes, const Deadline&, std::size_t& count) noexcept override
    {
        count = bytes.size();
        return VI_SUCCESS;
    }

private:
    std::string bytes_;
    std::size_t piece_;
    std::size_t begin_ = 0;
};

std::string words(std::initializer_list<std::uint32_t> numbers)
{
    std::string bytes;
    for (const std::uint32_t number : numbers) {
        for (const unsigned shift : {24U, 16U, 8U, 0U})
            bytes += static_cast<char>(number >> shift);
    }
    return bytes;
}

void callOnce(Transport& transport, std::uint8_t which, AttributeValues& attributes)
{
    const Deadline deadline(100);
    const Terms terms{attributes, deadline};
    std::array<ViByte, 300> bytes{};
    const auto part = std::span(bytes).first(which);
    std::size_t count = 0;
    ViUInt16 status = 0;
    switch (which % 8) {
    case 0:
        transport.write(part, terms, count);
        return require(count <= part.size());
    case 1:
        attributes.set(VI_ATTR_TERMCHAR_EN, which % 16 == 1 ? VI_TRUE : VI_FALSE);
        return;
    case 2:
        static_cast<void>(transport.readStatusByte(terms, status));
        return require(status <= 0xFF);
    case 3:
        static_cast<void>(transport.clear(terms));
        return;
    case 4:
        static_cast<void>(transport.lock(terms, {}));
        return;
    default:
        transport.read(part, terms, count);
        return require(count <= part.size());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kCalls = 8;
    if (size <= kCalls)
        return 0;
    // A link first, which the bytes would hardly hit upon.
    const std::string link = words({0x80000028, 1, 1, 0, 0, 0, 0, 0, 1, 2, 64});
    const std::string bytes = (data[0] % 4 != 0 ? link : std::string()) + std::string(data + kCalls, data + size);
    std::unique_ptr<Transport> transport;
    const ViStatus opened =
        openVxi11Link(std::make_unique<Device>(bytes, 1 + data[1] % 64), "inst0", Deadline(100), transport);
    require((opened >= 0) == (transport != nullptr));
    AttributeValues attributes;
    for (std::size_t i = 2; transport != nullptr && i < kCalls; ++i)
        callOnce(*transport, data[i], attributes);
    return 0;
}
