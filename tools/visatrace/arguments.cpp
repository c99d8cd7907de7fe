#include "tools/visatrace/arguments.h"

#include "tools/visatrace/names.h"

#include <algorithm>
#include <cstring>

namespace visatrace
{
namespace
{

template <class T>
const T* pointer(Argument argument)
{
    return reinterpret_cast<const T*>(static_cast<std::uintptr_t>(argument));
}

/// Where a program says it is; what is stored there need not be aligned.
template <class T>
T stored(Argument argument)
{
    T value;
    std::memcpy(&value, pointer<void>(argument), sizeof(value));
    return value;
}

void describeText(Line& line, Argument argument)
{
    const auto* const characters = pointer<char>(argument);
    if (characters == nullptr)
        line.text("null");
    else
        line.quoted({pointer<unsigned char>(argument), std::strlen(characters)});
}

void describeBytes(Line& line, Argument argument, std::uint64_t count)
{
    if (argument == 0)
        line.text("null");
    else
        line.quoted({pointer<unsigned char>(argument), static_cast<std::size_t>(count)});
}

/// A number of VISA's by its name, or as it is.
void describeNamed(Line& line, std::uint32_t value, std::string_view name)
{
    if (name.empty())
        line.hex(value, 8);
    else
        line.text(name);
}

void describeEvent(Line& line, Argument argument)
{
    const auto type = static_cast<ViEventType>(argument);
    describeNamed(line, static_cast<std::uint32_t>(type), eventName(type));
}

/// A value of a type other than a text, reduced to its width as VISA does.
void describeValue(Line& line, ValueType type, std::uint64_t value)
{
    switch (type) {
    case ValueType::Unsigned8:
        return line.number(static_cast<std::uint8_t>(value));
    case ValueType::Unsigned16:
        return line.number(static_cast<std::uint16_t>(value));
    case ValueType::Signed16:
        return line.signedNumber(static_cast<std::int16_t>(value));
    case ValueType::Unsigned32:
        return line.number(static_cast<std::uint32_t>(value));
    case ValueType::Signed32:
        return line.signedNumber(static_cast<std::int32_t>(value));
    case ValueType::Event:
        return describeEvent(line, value);
    case ValueType::Status:
        return describeStatus(line, static_cast<ViStatus>(value));
    case ValueType::Pointer:
        return line.hex(value, 1);
    case ValueType::Unsigned64:
    case ValueType::Unknown:
    case ValueType::Text:
        return line.number(value);
    }
}

std::uint64_t storedValue(ValueType type, Argument argument)
{
    switch (type) {
    case ValueType::Unsigned8:
        return stored<std::uint8_t>(argument);
    case ValueType::Unsigned16:
    case ValueType::Signed16:
        return stored<std::uint16_t>(argument);
    case ValueType::Unsigned64:
        return stored<std::uint64_t>(argument);
    case ValueType::Pointer:
        return stored<std::uintptr_t>(argument);
    default:
        return stored<std::uint32_t>(argument);
    }
}

/// One argument of a call, with those beside it.
class One
{
public:
    One(const Arguments& arguments, std::size_t index) : arguments_(arguments), index_(index) {}

    How how() const { return arguments_.hows[index_]; }
    std::string_view name() const { return arguments_.names[index_]; }
    Argument value() const { return arguments_.values[index_]; }
    Argument before() const { return arguments_.values[index_ - 1]; }
    Argument after(std::size_t places = 1) const { return arguments_.values[index_ + places]; }
    Argument at(std::size_t index) const { return arguments_.values[index]; }

    ValueType typeOfState() const { return attributeOf(static_cast<ViAttr>(before())).type; }

private:
    const Arguments& arguments_;
    std::size_t index_;
};

void describeAttribute(Line& line, Argument argument)
{
    const auto attribute = static_cast<ViAttr>(argument);
    describeNamed(line, static_cast<std::uint32_t>(attribute), attributeOf(attribute).name);
}

void describe(Line& line, const One& one)
{
    switch (one.how()) {
    case How::Signed:
        return line.signedNumber(static_cast<std::int64_t>(one.value()));
    case How::Hex:
        return line.hex(one.value(), 1);
    case How::Text:
        return describeText(line, one.value());
    case How::Status:
        return describeStatus(line, static_cast<ViStatus>(one.value()));
    case How::Event:
        return describeEvent(line, one.value());
    case How::Attribute:
        return describeAttribute(line, one.value());
    case How::AttributeState:
        return describeValue(line, one.typeOfState(), one.value());
    case How::Bytes:
        return describeBytes(line, one.value(), one.after());
    case How::BytesCountedBefore:
        return describeBytes(line, one.value(), one.before());
    default:
        return line.number(one.value());
    }
}

/// Whether what the call stores can be shown: a text, a number whose width is known, or bytes whose count is.
bool canBeShown(const One& one)
{
    if (one.value() == 0)
        return false;
    switch (one.how()) {
    case How::StoredAttributeState:
        return one.typeOfState() != ValueType::Unknown;
    case How::StoredKey:
        return one.at(1) == VI_SHARED_LOCK;
    case How::StoredBytes:
        return one.after(2) != 0;
    case How::StoredBytesCountedBefore:
        return one.after() != 0;
    default:
        return true;
    }
}

void describeState(Line& line, ValueType type, Argument argument)
{
    if (type == ValueType::Text)
        describeText(line, argument);
    else
        describeValue(line, type, storedValue(type, argument));
}

void describeWhatIsStored(Line& line, const One& one)
{
    const Argument place = one.value();
    switch (one.how()) {
    case How::Stored8:
        return line.number(stored<std::uint8_t>(place));
    case How::Stored16:
        return line.number(stored<std::uint16_t>(place));
    case How::Stored32:
        return line.number(stored<std::uint32_t>(place));
    case How::Stored64:
        return line.number(stored<std::uint64_t>(place));
    case How::StoredSigned16:
        return line.signedNumber(stored<std::int16_t>(place));
    case How::StoredPointer:
        return line.hex(stored<std::uintptr_t>(place), 1);
    case How::StoredText:
    case How::StoredKey:
        return describeText(line, place);
    case How::StoredEvent:
        return describeEvent(line, stored<std::uint32_t>(place));
    case How::StoredAttributeState:
        return describeState(line, one.typeOfState(), place);
    case How::StoredBytes:
        return describeBytes(line, place, std::min<std::uint64_t>(one.after(), stored<std::uint32_t>(one.after(2))));
    case How::StoredBytesCountedBefore:
        return describeBytes(line, place, std::min<std::uint64_t>(one.before(), stored<std::uint16_t>(one.after())));
    default:
        return;
    }
}

bool isStored(How how)
{
    return how >= How::Stored8;
}

bool isOfRead(const Arguments& arguments)
{
    return std::ranges::find(arguments.hows, How::StoredBytes) != arguments.hows.end();
}

} // namespace

void describeGiven(Line& line, const Arguments& arguments)
{
    std::string_view separator;
    for (std::size_t index = 0; index < arguments.values.size(); ++index) {
        const One one(arguments, index);
        if (one.how() == How::Skip || isStored(one.how()))
            continue;
        line.text(separator);
        line.text(one.name());
        line.text("=");
        describe(line, one);
        separator = ", ";
    }
}

void describeStored(Line& line, const Arguments& arguments, ViStatus status)
{
    // What else a failed function has left where it stores things is anybody's guess.
    if (status < VI_SUCCESS && !(status == VI_ERROR_TMO && isOfRead(arguments)))
        return;
    for (std::size_t index = 0; index < arguments.values.size(); ++index) {
        const One one(arguments, index);
        if (!isStored(one.how()) || !canBeShown(one))
            continue;
        line.text(", ");
        line.text(one.name());
        line.text("=");
        describeWhatIsStored(line, one);
    }
}

void describeStatus(Line& line, ViStatus status)
{
    line.hex(static_cast<std::uint32_t>(status), 8);
    const std::string_view name = statusName(status);
    if (name.empty())
        return;
    line.text(" ");
    line.text(name);
}

} // namespace visatrace
