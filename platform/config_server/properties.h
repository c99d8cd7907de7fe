#pragma once

#include "platform/config_server/element.h"
#include "platform/config_server/kinds.h"

#include <IviConfigServer.h>

#include <string_view>

namespace config_server
{

enum class PropertyType
{
    Text,
    Flag,
    Integer,
    Real
};

/// One property and the child element that holds its value.
struct PropertyRow
{
    Kinds kinds;
    ViInt32 number;
    PropertyType type;
    std::string_view element;
    bool verbatim = false; ///< white space at both ends belongs to the text
};

/// The row of a property; null when objects of this kind have no property of this number and type.
const PropertyRow* findProperty(Kinds kind, ViInt32 number, PropertyType type);

/// The property's text as the file writes it; empty when the object lacks it.
std::string_view textOf(const Element& object, const PropertyRow& row);

/// True when every flag and number of the object that an element describes is one.
bool hasValidProperties(const Element& object);

} // namespace config_server
