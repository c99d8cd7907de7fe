#include "api/arguments.h"

#include "tests/support/driver/runtime_fixture.h"

#include <array>

namespace
{

using namespace kvxtest;

class Arguments : public RuntimeTest
{
public:
    /// Expects that the null pointer at a position of a list of names is called this.
    void expectName(const char* parameters, std::size_t position, const std::string& name)
    {
        SCOPED_TRACE(parameters);
        EXPECT_EQ(api::reportNullPointer(vi, "Function", parameters, position), code(0xBFFA0058));
        EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA0058),
                                          "Null pointer passed for function 'Function', parameter '" + name + "'."}));
        IviSession_ClearError(vi);
    }
};

TEST_F(Arguments, ANullPointerIsCalledByItsPlaceInTheListWithoutTheBlanksAroundIt)
{
    expectName("Only", 0, "Only");
    expectName("First, Second", 0, "First");
    expectName("First, Second", 1, "Second");
    expectName(" \tFirst \r\n,\r\n Second\t", 1, "Second");
    expectName("First,,Third", 1, "");
}

TEST_F(Arguments, ANullPointerBehindTheEndOfTheListIsCalledUnknown)
{
    expectName("Only", 1, "<unknown parameter>");
    expectName("First, Second", 2, "<unknown parameter>");
    expectName("", 7, "<unknown parameter>");
}

TEST_F(Arguments, TheFirstNullPointerIsReported)
{
    const int there = 0;
    const int* const missing = nullptr;
    EXPECT_EQ(api::checkPointers(vi, "Function", "A, B, C", &there, &there, &there), VI_SUCCESS);
    EXPECT_EQ(timesRecorded(), 0U);
    EXPECT_EQ(api::checkPointers(vi, "Function", "A, B, C", &there, missing, missing), code(0xBFFA0058));
    EXPECT_EQ(recorded().text, "Null pointer passed for function 'Function', parameter 'B'.");
    IviSession_ClearError(vi);
    EXPECT_EQ(api::checkPointers(vi, "Function", "A, B", &there, &there, missing), code(0xBFFA0058));
    EXPECT_EQ(recorded().text, "Null pointer passed for function 'Function', parameter '<unknown parameter>'.");
}

TEST_F(Arguments, ARefusedRecordIsTheStatusOfANullPointer)
{
    EXPECT_EQ(api::reportNullPointer(4711, "Function", "Only", 0), code(0xBFFA1190));
}

TEST_F(Arguments, ATextIsCutToItsBufferAndEndsAtItsOwnNul)
{
    const std::tuple<std::string, std::size_t, std::string> copies[] = {
        {"text", 6, "text"}, {"text", 5, "text"}, {"text", 4, "tex"},    {"text", 1, ""},
        {"", 1, ""},         {"", 5, ""},         {{"a\0b", 3}, 6, "a"}, {{"\0b", 2}, 6, ""},
    };
    for (const auto& [text, size, copied] : copies) {
        std::array<ViChar, 8> buffer{};
        buffer.fill('#');
        api::copyText(buffer.data(), size, text);
        const std::string rest(buffer.size() - copied.size() - 1, '#');
        EXPECT_EQ(std::string(buffer.data(), buffer.size()), copied + '\0' + rest) << text << size;
    }
}

} // namespace
