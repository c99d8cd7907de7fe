// Any text as a channel selector: it names channels, or is refused with one of the documented codes. Where the input
// has two lines, the first makes the virtual names: "Core=OutputChannel1;Rail#1#3#2=OutputChannel" is a name and a name
// with a range from 1 to 3 that starts at 2.
#include "api/attribute_table.h"
#include "runtime/kvx2800t_driver_session.h"
#include "runtime/selector.h"

#include <IviCShared.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace
{

/// A session whose virtual names come from the input.
class FuzzedSession : public KVX2800TDriverSession
{
public:
    using KVX2800TDriverSession::KVX2800TDriverSession;

    const drivekit::VirtualNames& virtualNames() const override { return names; }

    drivekit::VirtualNames names;
};

ViSession newSession()
{
    ViSession vi = VI_NULL;
    if (IviSession_New(&vi) < 0)
        std::abort();
    return vi;
}

/// Takes what stands in front of `separator` off `text`: all of it when there is none.
std::string_view takeField(std::string_view& text, char separator)
{
    const std::string_view field = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(field.size() + 1, text.size()));
    return field;
}

/// 0 for what is no number.
ViInt32 takeNumber(std::string_view& text)
{
    const std::string_view digits = takeField(text, '#');
    ViInt32 number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

void addName(drivekit::VirtualNames& names, std::string_view entry)
{
    std::string_view key = takeField(entry, '=');
    const std::string name(takeField(key, '#'));
    if (key.empty())
        return names.add(name, std::string(entry));
    const ViInt32 minimum = takeNumber(key);
    const ViInt32 maximum = takeNumber(key);
    names.addRange(name, std::string(entry), minimum, maximum, takeNumber(key));
}

drivekit::VirtualNames namesOf(std::string_view line)
{
    drivekit::VirtualNames names;
    while (!line.empty())
        addName(names, takeField(line, ';'));
    return names;
}

/// What is selected is there, and no channel twice.
void checkSelection(const drivekit::OutputSelection& selection)
{
    if (selection.size() == 0)
        std::abort();
    bool isSelected[7] = {};
    for (const auto name : selection) {
        bool& seen = isSelected[drivekit::channelOf(name)];
        if (seen)
            std::abort();
        seen = true;
    }
}

void check(ViStatus status, const drivekit::OutputSelection& selection)
{
    switch (static_cast<std::uint32_t>(status)) {
    case 0:
        return checkSelection(selection);
    case 0xBFFA0044U:
    case 0xBFFA0063U:
    case 0xBFFA0064U:
    case 0xBFFA0066U:
    case 0xBFFA0067U:
        return;
    default:
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const ViSession vi = newSession();
    std::string_view input(reinterpret_cast<const char*>(data), size);
    FuzzedSession session(vi, api::attributeRegistry());
    if (input.find('\n') != std::string_view::npos)
        session.names = namesOf(takeField(input, '\n'));
    const std::string selector(input);
    try {
        drivekit::OutputSelection selection;
        check(drivekit::resolveSelector(session, selector.c_str(), selection), selection);
    } catch (const std::out_of_range&) {
        // A number beyond 32 bits.
    }
    IviSession_ClearError(vi);
    return 0;
}
