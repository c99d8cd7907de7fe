#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace kvxtest
{

/// An answer of multicast DNS, put together by hand: names are dotted and not shortened.
class DnsAnswer
{
public:
    static constexpr int kAddress = 1;
    static constexpr int kPointer = 12;
    static constexpr int kText = 16;
    static constexpr int kService = 33;

    explicit DnsAnswer(int flags = 0x8400) { number(0).number(flags).number(0).number(0).number(0).number(0); }

    DnsAnswer& pointer(const std::string& name, const std::string& target)
    {
        return record(name, kPointer, encoded(target));
    }

    DnsAnswer& service(const std::string& name, const std::string& target, int port)
    {
        DnsAnswer contents(std::string{});
        contents.number(0).number(0).number(port);
        return record(name, kService, contents.bytes() + encoded(target));
    }

    DnsAnswer& address(const std::string& name, std::initializer_list<int> parts)
    {
        std::string contents;
        for (const int part : parts)
            contents += static_cast<char>(part);
        return record(name, kAddress, contents);
    }

    /// Appends any record and counts it.
    DnsAnswer& record(const std::string& name, int type, const std::string& contents, int recordClass = 0x8001)
    {
        bytes_ += encoded(name);
        number(type).number(recordClass).number(0).number(120).number(static_cast<int>(contents.size()));
        bytes_ += contents;
        ++bytes_[7];
        return *this;
    }

    const std::string& bytes() const { return bytes_; }
    std::vector<std::uint8_t> message() const { return {bytes_.begin(), bytes_.end()}; }

    static std::string encoded(const std::string& dotted)
    {
        std::string name;
        for (std::size_t begin = 0; begin < dotted.size();) {
            const std::size_t end = std::min(dotted.find('.', begin), dotted.size());
            name += static_cast<char>(end - begin);
            name += dotted.substr(begin, end - begin);
            begin = end + 1;
        }
        return name + '\0';
    }

private:
    explicit DnsAnswer(std::string bytes) : bytes_(std::move(bytes)) {}

    DnsAnswer& number(int value)
    {
        bytes_ += static_cast<char>(value >> 8);
        bytes_ += static_cast<char>(value);
        return *this;
    }

    std::string bytes_{};
};

} // namespace kvxtest
