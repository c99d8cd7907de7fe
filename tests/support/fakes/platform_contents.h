#pragma once

#include <visa.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// What tests prepare for the fakes of the platform and find in them: the contents of the configuration store, and
/// error records.
namespace kvxtest
{

/// A data component of the fake configuration store.
struct StoredDataComponent
{
    std::string name;
    /// The word for its type, which need not fit the value.
    std::string type;
    /// Nothing for a structure.
    std::variant<std::monostate, std::string, ViInt32, ViReal64, ViBoolean> value;
    /// What a structure consists of.
    std::vector<StoredDataComponent> components;
};

/// What a component of the fake configuration store has apart from its own properties.
struct StoredComponent
{
    std::vector<StoredDataComponent> dataComponents;

    /// The contents of the structure "Configurable Initial Settings", which comes to be when there is none.
    std::vector<StoredDataComponent>& settings();
};

struct StoredPhysicalName
{
    std::string name;
    std::string repeatedCapability = "OutputChannel";
};

struct StoredSoftwareModule : StoredComponent
{
    std::string name = "KVX2800T";
    std::vector<StoredPhysicalName> physicalNames;
};

struct StoredVirtualRange
{
    ViInt32 minimum = 0;
    ViInt32 maximum = 0;
    ViInt32 startingPhysicalIndex = 0;
};

struct StoredVirtualName
{
    std::string name;
    std::string mapTo;
    std::vector<StoredVirtualRange> ranges;
};

/// A driver session of the fake configuration store, and what it refers to.
struct StoredDriverSession : StoredComponent
{
    std::string name = "KVX2800T";
    ViBoolean cache = VI_FALSE;
    ViBoolean interchangeCheck = VI_FALSE;
    ViBoolean queryInstrumentStatus = VI_FALSE;
    ViBoolean rangeCheck = VI_FALSE;
    ViBoolean recordCoercions = VI_FALSE;
    ViBoolean simulate = VI_FALSE;
    std::string driverSetup;
    /// The I/O resource descriptor of its hardware asset; nothing when the session has no asset.
    std::optional<std::string> ioResourceDescriptor;
    std::vector<StoredVirtualName> virtualNames;
    /// The name of its software module; nothing when it refers to none.
    std::optional<std::string> softwareModule;
};

/// The fake configuration store.
struct ConfigurationStore
{
    std::string processDefaultLocation = "/store/process.xml";
    std::string masterLocation = "/store/master.xml";
    /// The entry of the driver itself.
    std::optional<StoredDriverSession> driverSession;
    std::vector<StoredDriverSession> furtherSessions;
    /// Logical names, and the names of the driver sessions they stand for; they hide driver sessions of the same name.
    std::map<std::string, std::string, std::less<>> logicalNames;
    std::vector<StoredSoftwareModule> softwareModules;
};

/// What a call that does not do what it should does with its outputs.
enum class Lie
{
    None,
    Null,
    Garbage,
    Late,
};

/// A status and its text, as the session service keeps them.
struct ErrorEntry
{
    ViStatus code = VI_SUCCESS;
    std::string text;

    bool operator==(const ErrorEntry&) const = default;
};

} // namespace kvxtest
