#include "runtime/driver_identity.h"
#include "runtime/driver_session.h"

#include <array>

// Every handle of the configuration server is released by the function that obtained it.

namespace drivekit
{
namespace
{

constexpr std::size_t kTextSize = 1024;
constexpr std::size_t kLocationSize = 260;

/// The flags that a driver session of the store supplies, in the order in which they are read.
struct StoredFlag
{
    ViInt32 property;
    bool TSRO::InherentOptions::*flag;
};

constexpr std::array<StoredFlag, 6> kStoredFlags = {{
    {IVICONFIG_VAL_DRIVER_SESSION_CACHE, &TSRO::InherentOptions::cache},
    {IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK, &TSRO::InherentOptions::interchangeCheck},
    {IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS, &TSRO::InherentOptions::queryInstrumentStatus},
    {IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK, &TSRO::InherentOptions::rangeCheck},
    {IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS, &TSRO::InherentOptions::recordCoercions},
    {IVICONFIG_VAL_DRIVER_SESSION_SIMULATE, &TSRO::InherentOptions::simulate},
}};

/// The first failure of two; a positive status of a text property only says that the text was cut.
ViStatus firstFailure(ViStatus earlier, ViStatus later)
{
    return earlier < 0 ? earlier : later;
}

/// Loads the store of this process into `store`: the process's own file or, without one, the master store.
ViStatus deserialize(IviConfigStoreHandle store)
{
    std::array<ViChar, kLocationSize> location{};
    const auto read = [&](ViInt32 property) {
        return IviConfig_GetConfigStorePropertyViString(store, property, kLocationSize, location.data());
    };
    ViStatus status = read(IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION);
    if (status >= 0 && location.front() == '\0')
        status = read(IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION);
    return status < 0 ? status : IviConfig_Deserialize(store, location.data());
}

} // namespace

ViStatus DriverSession::ResolveConfiguration(const std::string& /*resourceName*/, const std::string& optionString)
{
    logicalName_.clear();
    ioResourceDescriptor_.clear();
    options_ = TSRO::kDefaultOptions;
    IviConfigStoreHandle store = nullptr;
    ViStatus status = IviConfig_Initialize(&store);
    if (status < 0)
        return ReportConfigurationError(status);
    status = applyStore(store, optionString);
    const ViStatus closed = IviConfig_Close(store);
    if (status >= 0 && closed < 0)
        return ReportConfigurationError(closed);
    return status;
}

ViStatus DriverSession::applyStore(IviConfigStoreHandle store, const std::string& optionString)
{
    ViStatus status = deserialize(store);
    if (status < 0)
        return ReportConfigurationError(status);
    IviDriverSessionHandle configured = nullptr;
    status = IviConfig_GetDriverSession(store, kDriverPrefix.data(), &configured);
    if (status == IVICONFIG_ERROR_SESSION_NOT_FOUND) {
        IviConfig_ClearError();
        return applyOptions(nullptr, optionString);
    }
    if (status < 0)
        return ReportConfigurationError(status);
    status = applyOptions(configured, optionString);
    const ViStatus disposed = IviConfig_DisposeHandle(configured);
    if (status >= 0 && disposed < 0)
        return ReportConfigurationError(disposed);
    return status;
}

ViStatus DriverSession::applyOptions(IviDriverSessionHandle configured, const std::string& optionString)
{
    ViStatus status = configured == nullptr ? VI_SUCCESS : readDriverSession(configured);
    if (status >= 0)
        status = ParseOptionString(optionString);
    if (status < 0)
        return status;
    if (options_.simulate && model_.empty())
        model_ = kDefaultSimulatedModel;
    initialOptions_ = options_;
    return VI_SUCCESS;
}

ViStatus DriverSession::readDriverSession(IviDriverSessionHandle configured)
{
    ViStatus status = readHardwareAsset(configured);
    if (status >= 0)
        status = readInherentOptions(configured);
    std::array<ViChar, kTextSize> setup{};
    if (status >= 0)
        status = IviConfig_GetDriverSessionPropertyViString(configured, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP,
                                                            kTextSize, setup.data());
    if (status < 0)
        return ReportConfigurationError(status);
    return ParseDriverSetup(setup.data());
}

ViStatus DriverSession::readHardwareAsset(IviDriverSessionHandle configured)
{
    IviHardwareAssetHandle asset = nullptr;
    const ViStatus status = IviConfig_GetSessionHardwareAssetReference(configured, &asset);
    if (status < 0 || asset == nullptr)
        return status;
    std::array<ViChar, kTextSize> descriptor{};
    const ViStatus read = IviConfig_GetHardwareAssetPropertyViString(asset, IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR,
                                                                     kTextSize, descriptor.data());
    if (read >= 0)
        ioResourceDescriptor_ = descriptor.data();
    return firstFailure(read, IviConfig_DisposeHandle(asset));
}

ViStatus DriverSession::readInherentOptions(IviDriverSessionHandle configured)
{
    for (const StoredFlag& stored : kStoredFlags) {
        ViBoolean value = VI_FALSE;
        const ViStatus status = IviConfig_GetDriverSessionPropertyViBoolean(configured, stored.property, &value);
        if (status < 0)
            return status;
        options_.*stored.flag = value == VI_TRUE;
    }
    return VI_SUCCESS;
}

ViStatus DriverSession::ReportConfigurationError(ViStatus status)
{
    // The server has left its own text in the thread's error record (IVI-3.5 section 5.2.1).
    return ReportError(status);
}

} // namespace drivekit
