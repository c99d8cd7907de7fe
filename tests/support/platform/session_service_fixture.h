#pragma once

#include <IviCShared.h>

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>

namespace kvxtest
{

/// A session, in a thread whose error record is empty.
class SessionService : public testing::Test
{
protected:
    void SetUp() override
    {
        IviSession_ClearError(VI_NULL);
        ASSERT_EQ(IviSession_New(&session_), IVI_SUCCESS);
    }

    void TearDown() override
    {
        IviSession_Dispose(session_);
        IviSession_ClearError(VI_NULL);
    }

    ViSession session_ = 0;
};

/// What an error record holds.
struct Record
{
    ViStatus code;
    std::string text;
    bool operator==(const Record&) const = default;
};

inline void PrintTo(const Record& record, std::ostream* out)
{
    *out << record.code << " \"" << record.text << '"';
}

inline Record take(ViSession handle)
{
    std::array<ViChar, 256> text{};
    ViStatus code = 0;
    EXPECT_EQ(IviSession_GetError(handle, text.size(), &code, text.data()), IVI_SUCCESS);
    return {code, text.data()};
}

} // namespace kvxtest
