// Any bytes as a store file: it is refused, or everything in it can be read and given back. Each input is tried twice:
// as it is, and with its bytes from 0x80 on as the elements of a store, so that generated inputs get past the parser.
#include "platform/config_server/handle_table.h"
#include "platform/config_server/store_file.h"
#include "tests/support/platform/store_listing.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace
{

/// What may stand in an element. A reference has an "@" in front and an id behind it; what is not listed holds text.
struct Contents
{
    std::string_view element;
    std::vector<std::string_view> children;
};

const std::vector<Contents> kGrammar{
    {"IviConfigStore", {"DriverSessions", "SoftwareModules", "HardwareAssets", "LogicalNames", "Name", "Sessions"}},
    {"SoftwareModules", {"IviSoftwareModule"}},
    {"HardwareAssets", {"IviHardwareAsset"}},
    {"DriverSessions", {"IviDriverSession", "@IviDriverSession"}},
    {"Sessions", {"IviSession", "@IviDriverSession"}},
    {"LogicalNames", {"IviLogicalName"}},
    {"PhysicalNames", {"IviPhysicalName"}},
    {"VirtualNames", {"IviVirtualName"}},
    {"VirtualRanges", {"IviVirtualRange"}},
    {"DataComponents",
     {"IviStructure", "IviBoolean", "IviInteger", "IviReal", "IviString", "IviAPIReference", "@IviStructure"}},
    {"IviSoftwareModule", {"Name", "PhysicalNames", "DataComponents", "Prefix"}},
    {"IviHardwareAsset", {"Name", "IOResourceDescriptor", "DataComponents"}},
    {"IviDriverSession",
     {"Name", "VirtualNames", "DataComponents", "@IviHardwareAsset", "@IviSoftwareModule", "Cache", "DriverSetup"}},
    {"IviSession", {"Name", "@IviHardwareAsset"}},
    {"IviLogicalName", {"Name", "@IviDriverSession", "@IviSession"}},
    {"IviPhysicalName", {"Name", "RCName", "PhysicalNames"}},
    {"IviVirtualName", {"VirtualRanges", "Name", "MapTo"}},
    {"IviVirtualRange", {"Min", "Max", "StartingPhysicalIndex"}},
    {"IviBoolean", {"Value", "Name", "ReadOnly"}},
    {"IviInteger", {"Value", "Name", "Units", "HelpContextID"}},
    {"IviReal", {"Value", "Name", "Units"}},
    {"IviString", {"Value", "Name", "Type"}},
    {"IviStructure", {"DataComponents", "Name"}},
    {"IviAPIReference", {"Value", "Name"}},
};

/// Writes a text in which every element is where it belongs and is closed.
class StoreText
{
public:
    std::string finish()
    {
        while (!open_.empty())
            close();
        return text_;
    }

    void add(std::uint8_t byte)
    {
        if (byte < kFirstOpening)
            text_ += static_cast<char>(byte);
        else if (byte < kFirstClosing)
            open(byte % 32U, byte < kFirstOpening + 32 ? "a" : "b");
        else if (open_.size() > 1)
            close();
    }

private:
    static constexpr std::uint8_t kFirstOpening = 0x80;
    static constexpr std::uint8_t kFirstClosing = 0xC0;

    void open(std::size_t choice, std::string_view id)
    {
        const auto row = std::ranges::find(kGrammar, open_.back(), &Contents::element);
        if (row == kGrammar.end())
            return;
        const std::string_view child = row->children[choice % row->children.size()];
        if (child.starts_with('@'))
            refer(child.substr(1), id);
        else
            open(child, id);
    }

    void open(std::string_view name, std::string_view id)
    {
        text_.append("<").append(name);
        const std::string fullId = std::string(name).append(id);
        if (name.starts_with("Ivi") && ids_.insert(fullId).second)
            text_.append(" id='").append(fullId).append("'");
        text_ += '>';
        open_.push_back(name);
    }

    void refer(std::string_view name, std::string_view id)
    {
        text_.append("<").append(name).append(name == "IviSoftwareModule" ? "Ref" : "");
        text_.append(" idref='").append(name).append(id).append("'/>");
    }

    void close()
    {
        text_.append("</").append(open_.back()).append(">");
        open_.pop_back();
    }

    std::string text_ = "<IviConfigStore>";
    std::vector<std::string_view> open_{"IviConfigStore"};
    std::set<std::string> ids_; ///< each is used once
};

/// Reads everything in a store; what goes wrong there ends the program.
void readAll(const std::string& text)
{
    using namespace config_server;
    auto document = parseStore(text);
    if (document == nullptr)
        return;
    const IviConfigStoreHandle store =
        handles().add({.kind = kStore, .store = std::make_shared<Store>(std::move(document))});
    kvxtest::listStore(store, {{"", "a", "b", "KVX2800T", "BenchSupply"}, {"", "a", "KVX2800T"}});
    if (IviConfig_Close(store) != VI_SUCCESS || handles().size() != 0)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    readAll(std::string(reinterpret_cast<const char*>(data), size));
    StoreText text;
    for (std::size_t at = 0; at < size; ++at)
        text.add(data[at]);
    readAll(text.finish());
    return 0;
}
