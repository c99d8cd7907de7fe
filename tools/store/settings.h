#pragma once

#include "tools/store/element_writer.h"
#include "tools/store/id_source.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace store_tool
{

/// The types that a configurable initial setting can have.
struct SettingType
{
    std::string_view word;    ///< in command lines and listings
    std::string_view element; ///< in a store
    std::string_view typeName;
    bool hasUnits;
    /// The value as a store writes it; nothing when it is none of this type.
    std::optional<std::string> (*canonical)(const std::string& value);
};

/// Null for an unknown word or element.
const SettingType* settingTypeOf(std::string_view word);
const SettingType* settingTypeOfElement(std::string_view element);

/// One configurable initial setting: a name and a value, and what its software module says about it.
struct Setting
{
    const SettingType* type;
    std::string name;
    std::string value;
    std::string description{};
    std::string usedInSession = "Required";
    std::string helpContextId = "0";
    std::string helpFilePath{};
    std::string key{};
    std::string units{};
};

/// The structure with the configurable initial settings of a software module or a session; null without one.
const XmlElement* settingsStructureOf(const XmlElement& component);

/// The configurable initial settings of a software module or a session. Elements of other types are left out.
std::vector<Setting> settingsOf(const XmlElement& component);

/// What a new session gets: the settings that its software module requires, and the chosen ones with the module's
/// descriptions. Throws StoreError when a chosen one has another type there or is chosen twice.
std::vector<Setting> sessionSettings(const std::vector<Setting>& ofModule, const std::vector<Setting>& chosen);

/// Writes the DataComponents of a session with these settings.
void writeSettings(ElementWriter& writer, IdSource& ids, const std::vector<Setting>& settings);

} // namespace store_tool
