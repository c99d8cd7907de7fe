#pragma once

#include "tools/store/xml_tree.h"

#include <string>
#include <vector>

namespace store_tool
{

/// Something that follows the file format, but fails or has no effect when a program uses it.
struct UseProblem
{
    std::vector<const XmlElement*> path; ///< what it is about, from a child of the element that was asked for down
    std::string text;
};

/// What is wrong with the use of an element. Of driver sessions and software modules those of the driver are looked at,
/// as the driver would read them.
/// @param softwareModule of a driver session, what it refers to as its software module; null without one
std::vector<UseProblem> useProblemsOf(const XmlElement& element, const XmlElement* softwareModule);

} // namespace store_tool
