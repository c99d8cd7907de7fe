#pragma once

#include "tools/store/element_writer.h"
#include "tools/store/id_source.h"
#include "tools/store/session_entry.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace store_tool
{

/// The software module that this tool can make.
inline constexpr std::string_view kDriverModule = "KVX2800T";

struct PublishedApi
{
    std::string_view name;
    std::string_view majorVersion;
    std::string_view minorVersion;
    std::string_view type;
};

/// What the driver offers.
inline constexpr std::array<PublishedApi, 2> kDriverApis{{
    {"IviDriver", "2", "1", "IVI-C"},
    {"IviDCPwr", "3", "0", "IVI-C"},
}};

bool isApi(const XmlElement& element, const PublishedApi& api);

void writeApi(ElementWriter& writer, std::string_view id, const PublishedApi& api);

/// @param id its own
/// @param apis the ids of what it offers
void writeDriverModule(ElementWriter& writer, IdSource& ids, std::string_view id, const std::vector<std::string>& apis);

void writeAsset(ElementWriter& writer, std::string_view id, std::string_view name, std::string_view resource);

/// The ids of what a session refers to.
struct SessionReferences
{
    std::string asset;
    std::string softwareModule;
};

void writeDriverSession(ElementWriter& writer, IdSource& ids, std::string_view id, const SessionEntry& entry,
                        const SessionReferences& references, const std::vector<Setting>& settings);

void writeLogicalName(ElementWriter& writer, std::string_view id, std::string_view name, std::string_view sessionId);

} // namespace store_tool
