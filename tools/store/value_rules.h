#pragma once

#include "tools/store/element_rules.h"
#include "tools/store/xml_tree.h"

#include <string>

namespace store_tool
{

/// What is wrong with the text of a child of `owner`; empty when it is what `content` asks for.
std::string problemOf(const XmlElement& owner, const XmlElement& child, Content content);

/// True when an owner without such a child is incomplete.
bool isNeeded(const XmlElement& owner, Content content);

} // namespace store_tool
