#pragma once

#include <string_view>

namespace config_server
{

/// What a handle can stand for, as bits so that a property or a function can accept several kinds.
using Kinds = unsigned;

inline constexpr Kinds kStore = 1U << 0U;
inline constexpr Kinds kHardwareAsset = 1U << 1U;
inline constexpr Kinds kSoftwareModule = 1U << 2U;
inline constexpr Kinds kSession = 1U << 3U;
inline constexpr Kinds kDriverSession = 1U << 4U;
inline constexpr Kinds kPhysicalName = 1U << 5U;
inline constexpr Kinds kVirtualName = 1U << 6U;
inline constexpr Kinds kVirtualRange = 1U << 7U;
inline constexpr Kinds kBoolean = 1U << 8U;
inline constexpr Kinds kInteger = 1U << 9U;
inline constexpr Kinds kReal = 1U << 10U;
inline constexpr Kinds kString = 1U << 11U;
inline constexpr Kinds kStructure = 1U << 12U;
inline constexpr Kinds kApiReference = 1U << 13U;
inline constexpr Kinds kLogicalName = 1U << 14U;

inline constexpr Kinds kSoftwareModules = 1U << 15U; ///< from here on collections
inline constexpr Kinds kPhysicalNames = 1U << 16U;
inline constexpr Kinds kVirtualNames = 1U << 17U;
inline constexpr Kinds kVirtualRanges = 1U << 18U;
inline constexpr Kinds kDataComponents = 1U << 19U;
inline constexpr Kinds kDriverSessions = 1U << 20U;
inline constexpr Kinds kLogicalNames = 1U << 21U;

inline constexpr Kinds kAnySession = kSession | kDriverSession;
inline constexpr Kinds kConfigComponent = kHardwareAsset | kSoftwareModule | kAnySession;
inline constexpr Kinds kDataComponent = kBoolean | kInteger | kReal | kString | kStructure | kApiReference;
inline constexpr Kinds kAnyObject = ~kStore; ///< all that is disposed rather than closed

/// The kind of the objects that an element of this name describes; 0 for none.
Kinds kindOf(std::string_view elementName);

} // namespace config_server
