#pragma once

#include <visa.h>

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>

namespace kvxtest
{

/// A resource manager session that is closed at the end of the test, with all that was opened through it.
class VisaTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(viOpenDefaultRM(&manager_), VI_SUCCESS); }
    void TearDown() override { viClose(manager_); }

    /// Opens a resource that is expected to be there.
    ViSession open(const std::string& resource)
    {
        ViSession session = VI_NULL;
        EXPECT_EQ(viOpen(manager_, resource.c_str(), VI_NULL, 0, &session), VI_SUCCESS) << resource;
        return session;
    }

    ViSession manager_ = VI_NULL;
};

/// What a viRead gave.
struct ReadResult
{
    ViStatus status;
    std::string bytes;
    bool operator==(const ReadResult&) const = default;
};

inline void PrintTo(const ReadResult& result, std::ostream* out)
{
    *out << std::hex << static_cast<ViUInt32>(result.status) << ' ' << testing::PrintToString(result.bytes);
}

inline ReadResult read(ViSession session, ViUInt32 count)
{
    constexpr ViByte kUntouched = 0xEE;
    std::basic_string<ViByte> buffer(count + 1, kUntouched);
    ViUInt32 received = 12345;
    const ViStatus status = viRead(session, buffer.data(), count, &received);
    EXPECT_LE(received, count);
    EXPECT_EQ(buffer.at(received), kUntouched) << "bytes were stored that retCnt does not tell of";
    return {status, std::string(buffer.begin(), buffer.begin() + received)};
}

inline ViStatus write(ViSession session, const std::string& bytes, ViUInt32* written = nullptr)
{
    const std::basic_string<ViByte> data(bytes.begin(), bytes.end());
    return viWrite(session, data.data(), static_cast<ViUInt32>(data.size()), written);
}

template <class Value>
Value attribute(ViSession session, ViAttr name)
{
    Value value{};
    EXPECT_EQ(viGetAttribute(session, name, &value), VI_SUCCESS) << std::hex << name;
    return value;
}

inline std::string textAttribute(ViSession session, ViAttr name)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(viGetAttribute(session, name, text.data()), VI_SUCCESS) << std::hex << name;
    return text.data();
}

} // namespace kvxtest
