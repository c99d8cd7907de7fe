#include "tools/store/settings.h"

#include "tools/store/plain_text.h"
#include "tools/store/store_error.h"
#include "tools/store/values.h"

#include <algorithm>
#include <array>
#include <unordered_set>

namespace store_tool
{
namespace
{

constexpr std::string_view kStructureName = "Configurable Initial Settings";

std::optional<std::string> canonicalBoolean(const std::string& value)
{
    const auto flag = parseBoolean(value);
    return flag ? std::optional<std::string>(*flag ? "1" : "0") : std::nullopt;
}

std::optional<std::string> canonicalInteger(const std::string& value)
{
    const auto number = parseInteger(value);
    return number ? std::optional(std::to_string(*number)) : std::nullopt;
}

std::optional<std::string> canonicalReal(const std::string& value)
{
    return parseReal(value) ? std::optional(value) : std::nullopt;
}

std::optional<std::string> canonicalString(const std::string& value)
{
    return value;
}

constexpr std::array<SettingType, 4> kTypes{{
    {"boolean", "IviBoolean", "Boolean", false, canonicalBoolean},
    {"integer", "IviInteger", "Integer", true, canonicalInteger},
    {"real", "IviReal", "Real", true, canonicalReal},
    {"string", "IviString", "String", false, canonicalString},
}};

template <class Test>
const SettingType* findType(Test test)
{
    const auto* const type = std::find_if(kTypes.begin(), kTypes.end(), test);
    return type == kTypes.end() ? nullptr : type;
}

/// A number for help systems; anything else stands for none.
std::string helpContext(std::string_view text)
{
    return parseInteger(text) ? std::string(text) : "0";
}

Setting readSetting(const XmlElement& element, const SettingType& type)
{
    const auto text = [&element](std::string_view child) { return std::string(element.textOf(child)); };
    const XmlElement* const value = element.child("Value");
    const bool keepsSpace = type.word == "string" && value != nullptr;
    return {&type,
            text("Name"),
            keepsSpace ? value->text : text("Value"),
            text("Description"),
            text("UsedInSession"),
            helpContext(element.textOf("HelpContextID")),
            text("HelpFilePath"),
            text("SoftwareModuleKey"),
            text("Units")};
}

/// The heading that every data component has.
void writeHeading(ElementWriter& writer, std::string_view typeName, const Setting& setting)
{
    writer.leaf("Name", setting.name).leaf("Description", setting.description).leaf("ReadOnly", "0");
    writer.leaf("UsedInSession", setting.usedInSession).leaf("Type", typeName);
    writer.leaf("HelpContextID", setting.helpContextId).leaf("HelpFilePath", setting.helpFilePath);
    writer.leaf("SoftwareModuleKey", setting.key);
}

void writeSetting(ElementWriter& writer, IdSource& ids, const Setting& setting)
{
    writer.open(setting.type->element, ids.next());
    writeHeading(writer, setting.type->typeName, setting);
    if (setting.type->hasUnits)
        writer.leaf("Units", setting.units);
    writer.leaf("Value", setting.value).close();
}

template <class Settings>
auto findSetting(Settings& settings, const std::string& name)
{
    return std::find_if(settings.begin(), settings.end(),
                        [&name](const Setting& setting) { return setting.name == name; });
}

void requireDifferentNames(const std::vector<Setting>& settings)
{
    std::unordered_set<std::string_view> names;
    for (const Setting& setting : settings) {
        if (!names.insert(setting.name).second)
            throw StoreError("the setting " + inQuotes(setting.name) + " is given twice");
    }
}

void requireType(const Setting& setting, const Setting& ofModule)
{
    if (setting.type != ofModule.type)
        throw StoreError("the setting " + inQuotes(setting.name) + " has the type " + std::string(ofModule.type->word) +
                         " in the software module");
}

} // namespace

const SettingType* settingTypeOf(std::string_view word)
{
    return findType([word](const SettingType& type) { return type.word == word; });
}

const SettingType* settingTypeOfElement(std::string_view element)
{
    return findType([element](const SettingType& type) { return type.element == element; });
}

const XmlElement* settingsStructureOf(const XmlElement& component)
{
    return findNamed(component, "DataComponents", "IviStructure", kStructureName);
}

std::vector<Setting> settingsOf(const XmlElement& component)
{
    std::vector<Setting> settings;
    const XmlElement* const structure = settingsStructureOf(component);
    if (structure == nullptr)
        return settings;
    for (const XmlElement& element : structure->itemsOf("DataComponents")) {
        if (const SettingType* const type = settingTypeOfElement(element.name))
            settings.push_back(readSetting(element, *type));
    }
    return settings;
}

std::vector<Setting> sessionSettings(const std::vector<Setting>& ofModule, const std::vector<Setting>& chosen)
{
    requireDifferentNames(chosen);
    std::vector<Setting> settings;
    for (const Setting& setting : ofModule) {
        const auto own = findSetting(chosen, setting.name);
        if (own == chosen.end() && !sameWord(setting.usedInSession, "Required"))
            continue;
        settings.push_back(setting);
        if (own == chosen.end())
            continue;
        requireType(*own, setting);
        settings.back().value = own->value;
    }
    std::copy_if(chosen.begin(), chosen.end(), std::back_inserter(settings),
                 [&ofModule](const Setting& setting) { return findSetting(ofModule, setting.name) == ofModule.end(); });
    return settings;
}

void writeSettings(ElementWriter& writer, IdSource& ids, const std::vector<Setting>& settings)
{
    if (settings.empty()) {
        writer.empty("DataComponents");
        return;
    }
    writer.open("DataComponents").open("IviStructure", ids.next());
    writeHeading(writer, "Structure", {nullptr, std::string(kStructureName), {}});
    writer.open("DataComponents");
    for (const Setting& setting : settings)
        writeSetting(writer, ids, setting);
    writer.close().close().close();
}

} // namespace store_tool
