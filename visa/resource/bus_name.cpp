#include "visa/resource/bus_name.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace visa
{
namespace
{

constexpr int kRequired = -1;
constexpr int kLeftOut = -2;

/// A part of a name: a number, which a word may precede.
struct Field
{
    std::string_view word;
    ViUInt16 largest = 0xFFFF;
    int whenMissing = kRequired; ///< or kLeftOut, or the number that the canonical name has then
};

constexpr Field kVxiAddress{"", 255};
constexpr Field kVxiFrame{"", 255, kLeftOut};
constexpr Field kChassis{"CHASSIS"};
constexpr Field kSlot{"SLOT"};

constexpr std::array<Field, 1> kVxiInstrument{kVxiAddress};
constexpr std::array<Field, 1> kVxiBackplane{kVxiFrame};
constexpr std::array<Field, 2> kGpibInstrument{Field{"", 30}, Field{"", 31, kLeftOut}};
constexpr std::array<Field, 2> kPxiOnBus{Field{"", 31}, Field{"", 7, 0}};
constexpr std::array<Field, 3> kPxiEndpoint{kChassis, kSlot, Field{"INDEX"}};
constexpr std::array<Field, 3> kPxiInSlot{kChassis, kSlot, Field{"FUNC", 7, 0}};
constexpr std::array<Field, 1> kPxiBackplane{Field{""}};

struct Form
{
    ResourceKind kind;
    std::string_view resourceClass;
    std::span<const Field> fields{};
};

constexpr std::array<Form, 15> kForms{{
    {ResourceKind::Gpib, "INSTR", kGpibInstrument},
    {ResourceKind::Gpib, "INTFC"},
    {ResourceKind::Gpib, "SERVANT"},
    {ResourceKind::Vxi, "INSTR", kVxiInstrument},
    {ResourceKind::Vxi, "MEMACC"},
    {ResourceKind::Vxi, "BACKPLANE", kVxiBackplane},
    {ResourceKind::Vxi, "SERVANT"},
    {ResourceKind::GpibVxi, "INSTR", kVxiInstrument},
    {ResourceKind::GpibVxi, "MEMACC"},
    {ResourceKind::GpibVxi, "BACKPLANE", kVxiBackplane},
    {ResourceKind::Pxi, "INSTR", kPxiOnBus},
    {ResourceKind::Pxi, "INSTR", kPxiEndpoint},
    {ResourceKind::Pxi, "INSTR", kPxiInSlot},
    {ResourceKind::Pxi, "MEMACC"},
    {ResourceKind::Pxi, "BACKPLANE", kPxiBackplane},
}};

/// Reads one field; without a text for it, what the field stands for then.
/// @param canonical receives it, as the canonical name has it
bool readField(const Field& field, std::optional<std::string_view> text, std::string& canonical)
{
    std::optional<ViUInt16> number;
    if (text && startsIgnoringCase(*text, field.word))
        number = parseDecimal(text->substr(field.word.size()), field.largest);
    else if (!text && field.whenMissing >= 0)
        number = static_cast<ViUInt16>(field.whenMissing);
    if (number)
        canonical += "::" + std::string(field.word) + std::to_string(*number);
    return number || (!text && field.whenMissing == kLeftOut);
}

bool readFields(std::span<const Field> fields, std::span<const std::string_view> texts, std::string& canonical)
{
    if (texts.size() > fields.size())
        return false;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (!readField(fields[i], i < texts.size() ? std::optional(texts[i]) : std::nullopt, canonical))
            return false;
    }
    return true;
}

/// "3-18.2": function 2 of the device 18 on bus 3.
bool readPciAddress(std::span<const std::string_view> texts, std::string& canonical)
{
    if (texts.size() != 1)
        return false;
    const std::string_view text = texts.front();
    const std::size_t hyphen = std::min(text.find('-'), text.size());
    const std::size_t point = std::min(text.find('.'), text.size());
    if (hyphen >= point)
        return false;
    const auto bus = parseDecimal(text.substr(0, hyphen), 255);
    const auto device = parseDecimal(text.substr(hyphen + 1, point - hyphen - 1), 31);
    const auto function = point == text.size() ? std::optional<ViUInt16>(0) : parseDecimal(text.substr(point + 1), 7);
    if (!bus || !device || !function)
        return false;
    canonical += "::" + std::to_string(*bus) + '-' + std::to_string(*device) + '.' + std::to_string(*function);
    return true;
}

/// The class that a name ends with, in capitals; none when it leaves its class out.
std::string_view classOf(const NameParts& parts)
{
    const auto* const form = std::find_if(kForms.begin(), kForms.end(), [&parts](const Form& candidate) {
        return equalsIgnoringCase(parts.back(), candidate.resourceClass);
    });
    return form == kForms.end() ? std::string_view() : form->resourceClass;
}

} // namespace

bool parseBusName(const NameParts& parts, ResourceName& name)
{
    const std::string_view named = parts.size() > 1 ? classOf(parts) : std::string_view();
    name.resourceClass = named.empty() ? kInstrumentClass : named;
    std::span<const std::string_view> texts(parts);
    texts = texts.subspan(1, texts.size() - (named.empty() ? 1 : 2));

    const std::string canonical = name.canonical;
    const auto fits = [&](const Form& form) {
        name.canonical = canonical;
        return form.kind == name.kind && form.resourceClass == name.resourceClass &&
               readFields(form.fields, texts, name.canonical);
    };
    bool isRead = std::any_of(kForms.begin(), kForms.end(), fits);
    if (!isRead && name.kind == ResourceKind::Pxi && name.resourceClass == kInstrumentClass) {
        name.canonical = canonical;
        isRead = readPciAddress(texts, name.canonical);
    }
    name.canonical += "::" + std::string(name.resourceClass);
    return isRead;
}

} // namespace visa
