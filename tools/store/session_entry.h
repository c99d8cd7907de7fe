#pragma once

#include "tools/store/settings.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace store_tool
{

/// Longest text that every driver reads from a store as a whole, in bytes; many cut a longer one.
inline constexpr std::size_t kLongestText = 1023;

/// The flags of a driver session with the values that the driver has without a store.
struct SessionFlag
{
    std::string_view element;
    std::string_view option;
    bool byDefault;
    std::string_view meaning;
};

inline constexpr std::array<SessionFlag, 6> kSessionFlags{{
    {"Cache", "--cache", true, "cache attribute values"},
    {"InterchangeCheck", "--interchange-check", false, "check for interchangeability"},
    {"QueryInstrStatus", "--query-instr-status", false, "query the instrument's status after each call"},
    {"RangeCheck", "--range-check", true, "check values before they are sent"},
    {"RecordCoercions", "--record-coercions", false, "record changed values"},
    {"Simulate", "--simulate", false, "simulate the instrument"},
}};

struct VirtualRange
{
    std::int32_t min;
    std::int32_t max;
    std::int32_t start; ///< physical index of min
};

struct VirtualName
{
    std::string name;
    std::string mapTo;
    std::vector<VirtualRange> ranges{};
};

/// A driver session to be added, with all that belongs to it.
struct SessionEntry
{
    std::string name;
    std::string description;
    std::optional<std::string> resource; ///< descriptor of the hardware asset; without one the asset exists already
    std::optional<std::string> asset;    ///< name of the hardware asset; without one that of the session
    std::string softwareModule = "KVX2800T";
    std::vector<std::string> logicalNames;
    std::array<bool, kSessionFlags.size()> flags{};
    std::string driverSetup;
    std::vector<VirtualName> virtualNames;
    std::vector<Setting> settings;
};

} // namespace store_tool
