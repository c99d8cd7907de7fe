#include "tests/support/platform/store_listing.h"

#include <array>
#include <sstream>
#include <stdexcept>

namespace kvxtest
{
namespace
{

struct Label
{
    ViInt32 property;
    const char* text;
};

constexpr std::array kStoreTexts{
    Label{IVICONFIG_VAL_CONFIG_STORE_NAME, "Name"},
    Label{IVICONFIG_VAL_CONFIG_STORE_DESCRIPTION, "Description"},
    Label{IVICONFIG_VAL_CONFIG_STORE_REVISION, "Revision"},
    Label{IVICONFIG_VAL_CONFIG_STORE_VENDOR, "Vendor"},
};

constexpr std::array kSessionTexts{
    Label{IVICONFIG_VAL_CONFIG_COMPONENT_NAME, "Name"},
    Label{IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION, "Description"},
    Label{IVICONFIG_VAL_SESSION_SOFTWARE_MODULE_NAME, "SoftwareModuleName"},
    Label{IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP, "DriverSetup"},
};

constexpr std::array kSessionFlags{
    Label{IVICONFIG_VAL_DRIVER_SESSION_CACHE, "Cache"},
    Label{IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK, "InterchangeCheck"},
    Label{IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS, "QueryInstrStatus"},
    Label{IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK, "RangeCheck"},
    Label{IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS, "RecordCoercions"},
    Label{IVICONFIG_VAL_DRIVER_SESSION_SIMULATE, "Simulate"},
};

constexpr std::array kAssetTexts{
    Label{IVICONFIG_VAL_CONFIG_COMPONENT_NAME, "Name"},
    Label{IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION, "Description"},
    Label{IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR, "IOResourceDescriptor"},
};

constexpr std::array kComponentTexts{
    Label{IVICONFIG_VAL_DATA_COMPONENT_NAME, "Name"},
    Label{IVICONFIG_VAL_DATA_COMPONENT_DESCRIPTION, "Description"},
    Label{IVICONFIG_VAL_DATA_COMPONENT_USED_IN_SESSION, "UsedInSession"},
    Label{IVICONFIG_VAL_DATA_COMPONENT_TYPE, "Type"},
    Label{IVICONFIG_VAL_DATA_COMPONENT_HELP_FILE_PATH, "HelpFilePath"},
    Label{IVICONFIG_VAL_DATA_COMPONENT_SW_MODULE_KEY, "SoftwareModuleKey"},
};

using ItemGetter = ViStatus(_VI_FUNC*)(IviConfigHandle collection, ViInt32 index, IviConfigHandle* item);
using CountGetter = ViStatus(_VI_FUNC*)(IviConfigHandle collection, ViInt32* count);

/// Answers that say that there is nothing of this name or kind.
bool isAbsence(ViStatus status)
{
    return status == IVICONFIG_ERROR_SESSION_NOT_FOUND || status == IVICONFIG_ERROR_NOT_EXIST ||
           status == IVICONFIG_ERROR_INVALID_PROPERTY_ID || status == IVICONFIG_ERROR_INVALID_HANDLE;
}

/// True when a call succeeded, false when it found nothing to succeed with.
bool hasFound(ViStatus status, const char* what)
{
    if (isAbsence(status)) {
        IviConfig_ClearError();
        return false;
    }
    require(status, what);
    return true;
}

class Lister
{
public:
    std::string text() const { return lines_.str(); }

    void listStoreTexts(IviConfigStoreHandle store)
    {
        listTexts(IviConfig_GetConfigStorePropertyViString, store, kStoreTexts);
    }

    /// The names of the driver sessions, and the logical names with what they lead to.
    void listNames(IviConfigStoreHandle store)
    {
        const OwnedHandle sessions = obtain(IviConfig_GetConfigStoreDriverSessionCollection, store);
        eachItem(sessions, IviConfig_GetDriverSessionCount, IviConfig_GetDriverSessionItemByIndex,
                 [&](IviDriverSessionHandle session) {
                     const std::string name = nameOf(IviConfig_GetDriverSessionPropertyViString, session);
                     obtain(IviConfig_GetDriverSessionItemByName, sessions, name.c_str());
                     heading("driver session", name);
                 });
        const OwnedHandle names = obtain(IviConfig_GetConfigStoreLogicalNameCollection, store);
        eachItem(
            names, IviConfig_GetLogicalNameCount, IviConfig_GetLogicalNameItemByIndex, [&](IviLogicalNameHandle name) {
                obtain(IviConfig_GetLogicalNameItemByName, names,
                       nameOf(IviConfig_GetLogicalNamePropertyViString, name).c_str());
                heading("logical name", nameAndOther(IviConfig_GetLogicalNamePropertyViString, name) + targetOf(name));
            });
    }

    void listSession(IviConfigStoreHandle store, const std::string& name)
    {
        IviDriverSessionHandle found = nullptr;
        if (!hasFound(IviConfig_GetDriverSession(store, name.c_str(), &found), "looking up a driver session"))
            return;
        const OwnedHandle session(found);
        heading("session", name);
        ++depth_;
        listTexts(IviConfig_GetDriverSessionPropertyViString, session, kSessionTexts);
        listFlags(session);
        listAsset(session);
        const OwnedHandle module = obtain(IviConfig_GetSessionSoftwareModuleReference, session);
        if (module != nullptr)
            listModule(module);
        listVirtualNames(session);
        listData(obtain(IviConfig_GetConfigComponentDataComponentCollection, session));
        --depth_;
    }

    void listModuleOf(IviConfigStoreHandle store, const std::string& name)
    {
        const OwnedHandle modules = obtain(IviConfig_GetConfigStoreSoftwareModuleCollection, store);
        IviSoftwareModuleHandle found = nullptr;
        if (!hasFound(IviConfig_GetSoftwareModuleItemByName(modules, name.c_str(), &found), "looking up a module"))
            return;
        const OwnedHandle module(found);
        heading("module", name);
        ++depth_;
        listModule(module);
        --depth_;
    }

private:
    void heading(const char* what, const std::string& name) { line() << what << ' ' << name << '\n'; }

    std::ostream& line() { return lines_ << std::string(2 * depth_, ' '); }

    template <class Value>
    void property(const char* label, const Value& value)
    {
        line() << label << '=' << value << '\n';
    }

    template <class Labels>
    void listTexts(TextGetter get, IviConfigHandle handle, const Labels& labels)
    {
        for (const Label& label : labels)
            property(label.text, readText(get, handle, label.property));
    }

    void listFlags(IviDriverSessionHandle session)
    {
        for (const Label& label : kSessionFlags) {
            ViBoolean flag = VI_FALSE;
            require(IviConfig_GetDriverSessionPropertyViBoolean(session, label.property, &flag), label.text);
            property(label.text, flag);
        }
    }

    void listAsset(IviDriverSessionHandle session)
    {
        const OwnedHandle asset = obtain(IviConfig_GetSessionHardwareAssetReference, session);
        if (asset == nullptr)
            return;
        heading("asset", "");
        ++depth_;
        listTexts(IviConfig_GetHardwareAssetPropertyViString, asset, kAssetTexts);
        listData(obtain(IviConfig_GetConfigComponentDataComponentCollection, asset));
        --depth_;
    }

    void listModule(IviSoftwareModuleHandle module)
    {
        const OwnedHandle names = obtain(IviConfig_GetSoftwareModulePhysicalNameCollection, module);
        eachItem(names, IviConfig_GetPhysicalNameCount, IviConfig_GetPhysicalNameItemByIndex,
                 [this](IviPhysicalNameHandle name) {
                     heading("physical name", nameAndOther(IviConfig_GetPhysicalNamePropertyViString, name));
                 });
        listData(obtain(IviConfig_GetConfigComponentDataComponentCollection, module));
    }

    void listVirtualNames(IviDriverSessionHandle session)
    {
        const OwnedHandle names = obtain(IviConfig_GetSessionVirtualNameCollection, session);
        eachItem(names, IviConfig_GetVirtualNameCount, IviConfig_GetVirtualNameItemByIndex,
                 [this](IviVirtualNameHandle name) { listVirtualName(name); });
    }

    void listVirtualName(IviVirtualNameHandle name)
    {
        heading("virtual name", nameAndOther(IviConfig_GetVirtualNamePropertyViString, name));
        ++depth_;
        const OwnedHandle ranges = obtain(IviConfig_GetVirtualNameVirtualRangeCollection, name);
        eachItem(ranges, IviConfig_GetVirtualRangeCount, IviConfig_GetVirtualRangeItemByIndex,
                 [this](IviVirtualRangeHandle range) { listRange(range); });
        --depth_;
    }

    void listRange(IviVirtualRangeHandle range)
    {
        const auto number = [range](ViInt32 propertyId) {
            ViInt32 value = 0;
            require(IviConfig_GetVirtualRangePropertyViInt32(range, propertyId, &value), "reading a range");
            return value;
        };
        line() << "range " << number(IVICONFIG_VAL_VIRTUAL_RANGE_MIN) << " to "
               << number(IVICONFIG_VAL_VIRTUAL_RANGE_MAX) << " at "
               << number(IVICONFIG_VAL_VIRTUAL_RANGE_START_PHYSICAL_INDEX) << '\n';
    }

    void listData(const OwnedHandle& components)
    {
        eachItem(components, IviConfig_GetDataComponentCount, IviConfig_GetDataComponentItemByIndex,
                 [this, &components](IviDataComponentHandle component) {
                     const std::string name = readText(IviConfig_GetDataComponentPropertyViString, component,
                                                       IVICONFIG_VAL_DATA_COMPONENT_NAME);
                     obtain(IviConfig_GetDataComponentItemByName, components, name.c_str());
                     listComponent(component);
                 });
    }

    void listComponent(IviDataComponentHandle component)
    {
        heading("component", "");
        ++depth_;
        listTexts(IviConfig_GetDataComponentPropertyViString, component, kComponentTexts);
        listNumber<ViInt32>(IviConfig_GetDataComponentPropertyViInt32, component,
                            {IVICONFIG_VAL_DATA_COMPONENT_HELP_CONTEXT_ID, "HelpContextID"});
        listNumber<ViBoolean>(IviConfig_GetDataComponentPropertyViBoolean, component,
                              {IVICONFIG_VAL_DATA_COMPONENT_READ_ONLY, "ReadOnly"});
        listText(component, {IVICONFIG_VAL_DATA_COMPONENT_UNITS, "Units"});
        listText(component, {IVICONFIG_VAL_DATA_COMPONENT_VALUE, "String"});
        listNumber<ViInt32>(IviConfig_GetDataComponentPropertyViInt32, component,
                            {IVICONFIG_VAL_DATA_COMPONENT_VALUE, "Integer"});
        listNumber<ViReal64>(IviConfig_GetDataComponentPropertyViReal64, component,
                             {IVICONFIG_VAL_DATA_COMPONENT_VALUE, "Real"});
        listNumber<ViBoolean>(IviConfig_GetDataComponentPropertyViBoolean, component,
                              {IVICONFIG_VAL_DATA_COMPONENT_VALUE, "Boolean"});
        IviDataComponentCollectionHandle inner = nullptr;
        if (hasFound(IviConfig_GetStructureDataComponentCollection(component, &inner), "opening a structure"))
            listData(OwnedHandle(inner));
        --depth_;
    }

    /// A property that only some kinds of data components have.
    void listText(IviDataComponentHandle component, const Label& label)
    {
        const ViStatus needed = IviConfig_GetDataComponentPropertyViString(component, label.property, 0, nullptr);
        if (needed > 0)
            property(label.text, readText(IviConfig_GetDataComponentPropertyViString, component, label.property));
        else
            hasFound(needed, label.text);
    }

    template <class Value>
    void listNumber(ViStatus(_VI_FUNC* get)(IviConfigHandle, ViInt32, Value*), IviDataComponentHandle component,
                    const Label& label)
    {
        Value value{};
        if (hasFound(get(component, label.property, &value), label.text))
            property(label.text, value);
    }

    static std::string targetOf(IviLogicalNameHandle name)
    {
        const OwnedHandle session = obtain(IviConfig_GetLogicalNameSessionReference, name);
        return session == nullptr ? "" : " to " + nameOf(IviConfig_GetSessionPropertyViString, session);
    }

    static std::string nameOf(TextGetter get, IviConfigHandle handle) { return readText(get, handle, 1); }

    static std::string nameAndOther(TextGetter get, IviConfigHandle handle)
    {
        return readText(get, handle, 1) + " = " + readText(get, handle, 2);
    }

    template <class Visit>
    void eachItem(IviConfigHandle collection, CountGetter getCount, ItemGetter getItem, Visit visit)
    {
        ViInt32 count = 0;
        require(getCount(collection, &count), "counting items");
        for (ViInt32 index = 1; index <= count; ++index)
            visit(obtain(getItem, collection, index));
    }

    std::ostringstream lines_;
    std::size_t depth_ = 0;
};

} // namespace

OwnedHandle::~OwnedHandle()
{
    if (handle_ != nullptr)
        IviConfig_DisposeHandle(handle_);
}

void require(ViStatus status, const char* what)
{
    if (status != VI_SUCCESS)
        throw std::runtime_error(std::string(what) + ": status " + std::to_string(status));
}

std::string readText(TextGetter get, IviConfigHandle handle, ViInt32 property)
{
    const ViStatus needed = get(handle, property, 0, nullptr);
    if (needed < 1)
        throw std::runtime_error("asking for the size of property " + std::to_string(property) + ": status " +
                                 std::to_string(needed));
    std::string text(static_cast<std::size_t>(needed), '#');
    require(get(handle, property, needed, text.data()), "reading a text");
    if (text.find('\0') != text.size() - 1)
        throw std::runtime_error("the text of property " + std::to_string(property) + " has another size than told");
    text.pop_back();
    return text;
}

std::string listStore(IviConfigStoreHandle store, const StoreNames& names)
{
    Lister lister;
    lister.listStoreTexts(store);
    lister.listNames(store);
    for (const std::string& name : names.sessions)
        lister.listSession(store, name);
    for (const std::string& name : names.modules)
        lister.listModuleOf(store, name);
    return lister.text();
}

} // namespace kvxtest
