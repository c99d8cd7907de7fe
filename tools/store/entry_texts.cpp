#include "tools/store/entry_texts.h"

namespace store_tool
{
namespace
{

constexpr std::string_view kRepeatedCapability = "OutputChannel";
constexpr int kOutputs = 6;

void writePhysicalNames(ElementWriter& writer, IdSource& ids)
{
    writer.open("PhysicalNames");
    for (int output = 1; output <= kOutputs; ++output) {
        writer.open("IviPhysicalName", ids.next());
        writer.leaf("Name", std::string(kRepeatedCapability) + std::to_string(output));
        writer.leaf("RCName", kRepeatedCapability);
        writer.empty("PhysicalNames").empty("PhysicalRanges").close();
    }
    writer.close();
}

/// A name for people; unique since ranges of one name do not overlap.
std::string rangeName(const VirtualName& owner, const VirtualRange& range)
{
    const std::string bounds = std::to_string(range.min) + "-" + std::to_string(range.max);
    return owner.name.empty() ? bounds : owner.name + " " + bounds;
}

void writeVirtualRanges(ElementWriter& writer, IdSource& ids, const VirtualName& owner)
{
    if (owner.ranges.empty()) {
        writer.empty("VirtualRanges");
        return;
    }
    writer.open("VirtualRanges");
    for (const VirtualRange& range : owner.ranges) {
        writer.open("IviVirtualRange", ids.next()).leaf("Name", rangeName(owner, range));
        writer.leaf("Max", std::to_string(range.max)).leaf("Min", std::to_string(range.min));
        writer.leaf("StartingPhysicalIndex", std::to_string(range.start)).close();
    }
    writer.close();
}

void writeVirtualNames(ElementWriter& writer, IdSource& ids, const std::vector<VirtualName>& names)
{
    if (names.empty()) {
        writer.empty("VirtualNames");
        return;
    }
    writer.open("VirtualNames");
    for (const VirtualName& name : names) {
        writer.open("IviVirtualName", ids.next()).leaf("Name", name.name).leaf("MapTo", name.mapTo);
        writeVirtualRanges(writer, ids, name);
        writer.close();
    }
    writer.close();
}

/// The flags in the order of the file format, which has the driver setup behind the first.
void writeOptions(ElementWriter& writer, const SessionEntry& entry)
{
    for (std::size_t i = 0; i < kSessionFlags.size(); ++i) {
        writer.leaf(kSessionFlags[i].element, entry.flags[i] ? "1" : "0");
        if (i == 0)
            writer.leaf("DriverSetup", entry.driverSetup);
    }
}

} // namespace

bool isApi(const XmlElement& element, const PublishedApi& api)
{
    return element.textOf("Name") == api.name && element.textOf("MajorVersion") == api.majorVersion &&
           element.textOf("MinorVersion") == api.minorVersion && element.textOf("Type") == api.type;
}

void writeApi(ElementWriter& writer, std::string_view id, const PublishedApi& api)
{
    writer.open("IviPublishedAPI", id).leaf("Name", api.name).leaf("MajorVersion", api.majorVersion);
    writer.leaf("MinorVersion", api.minorVersion).leaf("Type", api.type).close();
}

void writeDriverModule(ElementWriter& writer, IdSource& ids, std::string_view id, const std::vector<std::string>& apis)
{
    writer.open("IviSoftwareModule", id).leaf("Name", kDriverModule);
    writer.leaf("Description", "IVI-C Driver for KVX2800T").empty("DataComponents");
    writer.leaf("ModulePath", "KVX2800T.dll").leaf("Prefix", kDriverModule).leaf("ProgID", "");
    writer.leaf("SupportedInstrumentModels", "KVX2833T");
    writePhysicalNames(writer, ids);
    writer.open("PublishedAPIs");
    for (const std::string& api : apis)
        writer.reference("IviPublishedAPI", api);
    writer.close().leaf("ModulePath64", "KVX2800T_64.dll").close();
}

void writeAsset(ElementWriter& writer, std::string_view id, std::string_view name, std::string_view resource)
{
    writer.open("IviHardwareAsset", id).leaf("Name", name).leaf("Description", "").empty("DataComponents");
    writer.leaf("IOResourceDescriptor", resource).close();
}

void writeDriverSession(ElementWriter& writer, IdSource& ids, std::string_view id, const SessionEntry& entry,
                        const SessionReferences& references, const std::vector<Setting>& settings)
{
    writer.open("IviDriverSession", id).leaf("Name", entry.name).leaf("Description", entry.description);
    writeSettings(writer, ids, settings);
    writer.reference("IviHardwareAsset", references.asset);
    writer.reference("IviSoftwareModuleRef", references.softwareModule);
    writeVirtualNames(writer, ids, entry.virtualNames);
    writer.leaf("SoftwareModuleName", entry.softwareModule);
    writeOptions(writer, entry);
    writer.close();
}

void writeLogicalName(ElementWriter& writer, std::string_view id, std::string_view name, std::string_view sessionId)
{
    writer.open("IviLogicalName", id).leaf("Name", name).leaf("Description", "");
    writer.reference("IviDriverSession", sessionId).close();
}

} // namespace store_tool
