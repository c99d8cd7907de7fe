#include "tests/support/platform/generated_store.h"

#include <string_view>
#include <utility>

namespace kvxtest
{
namespace
{

/// Writes elements with ids that are each used once.
class StoreWriter
{
public:
    std::string take() { return std::move(text_); }

    void raw(std::string_view text) { text_ += text; }

    void value(std::string_view name, std::string_view text)
    {
        text_.append("<").append(name).append(">").append(text).append("</").append(name).append(">");
    }

    void reference(std::string_view name, const std::string& idref)
    {
        text_.append("<").append(name).append(" idref=\"").append(idref).append("\"/>\n");
    }

    void open(std::string_view name) { open(name, "p" + std::to_string(++lastId_)); }

    void open(std::string_view name, const std::string& id)
    {
        text_.append("<").append(name).append(" id=\"").append(id).append("\">");
    }

    void close(std::string_view name) { text_.append("</").append(name).append(">\n"); }

    void setting(std::string_view element, std::string_view name, std::string_view text)
    {
        open(element);
        heading(name, element.substr(3));
        value("Value", text);
        close(element);
    }

    void heading(std::string_view name, std::string_view type)
    {
        value("Name", name);
        raw("<Description></Description><ReadOnly>0</ReadOnly><UsedInSession>Required</UsedInSession>");
        value("Type", type);
        raw("<HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey></SoftwareModuleKey>");
    }

    void virtualName(std::string_view name, std::string_view mapTo, std::string_view range)
    {
        open("IviVirtualName");
        value("Name", name);
        value("MapTo", mapTo);
        raw("<VirtualRanges>");
        if (!range.empty()) {
            open("IviVirtualRange");
            raw(range);
            close("IviVirtualRange");
        }
        raw("</VirtualRanges>");
        close("IviVirtualName");
    }

private:
    std::string text_;
    std::size_t lastId_ = 0;
};

void writeModule(StoreWriter& store)
{
    store.open("IviSoftwareModule", "module");
    store.raw("<Name>KVX2800T</Name><PhysicalNames>");
    for (int output = 1; output <= 6; ++output) {
        store.open("IviPhysicalName");
        store.value("Name", "OutputChannel" + std::to_string(output));
        store.value("RCName", "OutputChannel");
        store.close("IviPhysicalName");
    }
    store.raw("</PhysicalNames>");
    store.close("IviSoftwareModule");
}

void writeAsset(StoreWriter& store, const std::string& number)
{
    store.open("IviHardwareAsset", "a" + number);
    store.value("Name", "Asset " + number);
    store.value("IOResourceDescriptor", "TCPIP0::127.0.0.1::" + number + "::SOCKET");
    store.close("IviHardwareAsset");
}

void writeSettings(StoreWriter& store, const std::string& number)
{
    store.raw("<DataComponents>");
    store.open("IviStructure");
    store.heading("Configurable Initial Settings", "Structure");
    store.raw("<DataComponents>");
    store.setting("IviBoolean", "Trace", "1");
    store.setting("IviInteger", "Number", number);
    store.setting("IviReal", "Settling Time", "0.25");
    store.setting("IviString", "Station", "line " + number);
    store.raw("</DataComponents>");
    store.close("IviStructure");
    store.raw("</DataComponents>");
}

void writeSession(StoreWriter& store, const std::string& number)
{
    store.open("IviDriverSession", "s" + number);
    store.value("Name", "Session" + number);
    writeSettings(store, number);
    store.reference("IviHardwareAsset", "a" + number);
    store.reference("IviSoftwareModuleRef", "module");
    store.raw("<VirtualNames>");
    store.virtualName("Core", "OutputChannel1", "");
    store.virtualName("Pair", "OutputChannel1,OutputChannel2", "");
    store.virtualName("Rail", "OutputChannel",
                      "<Name>r</Name><Max>3</Max><Min>1</Min>"
                      "<StartingPhysicalIndex>2</StartingPhysicalIndex>");
    store.raw("</VirtualNames><SoftwareModuleName>KVX2800T</SoftwareModuleName><Cache>1</Cache>"
              "<DriverSetup></DriverSetup><InterchangeCheck>0</InterchangeCheck><QueryInstrStatus>0</QueryInstrStatus>"
              "<RangeCheck>1</RangeCheck><RecordCoercions>0</RecordCoercions><Simulate>0</Simulate>");
    store.close("IviDriverSession");
}

void writeLogicalName(StoreWriter& store, const std::string& number)
{
    store.open("IviLogicalName");
    store.value("Name", "Bench" + number);
    store.reference("IviDriverSession", "s" + number);
    store.close("IviLogicalName");
}

template <class Write>
void writeEach(StoreWriter& store, std::string_view collection, std::size_t count, Write write)
{
    store.raw("<" + std::string(collection) + ">\n");
    for (std::size_t number = 1; number <= count; ++number)
        write(store, std::to_string(number));
    store.close(collection);
}

} // namespace

std::string generateStore(std::size_t benches)
{
    StoreWriter store;
    store.raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<IviConfigStore><Name>Generated</Name>\n<SoftwareModules>");
    writeModule(store);
    store.raw("</SoftwareModules>\n");
    writeEach(store, "HardwareAssets", benches, writeAsset);
    writeEach(store, "DriverSessions", benches, writeSession);
    writeEach(store, "Sessions", benches, [](StoreWriter& sessions, const std::string& number) {
        sessions.reference("IviDriverSession", "s" + number);
    });
    writeEach(store, "LogicalNames", benches, writeLogicalName);
    store.raw("</IviConfigStore>\n");
    return store.take();
}

} // namespace kvxtest
