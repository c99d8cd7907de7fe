#include "tests/tools/visatrace/loaded_trace.h"
#include "tools/visatrace/functions.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <limits>
#include <thread>
#include <type_traits>

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

/// Places for what functions store and take from, one for each argument.
class Places
{
public:
    Places()
    {
        for (auto& place : places_)
            place.fill(0);
    }

    /// A number that is different for each argument and uses all of its bits, or a place.
    template <class T>
    T next()
    {
        auto& place = places_[index_++];
        if constexpr (std::is_function_v<std::remove_pointer_t<T>>)
            return reinterpret_cast<T>(place.data());
        else if constexpr (std::is_pointer_v<T>)
            return static_cast<T>(static_cast<void*>(place.data()));
        else
            return static_cast<T>(std::numeric_limits<T>::max() - static_cast<T>(index_));
    }

private:
    alignas(std::max_align_t) std::array<std::array<unsigned char, 64>, 10> places_;
    std::size_t index_ = 0;
};

template <class T>
std::uint64_t asNumber(const T& value)
{
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<std::uintptr_t>(value);
    else
        return static_cast<std::uint64_t>(value);
}

class VisaTrace : public testing::Test
{
protected:
    VisaTrace() { recording() = {}; }

    Recording& recording() const { return behind_.find<RecordingOfThread>("recordingOfThread")(); }

    /// The status that the trace returns; success for what returns nothing.
    template <class Result, class... Parameters>
    ViStatus call(Result (*function)(Parameters...), Parameters... arguments)
    {
        if constexpr (!std::is_void_v<Result>)
            return function(arguments...);
        function(arguments...);
        return recording().status;
    }

    template <class Result, class... Parameters>
    void expectForwarded(const char* name, Result (*function)(Parameters...), ViStatus status)
    {
        SCOPED_TRACE(name);
        Places places;
        const std::tuple<Parameters...> arguments{places.next<Parameters>()...};
        std::vector<std::uint64_t> numbers;
        std::apply([&](const auto&... values) { (numbers.push_back(asNumber(values)), ...); }, arguments);

        recording() = {};
        recording().status = status;
        recording().errnoAfter = EPROTO;
        errno = EDOM;
        const auto forward = [&](Parameters... values) { return call(function, values...); };
        EXPECT_EQ(std::apply(forward, arguments), status);
        EXPECT_EQ(errno, EPROTO);
        EXPECT_THAT(recording().calls, ElementsAre(RecordedCall{name, numbers, EDOM}));
    }

    SharedLibrary behind_{KVX_RECORDING_VISA};
    LoadedTrace trace_{KVX_RECORDING_VISA};
};

TEST_F(VisaTrace, ForwardsTheArgumentsOfEachFunctionAndItsStatusUnchanged)
{
    ViStatus status = 0x3FFF0000;
    std::size_t count = 0;
#define EXPECT_FORWARDED(result, name, ...)                                                                            \
    expectForwarded(#name, trace_.find<decltype(name)>(#name), ++status);                                              \
    ++count;
    KVX_VISATRACE_FUNCTIONS(EXPECT_FORWARDED)
    EXPECT_EQ(count, 97U);
    EXPECT_THAT(trace_.lines(), SizeIs(97));
}

TEST_F(VisaTrace, ForwardsErrorsUnchanged)
{
    for (const ViStatus status : {VI_ERROR_TMO, VI_ERROR_INV_OBJECT, static_cast<ViStatus>(_VI_ERROR)}) {
        expectForwarded("viRead", trace_.find<decltype(viRead)>("viRead"), status);
        expectForwarded("viClose", trace_.find<decltype(viClose)>("viClose"), status);
    }
}

TEST_F(VisaTrace, ForwardsFurtherArgumentsAsAList)
{
    recording().found = "12 abc";
    int number = 0;
    std::array<char, 10> word{};
    EXPECT_EQ(trace_.find<decltype(viPrintf)>("viPrintf")(7, "%s %d %.1f\n", "VOLT", 5, 2.5), VI_SUCCESS);
    EXPECT_EQ(recording().written, "VOLT 5 2.5\n");
    EXPECT_EQ(trace_.find<decltype(viScanf)>("viScanf")(7, "%d %9s", &number, word.data()), VI_SUCCESS);
    EXPECT_EQ(number, 12);
    EXPECT_STREQ(word.data(), "abc");

    std::array<ViByte, 20> text{};
    EXPECT_EQ(trace_.find<decltype(viSPrintf)>("viSPrintf")(7, text.data(), "%d-%d", 1, 2), VI_SUCCESS);
    EXPECT_STREQ(reinterpret_cast<const char*>(text.data()), "1-2");
    EXPECT_EQ(trace_.find<decltype(viSScanf)>("viSScanf")(7, text.data(), "1-%d", &number), VI_SUCCESS);
    EXPECT_EQ(number, 2);

    recording().status = VI_ERROR_TMO;
    EXPECT_EQ(trace_.find<decltype(viQueryf)>("viQueryf")(7, "*IDN?", "%d %9s", &number, word.data()), VI_ERROR_TMO);
    EXPECT_EQ(recording().written, "*IDN?");
    EXPECT_EQ(number, 12);

    EXPECT_THAT(trace_.lines(),
                ElementsAre(R"(viPrintf(vi=7, writeFmt="%s %d %.1f\n") = 0x00000000 VI_SUCCESS)",
                            R"(viScanf(vi=7, readFmt="%d %9s") = 0x00000000 VI_SUCCESS)",
                            R"(viSPrintf(vi=7, writeFmt="%d-%d") = 0x00000000 VI_SUCCESS, buf="1-2")",
                            R"(viSScanf(vi=7, buf="1-2", readFmt="1-%d") = 0x00000000 VI_SUCCESS)",
                            R"(viQueryf(vi=7, writeFmt="*IDN?", readFmt="%d %9s") = 0xBFFF0015 VI_ERROR_TMO)"));
}

/// A function that has got its arguments as a list already.
template <class Function, class... Arguments>
ViStatus callWithList(Function* function, ViSession vi, ViConstString format, ...)
{
    va_list params;
    va_start(params, format);
    const ViStatus status = function(vi, format, params);
    va_end(params);
    return status;
}

TEST_F(VisaTrace, ForwardsListsOfArguments)
{
    int number = 0;
    recording().found = "34";
    EXPECT_EQ(callWithList(trace_.find<decltype(viVPrintf)>("viVPrintf"), 7, "%s %d", "CURR", 3), VI_SUCCESS);
    EXPECT_EQ(recording().written, "CURR 3");
    EXPECT_EQ(callWithList(trace_.find<decltype(viVScanf)>("viVScanf"), 7, "%d", &number), VI_SUCCESS);
    EXPECT_EQ(number, 34);
    EXPECT_THAT(trace_.lines(), ElementsAre(R"(viVPrintf(vi=7, writeFmt="%s %d") = 0x00000000 VI_SUCCESS)",
                                            R"(viVScanf(vi=7, readFmt="%d") = 0x00000000 VI_SUCCESS)"));
}

/// What a function stores where an argument says.
template <class T>
void storeAt(std::uint64_t argument, const T& value)
{
    std::memcpy(reinterpret_cast<void*>(static_cast<std::uintptr_t>(argument)), &value, sizeof(value));
}

void storeTextAt(std::uint64_t argument, const char* text)
{
    std::memcpy(reinterpret_cast<void*>(static_cast<std::uintptr_t>(argument)), text, std::strlen(text) + 1);
}

TEST_F(VisaTrace, TellsASession)
{
    recording().store = [](const auto& arguments) { storeAt(arguments.back(), ViSession(12)); };
    ViSession session = 0;
    EXPECT_EQ(trace_.find<decltype(viOpenDefaultRM)>("viOpenDefaultRM")(&session), VI_SUCCESS);
    EXPECT_EQ(trace_.find<decltype(viOpen)>("viOpen")(12, "ASRL1::INSTR", VI_EXCLUSIVE_LOCK, 500, &session),
              VI_SUCCESS);
    recording().status = VI_ERROR_RSRC_NFOUND;
    EXPECT_EQ(trace_.find<decltype(viOpen)>("viOpen")(12, nullptr, VI_NULL, 0, &session), VI_ERROR_RSRC_NFOUND);
    recording().store = nullptr;
    EXPECT_EQ(trace_.find<decltype(viClose)>("viClose")(12), VI_ERROR_RSRC_NFOUND);
    EXPECT_THAT(
        trace_.lines(),
        ElementsAre("viOpenDefaultRM() = 0x00000000 VI_SUCCESS, vi=12",
                    R"(viOpen(sesn=12, name="ASRL1::INSTR", mode=1, timeout=500) = 0x00000000 VI_SUCCESS, vi=12)",
                    "viOpen(sesn=12, name=null, mode=0, timeout=0) = 0xBFFF0011 VI_ERROR_RSRC_NFOUND",
                    "viClose(vi=12) = 0xBFFF0011 VI_ERROR_RSRC_NFOUND"));
}

TEST_F(VisaTrace, TellsTheBytesOfAWrite)
{
    auto* const write = trace_.find<decltype(viWrite)>("viWrite");
    recording().store = [](const auto& arguments) { storeAt(arguments[3], ViUInt32(3)); };
    ViUInt32 count = 0;
    const std::vector<ViByte> bytes(1000, 0x80);
    EXPECT_EQ(write(1, reinterpret_cast<ViConstBuf>("*IDN?\n"), 6, &count), VI_SUCCESS);
    EXPECT_EQ(write(1, bytes.data(), 1000, &count), VI_SUCCESS);
    recording().store = nullptr;
    EXPECT_EQ(write(1, nullptr, 5, nullptr), VI_SUCCESS);
    std::string shown;
    for (int index = 0; index < 192; ++index)
        shown += R"(\x80)";
    EXPECT_THAT(trace_.lines(), ElementsAre(R"(viWrite(vi=1, buf="*IDN?\n", cnt=6) = 0x00000000 VI_SUCCESS, retCnt=3)",
                                            "viWrite(vi=1, buf=\"" + shown +
                                                "\"... (1000 bytes), cnt=1000) = 0x00000000 VI_SUCCESS, retCnt=3",
                                            "viWrite(vi=1, buf=null, cnt=5) = 0x00000000 VI_SUCCESS"));
}

TEST_F(VisaTrace, TellsTheBytesOfARead)
{
    auto* const read = trace_.find<decltype(viRead)>("viRead");
    recording().store = [](const auto& arguments) {
        storeTextAt(arguments[1], "1.5\nrest");
        if (arguments[3] != 0)
            storeAt(arguments[3], ViUInt32(4));
    };
    std::array<ViByte, 20> bytes{};
    ViUInt32 count = 0;
    for (const ViStatus status : {VI_SUCCESS_TERM_CHAR, VI_ERROR_TMO, VI_ERROR_INV_OBJECT}) {
        recording().status = status;
        EXPECT_EQ(read(1, bytes.data(), 20, &count), status);
    }
    // A count that is larger than what there is room for is not believed.
    recording().status = VI_SUCCESS_MAX_CNT;
    EXPECT_EQ(read(1, bytes.data(), 2, &count), VI_SUCCESS_MAX_CNT);
    EXPECT_EQ(read(1, bytes.data(), 20, nullptr), VI_SUCCESS_MAX_CNT);
    EXPECT_THAT(trace_.lines(),
                ElementsAre(R"(viRead(vi=1, cnt=20) = 0x3FFF0005 VI_SUCCESS_TERM_CHAR, buf="1.5\n", retCnt=4)",
                            R"(viRead(vi=1, cnt=20) = 0xBFFF0015 VI_ERROR_TMO, buf="1.5\n", retCnt=4)",
                            "viRead(vi=1, cnt=20) = 0xBFFF000E VI_ERROR_INV_OBJECT",
                            R"(viRead(vi=1, cnt=2) = 0x3FFF0006 VI_SUCCESS_MAX_CNT, buf="1.", retCnt=4)",
                            "viRead(vi=1, cnt=20) = 0x3FFF0006 VI_SUCCESS_MAX_CNT"));
}

TEST_F(VisaTrace, TellsAttributesByNameAndTheirValuesByType)
{
    auto* const get = trace_.find<decltype(viGetAttribute)>("viGetAttribute");
    auto* const set = trace_.find<decltype(viSetAttribute)>("viSetAttribute");
    // More than a value of the attribute has.
    alignas(ViUInt64) std::array<char, 300> value{};
    recording().store = [](const auto& arguments) { storeAt(arguments[2], 0x89ABCDEFFEDCFF0DULL); };
    for (const ViAttr attribute : {VI_ATTR_TERMCHAR, VI_ATTR_TERMCHAR_EN, VI_ATTR_USB_INTFC_NUM, VI_ATTR_TMO_VALUE,
                                   VI_ATTR_SRC_INCREMENT, VI_ATTR_WIN_SIZE_64, ViAttr(0x3FFF8888)})
        EXPECT_EQ(get(1, attribute, value.data()), VI_SUCCESS);
    recording().store = [](const auto& arguments) { storeTextAt(arguments[2], "INSTR"); };
    EXPECT_EQ(get(1, VI_ATTR_RSRC_CLASS, value.data()), VI_SUCCESS);
    recording().store = nullptr;
    recording().status = VI_ERROR_NSUP_ATTR_STATE;
    EXPECT_EQ(set(1, VI_ATTR_TMO_VALUE, 5000), VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_EQ(set(1, VI_ATTR_USB_INTFC_NUM, static_cast<ViAttrState>(-1)), VI_ERROR_NSUP_ATTR_STATE);
    EXPECT_THAT(
        trace_.lines(),
        ElementsAre(
            "viGetAttribute(vi=1, attrName=VI_ATTR_TERMCHAR) = 0x00000000 VI_SUCCESS, attrValue=13",
            "viGetAttribute(vi=1, attrName=VI_ATTR_TERMCHAR_EN) = 0x00000000 VI_SUCCESS, attrValue=65293",
            "viGetAttribute(vi=1, attrName=VI_ATTR_USB_INTFC_NUM) = 0x00000000 VI_SUCCESS, attrValue=-243",
            "viGetAttribute(vi=1, attrName=VI_ATTR_TMO_VALUE) = 0x00000000 VI_SUCCESS, attrValue=4275896077",
            "viGetAttribute(vi=1, attrName=VI_ATTR_SRC_INCREMENT) = 0x00000000 VI_SUCCESS, attrValue=-19071219",
            "viGetAttribute(vi=1, attrName=VI_ATTR_WIN_SIZE_64) = 0x00000000 VI_SUCCESS, attrValue=9920249034870423309",
            "viGetAttribute(vi=1, attrName=0x3FFF8888) = 0x00000000 VI_SUCCESS",
            R"(viGetAttribute(vi=1, attrName=VI_ATTR_RSRC_CLASS) = 0x00000000 VI_SUCCESS, attrValue="INSTR")",
            "viSetAttribute(vi=1, attrName=VI_ATTR_TMO_VALUE, attrValue=5000) = 0xBFFF001E VI_ERROR_NSUP_ATTR_STATE",
            "viSetAttribute(vi=1, attrName=VI_ATTR_USB_INTFC_NUM, attrValue=-1) = 0xBFFF001E "
            "VI_ERROR_NSUP_ATTR_STATE"));
}

TEST_F(VisaTrace, TellsEventsAndStatusesByName)
{
    recording().store = [](const auto& arguments) {
        storeAt(arguments[3], VI_EVENT_SERVICE_REQ);
        storeAt(arguments[4], ViEvent(9));
    };
    ViEventType type = 0;
    ViEvent event = 0;
    EXPECT_EQ(trace_.find<decltype(viWaitOnEvent)>("viWaitOnEvent")(1, VI_ALL_ENABLED_EVENTS, 100, &type, &event),
              VI_SUCCESS);
    recording().store = [](const auto& arguments) { storeTextAt(arguments[2], "Too late."); };
    recording().status = 0x3FFC1234;
    std::array<char, 256> text{};
    auto* const describe = trace_.find<decltype(viStatusDesc)>("viStatusDesc");
    EXPECT_EQ(describe(1, VI_ERROR_TMO, text.data()), 0x3FFC1234);
    EXPECT_THAT(
        trace_.lines(),
        ElementsAre("viWaitOnEvent(vi=1, inEventType=VI_ALL_ENABLED_EVENTS, timeout=100) = 0x00000000 VI_SUCCESS, "
                    "outEventType=VI_EVENT_SERVICE_REQ, outContext=9",
                    R"(viStatusDesc(vi=1, status=0xBFFF0015 VI_ERROR_TMO) = 0x3FFC1234, desc="Too late.")"));
}

TEST_F(VisaTrace, TellsTheKeyOfASharedLockOnly)
{
    auto* const lock = trace_.find<decltype(viLock)>("viLock");
    std::array<char, 256> key{};
    recording().store = [](const auto& arguments) { storeTextAt(arguments[4], "key"); };
    EXPECT_EQ(lock(1, VI_SHARED_LOCK, 100, "mine", key.data()), VI_SUCCESS);
    EXPECT_EQ(lock(1, VI_EXCLUSIVE_LOCK, 100, nullptr, key.data()), VI_SUCCESS);
    EXPECT_THAT(
        trace_.lines(),
        ElementsAre(
            R"(viLock(vi=1, lockType=2, timeout=100, requestedKey="mine") = 0x00000000 VI_SUCCESS, accessKey="key")",
            "viLock(vi=1, lockType=1, timeout=100, requestedKey=null) = 0x00000000 VI_SUCCESS"));
}

TEST_F(VisaTrace, TellsNoStatusOfAFunctionThatReturnsNone)
{
    recording().store = [](const auto& arguments) { storeAt(arguments[2], ViUInt16(513)); };
    ViUInt16 value = 0;
    trace_.find<decltype(viPeek16)>("viPeek16")(1, reinterpret_cast<ViAddr>(0x1234), &value);
    EXPECT_EQ(value, 513);
    EXPECT_THAT(trace_.lines(), ElementsAre("viPeek16(vi=1, address=0x1234), val16=513"));
}

TEST_F(VisaTrace, TellsTheTimeSinceLoadingTheThreadAndTheDuration)
{
    EXPECT_EQ(trace_.find<decltype(viClear)>("viClear")(1), VI_SUCCESS);
    EXPECT_THAT(trace_.text(), MatchesRegex("[0-9]+\\.[0-9]{6} \\[" + std::to_string(gettid()) +
                                            "\\] viClear\\(vi=1\\) = 0x00000000 VI_SUCCESS <[0-9]+\\.[0-9]{6}>\n"));
}

TEST_F(VisaTrace, LinesOfThreadsDoNotMix)
{
    constexpr int kCalls = 300;
    const auto work = [this](ViSession session) {
        const std::string text(100, 'x');
        for (int call = 0; call < kCalls; ++call)
            trace_.find<decltype(viWrite)>("viWrite")(session, reinterpret_cast<ViConstBuf>(text.data()), 100, nullptr);
    };
    std::thread first(work, 1);
    std::thread second(work, 2);
    first.join();
    second.join();
    const auto expected = [](int session) {
        return "viWrite(vi=" + std::to_string(session) + ", buf=\"" + std::string(100, 'x') +
               "\", cnt=100) = 0x00000000 VI_SUCCESS";
    };
    const auto lines = trace_.lines();
    EXPECT_THAT(lines, SizeIs(2 * kCalls));
    EXPECT_EQ(std::ranges::count(lines, expected(1)), kCalls);
    EXPECT_EQ(std::ranges::count(lines, expected(2)), kCalls);
}

TEST_F(VisaTrace, AForkedProcessWritesToTheSameFile)
{
    auto* const clear = trace_.find<decltype(viClear)>("viClear");
    EXPECT_EQ(clear(1), VI_SUCCESS);
    const pid_t child = fork();
    if (child == 0)
        _exit(clear(2) == VI_SUCCESS ? 0 : 1);
    int ended = -1;
    ASSERT_EQ(waitpid(child, &ended, 0), child);
    EXPECT_EQ(ended, 0);
    EXPECT_EQ(clear(3), VI_SUCCESS);
    EXPECT_THAT(trace_.lines(),
                ElementsAre("viClear(vi=1) = 0x00000000 VI_SUCCESS", "viClear(vi=2) = 0x00000000 VI_SUCCESS",
                            "viClear(vi=3) = 0x00000000 VI_SUCCESS"));
    EXPECT_THAT(trace_.text(), HasSubstr(" [" + std::to_string(child) + "] viClear(vi=2)"));
}

TEST_F(VisaTrace, NeverWritesIntoAFileThatHasTakenThePlaceOfItsOwn)
{
    auto* const clear = trace_.find<decltype(viClear)>("viClear");
    EXPECT_EQ(clear(1), VI_SUCCESS);
    const TemporaryFolder folder;
    const std::string other = folder / "other";
    // As a program does that closes all descriptors it does not know.
    std::vector<int> taken;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink(entry.path(), error).filename() == "trace")
            taken.push_back(std::stoi(entry.path().filename()));
    }
    ASSERT_THAT(taken, Not(IsEmpty()));
    const int descriptor = open(other.c_str(), O_WRONLY | O_CREAT, 0600);
    for (const int place : taken)
        ASSERT_EQ(dup2(descriptor, place), place);
    EXPECT_EQ(clear(2), VI_SUCCESS);
    EXPECT_EQ(LoadedTrace::textOf(other), "");
    EXPECT_THAT(trace_.lines(),
                ElementsAre("viClear(vi=1) = 0x00000000 VI_SUCCESS", "viClear(vi=2) = 0x00000000 VI_SUCCESS"));
    for (const int place : taken)
        close(place);
    close(descriptor);
}

TEST_F(VisaTrace, APipeThatNobodyReadsEndsNothing)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const LoadedTrace trace(KVX_RECORDING_VISA, "/proc/self/fd/" + std::to_string(ends[1]));
    close(ends[0]);
    errno = 0;
    recording().errnoAfter = 0;
    EXPECT_EQ(trace.find<decltype(viClear)>("viClear")(1), VI_SUCCESS);
    EXPECT_EQ(errno, 0);
    close(ends[1]);
}

TEST(VisaTraceBehind, AMissingFunctionIsNotSupported)
{
    // A library that has none of them.
    const LoadedTrace trace("libm.so.6");
    errno = EDOM;
    EXPECT_EQ(trace.find<decltype(viClear)>("viClear")(3), VI_ERROR_NSUP_OPER);
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(trace.find<decltype(viPrintf)>("viPrintf")(3, "%d", 1), VI_ERROR_NSUP_OPER);
    ViUInt8 value = 7;
    trace.find<decltype(viPeek8)>("viPeek8")(3, nullptr, &value);
    EXPECT_EQ(value, 7);
    EXPECT_THAT(trace.lines(), ElementsAre("viClear(vi=3) = 0xBFFF0067 VI_ERROR_NSUP_OPER",
                                           R"(viPrintf(vi=3, writeFmt="%d") = 0xBFFF0067 VI_ERROR_NSUP_OPER)",
                                           "viPeek8(vi=3, address=0x0) = 0xBFFF0067 VI_ERROR_NSUP_OPER"));
}

TEST(VisaTraceBehind, AMissingLibraryIsToldOnceAndEachCallFails)
{
    const LoadedTrace trace("/no-such-folder/libvisa.so");
    ViSession session = 5;
    EXPECT_EQ(trace.find<decltype(viOpenDefaultRM)>("viOpenDefaultRM")(&session), VI_ERROR_LIBRARY_NFOUND);
    EXPECT_EQ(trace.find<decltype(viClose)>("viClose")(3), VI_ERROR_LIBRARY_NFOUND);
    EXPECT_EQ(session, ViSession(5));
    EXPECT_THAT(
        trace.lines(),
        ElementsAre(MatchesRegex("[0-9]+\\.[0-9]{6} \\[[0-9]+\\] no VISA to forward to: /no-such-folder/libvisa\\.so "
                                 "cannot be loaded: /no-such-folder/libvisa\\.so: .*No such file or directory"),
                    "viOpenDefaultRM() = 0xBFFF009E VI_ERROR_LIBRARY_NFOUND",
                    "viClose(vi=3) = 0xBFFF009E VI_ERROR_LIBRARY_NFOUND"));
}

TEST(VisaTraceBehind, IsNeverTheTraceItself)
{
    const LoadedTrace trace(KVX_VISATRACE);
    EXPECT_EQ(trace.find<decltype(viClose)>("viClose")(3), VI_ERROR_LIBRARY_NFOUND);
    EXPECT_THAT(trace.lines(), ElementsAre(HasSubstr("] no VISA to forward to: " KVX_VISATRACE " is this library"),
                                           "viClose(vi=3) = 0xBFFF009E VI_ERROR_LIBRARY_NFOUND"));
}

TEST(VisaTraceFile, IsTheErrorOutputWhereNoneIsNamed)
{
    const EnvironmentVariable library("KVX_VISATRACE_LIBRARY", "libm.so.6");
    const EnvironmentVariable file("KVX_VISATRACE_FILE", nullptr);
    const TemporaryFolder folder;
    std::filesystem::copy_file(KVX_VISATRACE, folder / "copy.so");
    const SharedLibrary trace(folder / "copy.so");
    testing::internal::CaptureStderr();
    EXPECT_EQ(trace.find<decltype(viClear)>("viClear")(3), VI_ERROR_NSUP_OPER);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("] viClear(vi=3) = 0xBFFF0067 VI_ERROR_NSUP_OPER <0."));
}

TEST(VisaTraceFile, IsWrittenToAtItsEnd)
{
    const TemporaryFolder folder;
    const std::string file = folder / "log";
    std::ofstream(file) << "before\n";
    const LoadedTrace first("libm.so.6", file);
    const LoadedTrace second("libm.so.6", file);
    for (const LoadedTrace* const trace : {&first, &second, &first})
        EXPECT_EQ(trace->find<decltype(viClear)>("viClear")(3), VI_ERROR_NSUP_OPER);
    const std::string line = "viClear(vi=3) = 0xBFFF0067 VI_ERROR_NSUP_OPER";
    EXPECT_THAT(first.lines(), ElementsAre("before", line, line, line));
}

} // namespace
