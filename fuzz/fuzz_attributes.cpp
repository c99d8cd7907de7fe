// Any attribute, known or not, by any accessor with any selector, value and buffer size: a status comes back, the lock
// is given back, a failure is on record, and no text is longer than its buffer.
//
// The bytes: accessor, attribute (one of the known ones, or four bytes of any), buffer size or value (eight bytes), and
// the selector.
#include "fuzz/input.h"
#include "tests/support/driver/api_fixture.h"
#include "tests/support/driver/attribute_rows.h"
#include "tests/support/driver/scripted_clock.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace
{

using namespace kvxtest;
using kvxfuzz::require;

/// Takes values off the front of the bytes; zero where there are none left.
class Bytes
{
public:
    Bytes(const std::uint8_t* data, std::size_t size) : next_(data), left_(size) {}

    template <class Value>
    Value take()
    {
        Value value{};
        const std::size_t count = std::min(left_, sizeof value);
        std::memcpy(&value, next_, count);
        next_ += count;
        left_ -= count;
        return value;
    }

    std::string rest() const { return {reinterpret_cast<const char*>(next_), left_}; }

private:
    const std::uint8_t* next_;
    std::size_t left_;
};

ViAttr takeAttribute(Bytes& bytes)
{
    const auto choice = bytes.take<std::uint8_t>();
    return choice < kAttributeRows.size() ? kAttributeRows[choice].id : bytes.take<ViAttr>();
}

/// A buffer of this size, in which the sanitizer watches every byte behind the text.
ViStatus getText(ViSession vi, const char* selector, ViAttr id, ViInt32 size)
{
    constexpr ViInt32 kLargest = 5000;
    const ViInt32 shown = std::min(size, kLargest);
    std::vector<ViChar> buffer(static_cast<std::size_t>(shown < 0 ? 4096 : shown));
    const ViStatus status = KVX2800T_GetAttributeViString(vi, selector, id, shown, buffer.data());
    require(status != VI_SUCCESS || std::memchr(buffer.data(), '\0', buffer.size()) != nullptr);
    return status;
}

ViStatus access(ViSession vi, unsigned accessor, const char* selector, ViAttr id, Bytes& bytes)
{
    ViInt32 integer = 0;
    ViReal64 real = 0.0;
    ViBoolean flag = VI_FALSE;
    ViSession session = VI_NULL;
    switch (accessor % 10) {
    case 0:
        return KVX2800T_GetAttributeViInt32(vi, selector, id, &integer);
    case 1:
        return KVX2800T_GetAttributeViReal64(vi, selector, id, &real);
    case 2:
        return KVX2800T_GetAttributeViBoolean(vi, selector, id, &flag);
    case 3:
        return KVX2800T_GetAttributeViSession(vi, selector, id, &session);
    case 4:
        return getText(vi, selector, id, bytes.take<ViInt32>());
    case 5:
        return KVX2800T_SetAttributeViInt32(vi, selector, id, bytes.take<ViInt32>());
    case 6:
        return KVX2800T_SetAttributeViReal64(vi, selector, id, bytes.take<ViReal64>());
    case 7:
        return KVX2800T_SetAttributeViBoolean(vi, selector, id, bytes.take<ViBoolean>());
    case 8:
        return KVX2800T_SetAttributeViSession(vi, selector, id, bytes.take<ViSession>());
    default:
        return KVX2800T_SetAttributeViString(vi, selector, id, selector);
    }
}

ViSession openSession()
{
    reset();
    answer("*IDN?", "Tessaro Instruments,KVX2833T,SN1,V2.34");
    answer(":SOUR:Mode?", "NORMAL");
    for (const char* const channel : {"1", "2", "3", "4", "5", "6"}) {
        const std::string source = std::string(":SOUR") + channel;
        answer(source + ":VOLT?", "1.5");
        answer(source + ":CURR?", "0.5");
    }
    ViSession vi = VI_NULL;
    require(init("DriverSetup=SafeErrors:1,Model:KVX2833T", &vi) == VI_SUCCESS);
    return vi;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static kvxtest::ScriptedClock clock;
    const ViSession vi = openSession();
    Bytes bytes(data, size);
    const auto accessor = bytes.take<std::uint8_t>();
    const ViAttr id = takeAttribute(bytes);
    Bytes value = bytes;
    const std::string selector = (bytes.take<std::uint64_t>(), bytes.rest());
    const ViStatus status = access(vi, accessor, selector.c_str(), id, value);
    require(lockDepth(vi) == 0);
    require(status >= 0 || errorOf(vi).code == status);
    require(KVX2800T_close(vi) == VI_SUCCESS);
    return 0;
}
