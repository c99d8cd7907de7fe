#include "visa/attribute/attributes.h"

#include <algorithm>
#include <cstring>

namespace visa
{

bool AllowedValues::contains(ViAttrState value) const
{
    if (!list.empty())
        return std::find(list.begin(), list.end(), value) != list.end();
    return value >= smallest && value <= largest;
}

const AttributeRow* findAttribute(ViAttr attribute, SessionClass sessionClass)
{
    const std::size_t index = indexOf(attribute);
    return index < kAttributeRows.size() && (kAttributeRows[index].classes & sessionClass) != 0 ? &kAttributeRows[index]
                                                                                                : nullptr;
}

ViAttrState reduced(ViAttrState value, ValueType type)
{
    switch (type) {
    case ValueType::Byte:
        return static_cast<ViUInt8>(value);
    case ValueType::Short:
    case ValueType::Boolean:
        return static_cast<ViUInt16>(value);
    case ValueType::Long:
        return static_cast<ViUInt32>(value);
    case ValueType::Address:
    case ValueType::Text:
        break;
    }
    return value;
}

void storeNumber(ViAttrState value, ValueType type, void* target)
{
    const auto store = [target](auto number) { std::memcpy(target, &number, sizeof number); };
    switch (type) {
    case ValueType::Byte:
        return store(static_cast<ViUInt8>(value));
    case ValueType::Short:
    case ValueType::Boolean:
        return store(static_cast<ViUInt16>(value));
    case ValueType::Long:
        return store(static_cast<ViUInt32>(value));
    case ValueType::Address:
    case ValueType::Text:
        break;
    }
    store(value);
}

void storeText(std::string_view text, void* target)
{
    constexpr std::size_t kLongest = 255;
    auto* const characters = static_cast<ViChar*>(target);
    characters[text.copy(characters, kLongest)] = '\0';
}

AttributeValues::AttributeValues()
{
    for (std::size_t index = 0; index < kAttributeRows.size(); ++index)
        values_[index].store(kAttributeRows[index].initial, std::memory_order_relaxed);
}

} // namespace visa
