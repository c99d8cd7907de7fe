#include "visa/transport/vxi11/record_reader.h"

#include "tests/support/visa/rpc_bytes.h"
#include "tests/support/visa/scripted_stream.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace kvxtest;
using namespace visa;

/// Gives the same byte for as long as anybody reads.
class EndlessStream : public ScriptedStream
{
public:
    explicit EndlessStream(ViByte byte) : byte_(byte) {}

    ViStatus readSome(std::span<ViByte> buffer, const Deadline&, std::size_t& count) noexcept override
    {
        std::fill(buffer.begin(), buffer.end(), byte_);
        count = buffer.size();
        return VI_SUCCESS;
    }

private:
    ViByte byte_;
};

class RecordReaderTest : public testing::Test
{
protected:
    ViStatus read(std::size_t size)
    {
        std::vector<ViByte> bytes(size);
        std::size_t count = 0;
        const ViStatus status = reader_.read(bytes, deadline_, count);
        bytes.resize(count);
        received_.assign(bytes.begin(), bytes.end());
        return status;
    }

    void arrive(const std::string& bytes, ViStatus status = VI_SUCCESS) { stream_.arrivals.push_back({status, bytes}); }

    ScriptedStream stream_;
    RecordReader reader_{stream_};
    Deadline deadline_{60000};
    std::string received_;
};

TEST_F(RecordReaderTest, PutsFragmentsTogether)
{
    arrive(fragment("abc", false) + fragment("", false) + fragment("de") + fragment("next"));
    ASSERT_EQ(reader_.next(deadline_), VI_SUCCESS);
    EXPECT_EQ(read(5), VI_SUCCESS);
    EXPECT_EQ(received_, "abcde");
    EXPECT_EQ(read(1), VI_ERROR_INP_PROT_VIOL);
    ASSERT_EQ(reader_.next(deadline_), VI_SUCCESS);
    EXPECT_EQ(read(4), VI_SUCCESS);
    EXPECT_EQ(received_, "next");
}

TEST_F(RecordReaderTest, GoesOnWhereATimeOutCutIt)
{
    const std::string records = fragment("abcdef", false) + fragment("gh") + fragment("next");
    for (std::size_t cut = 1; cut < records.size(); ++cut) {
        SCOPED_TRACE(cut);
        stream_.arrivals.clear();
        arrive(records.substr(0, cut));
        arrive("", VI_ERROR_TMO);
        arrive(records.substr(cut));
        RecordReader reader(stream_);
        while (reader.next(deadline_) == VI_ERROR_TMO)
            ;
        std::array<ViByte, 8> bytes{};
        std::size_t count = 0;
        ViStatus status = reader.read(bytes, deadline_, count);
        if (status == VI_ERROR_TMO) {
            std::size_t rest = 0;
            status = reader.read(std::span(bytes).subspan(count), deadline_, rest);
            count += rest;
        }
        EXPECT_EQ(status, VI_SUCCESS);
        EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)), "abcdefgh");
    }
}

TEST_F(RecordReaderTest, SkipsWhatIsLeftOfARecord)
{
    arrive(fragment(std::string(40000, 'x'), false).substr(0, 10000));
    arrive(std::string(10000, 'x'));
    arrive(std::string(16384, 'x'));
    arrive(std::string(3620, 'x') + fragment("y") + fragment("next"));
    ASSERT_EQ(reader_.next(deadline_), VI_SUCCESS);
    EXPECT_EQ(read(3), VI_SUCCESS);
    ASSERT_EQ(reader_.next(deadline_), VI_SUCCESS);
    EXPECT_EQ(read(4), VI_SUCCESS);
    EXPECT_EQ(received_, "next");
}

TEST_F(RecordReaderTest, AFloodEndsWithTheTime)
{
    // Fragments of nothing, and of more than anybody waits for.
    for (const ViByte byte : {ViByte{0}, ViByte{0x7F}, ViByte{0xFF}}) {
        EndlessStream flood(byte);
        RecordReader reader(flood);
        const Deadline brief(20);
        ViStatus status = VI_SUCCESS;
        while (status == VI_SUCCESS)
            status = reader.next(brief);
        EXPECT_EQ(status, VI_ERROR_TMO);
    }
}

} // namespace
