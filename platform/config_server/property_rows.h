#pragma once

#include "element.h"

#include <IviConfigServer.h>

#include <optional>
#include <span>
#include <string_view>

namespace config_server
{

/// What a handle can stand for, as bits so that a property or a function can accept several kinds.
using Kinds = unsigned;
inline constexpr Kinds kStore = 1;
inline constexpr Kinds kHardwareAsset = 2;
inline constexpr Kinds kSession = 4;
inline constexpr Kinds kDriverSession = 8;
inline constexpr Kinds kAnySession = kSession | kDriverSession;
inline constexpr Kinds kAnyObject = kHardwareAsset | kAnySession;

enum class PropertyType
{
    Text,
    Flag
};

/// One property and the child element that holds its value.
struct PropertyRow
{
    Kinds kinds;
    ViInt32 number;
    PropertyType type;
    std::string_view element;
};

/// The row of a property; null when objects of this kind have no property of this number and type.
const PropertyRow* findProperty(Kinds kind, ViInt32 number, PropertyType type);

/// A flag as the file writes it: 0, 1, false or true; empty is false. Nothing for any other text.
std::optional<ViBoolean> parseFlag(std::string_view text);

/// The kind of the objects that an element of this name describes; 0 for none.
Kinds kindOf(std::string_view elementName);

/// True when every typed property of the element has a well-formed value.
bool hasValidProperties(const Element& element);

} // namespace config_server
