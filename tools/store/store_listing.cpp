#include "tools/store/store_listing.h"

#include "tools/store/plain_text.h"
#include "tools/store/session_entry.h"
#include "tools/store/settings.h"

#include <unordered_map>

namespace store_tool
{
namespace
{

constexpr std::size_t kLabelWidth = 17;

/// A text as far as a driver reads it.
std::string shown(std::string_view text)
{
    return abridged(text, kLongestText);
}

class Listing
{
public:
    explicit Listing(const StoreText& store) : root_(store.root())
    {
        forEach(root_, [this](const XmlElement& element) {
            if (element.id)
                byId_.emplace(*element.id, &element);
        });
    }

    std::string text()
    {
        section("driver sessions", "DriverSessions", "IviDriverSession",
                [this](const XmlElement& item) { addDriverSession(item); });
        section("other sessions", "Sessions", "IviSession", [this](const XmlElement& item) { addSession(item); });
        section("logical names", "LogicalNames", "IviLogicalName",
                [this](const XmlElement& item) { addLogicalName(item); });
        section("software modules", "SoftwareModules", "IviSoftwareModule",
                [this](const XmlElement& item) { addModule(item); });
        return std::move(text_);
    }

private:
    template <class AddItem>
    void section(std::string_view title, std::string_view collection, std::string_view element, AddItem addItem)
    {
        text_.append(title).append("\n");
        bool isEmpty = true;
        for (const XmlElement& item : root_.itemsOf(collection)) {
            if (item.name != element)
                continue;
            addItem(item);
            isEmpty = false;
        }
        if (isEmpty)
            text_ += "  (none)\n";
    }

    void addDriverSession(const XmlElement& session)
    {
        addSession(session);
        addValue("flags", flagsText(session));
        addValue("driver setup", shown(session.textOf("DriverSetup")));
    }

    void addSession(const XmlElement& session)
    {
        addTitle(session);
        addValue("hardware asset", assetText(session));
        addValue("software module", moduleText(session));
        for (const XmlElement& name : session.itemsOf("VirtualNames"))
            addVirtualName(name);
        addSettings(session);
    }

    void addSettings(const XmlElement& component)
    {
        for (const Setting& setting : settingsOf(component))
            addValue("setting",
                     shown(setting.name) + " (" + std::string(setting.type->word) + ") = " + valueText(setting));
    }

    /// Strings in quotes, since blanks at their ends count.
    static std::string valueText(const Setting& setting)
    {
        const std::string value = shown(setting.value);
        return setting.type == settingTypeOf("string") ? '"' + value + '"' : value;
    }

    void addLogicalName(const XmlElement& logicalName)
    {
        const XmlElement* const session = targetOf(logicalName, "IviDriverSession");
        const XmlElement* const other = session != nullptr ? session : targetOf(logicalName, "IviSession");
        text_ += "  " + nameOf(logicalName) + " -> " + (other == nullptr ? "(none)" : nameOf(*other)) + "\n";
    }

    void addModule(const XmlElement& softwareModule)
    {
        addTitle(softwareModule);
        addValue("prefix", shown(softwareModule.textOf("Prefix")));
        addValue("models", shown(softwareModule.textOf("SupportedInstrumentModels")));
        std::string names;
        forEach(softwareModule, [&names](const XmlElement& element) {
            if (element.name == "IviPhysicalName")
                names += (names.empty() ? "" : " ") + nameOf(element);
        });
        addValue("physical names", names);
        addSettings(softwareModule);
    }

    void addTitle(const XmlElement& element)
    {
        text_ += "  " + nameOf(element);
        const std::string description = shown(element.textOf("Description"));
        if (!description.empty())
            text_ += " - " + description;
        text_ += '\n';
    }

    /// Nothing for an empty value.
    void addValue(std::string label, const std::string& value)
    {
        if (value.empty())
            return;
        label.resize(kLabelWidth, ' ');
        text_ += "    " + label + value + "\n";
    }

    void addVirtualName(const XmlElement& name)
    {
        const std::string names = nameOf(name) + " -> " + shown(name.textOf("MapTo"));
        const auto& ranges = name.itemsOf("VirtualRanges");
        if (ranges.empty())
            addValue("virtual name", names);
        for (const XmlElement& range : ranges)
            addValue("virtual names", names + ", " + shown(range.textOf("Min")) + " to " + shown(range.textOf("Max")) +
                                          " from " + shown(range.textOf("StartingPhysicalIndex")) + " on");
    }

    std::string assetText(const XmlElement& session) const
    {
        const XmlElement* const asset = targetOf(session, "IviHardwareAsset");
        if (asset == nullptr)
            return "(none)";
        return nameOf(*asset) + " (" + shown(asset->textOf("IOResourceDescriptor")) + ")";
    }

    std::string moduleText(const XmlElement& session) const
    {
        const XmlElement* const softwareModule = targetOf(session, "IviSoftwareModuleRef");
        return softwareModule == nullptr ? "(none)" : nameOf(*softwareModule);
    }

    static std::string flagsText(const XmlElement& session)
    {
        std::string flags;
        for (const SessionFlag& flag : kSessionFlags)
            flags += (flags.empty() ? "" : " ") + std::string(flag.element) + "=" + shown(session.textOf(flag.element));
        return flags;
    }

    static std::string nameOf(const XmlElement& element) { return shown(element.textOf("Name")); }

    const XmlElement* targetOf(const XmlElement& owner, std::string_view reference) const
    {
        const auto target = byId_.find(owner.referenceOf(reference));
        return target == byId_.end() ? nullptr : target->second;
    }

    const XmlElement& root_;
    std::unordered_map<std::string_view, const XmlElement*> byId_;
    std::string text_;
};

} // namespace

std::string listing(const StoreText& store)
{
    return Listing(store).text();
}

} // namespace store_tool
