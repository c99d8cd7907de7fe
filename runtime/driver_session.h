#pragma once

#include "base/option_grammar.h"
#include "instrument/inst_base.h"
#include "runtime/attribute_cache.h"
#include "runtime/error_messages.h"
#include "runtime/virtual_names.h"

#include <IviConfigServer.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace drivekit
{

class AttributeRegistry;

/// Values by name.
template <class Value>
using NamedValues = std::map<std::string, Value, std::less<>>;

/// What stands behind a `ViSession`: the session service's data pointer of a session leads here.
class IoSession
{
public:
    explicit IoSession(ViSession vi) : vi_(vi) {}
    IoSession(const IoSession&) = delete;
    IoSession& operator=(const IoSession&) = delete;
    virtual ~IoSession() = default;

protected:
    ViSession vi_;
};

/// One driver session: its options, what it was opened with, and its instrument.
///
/// Used only under the IVI session lock. Every operation returns a status; a negative one has been recorded on the
/// session by the operation that met it.
class DriverSession : public IoSession
{
public:
    /// `attributes` are those of the driver; they outlive the session.
    DriverSession(ViSession vi, const AttributeRegistry& attributes) : IoSession(vi), attributes_(attributes) {}

    /// Creates the instrument object and opens it on the session's connection descriptor.
    virtual ViStatus OpenInstrument() = 0;

    /// Closes the instrument's connection.
    virtual ViStatus CloseInstrument() = 0;

    /// Clears the instrument's status and checks it; nothing when simulating.
    virtual ViStatus InitializeStatus() = 0;

    /// Copies the instrument's identity.
    virtual ViStatus ReadIdentity(std::string& manufacturer, std::string& model, std::string& serialNumber,
                                  std::string& firmwareRevision) = 0;

    /// Reads the standard event status register and reports an error bit (0x3C: query, device-dependent, execution or
    /// command error); nothing when simulating or when status checking is off.
    virtual ViStatus CheckStatus() = 0;

    /// Makes a new object a working session. A failure leaves it to be deleted, with the instrument closed if it had
    /// got as far as that.
    virtual ViStatus Initialize(const std::string& resourceName, bool idQuery, bool reset,
                                const std::string& optionString);

    virtual ViStatus Close();

    virtual ViSession GetViSession() const;

    // The inherent options as they are now.
    virtual bool cache() const;
    virtual bool interchangeCheck() const;
    virtual bool queryInstrumentStatus() const;
    virtual bool rangeCheck() const;
    virtual bool recordCoercions() const;
    virtual bool simulate() const;

    // The inherent options as they were after initialisation.
    virtual bool initialCache() const;
    virtual bool initialInterchangeCheck() const;
    virtual bool initialQueryInstrumentStatus() const;
    virtual bool initialRangeCheck() const;
    virtual bool initialRecordCoercions() const;
    virtual bool initialSimulate() const;

    virtual void setCache(bool value);
    virtual void setInterchangeCheck(bool value);
    virtual void setQueryInstrumentStatus(bool value);
    virtual void setRangeCheck(bool value);
    virtual void setRecordCoercions(bool value);
    virtual void setSimulate(bool value);

    /// The option string as the session was opened with it.
    virtual const std::string& optionString() const;
    /// The resource or logical name as the session was opened with it.
    virtual const std::string& resourceName() const;
    /// Init's IdQuery was VI_TRUE.
    virtual bool idQuery() const;
    /// Init's Reset was VI_TRUE.
    virtual bool reset() const;
    /// The resource name, when it named an entry of the configuration store that has a descriptor; otherwise "".
    virtual const std::string& logicalName() const;
    /// The I/O resource descriptor of the hardware asset that the configuration store names; "" when it names none.
    virtual const std::string& ioResourceDescriptor() const;
    /// The DriverSetup text of the option string or, without one there, of the configuration store.
    virtual const std::string& driverSetup() const;

    // The instrument's identity, as Initialize read it.
    virtual const std::string& manufacturer() const;
    virtual const std::string& model() const;
    virtual const std::string& serialNumber() const;
    virtual const std::string& firmwareRevision() const;

    // Milliseconds. Kept for the session's users; no operation of the session reads them.
    virtual ViInt32 openTimeoutMs() const;
    virtual ViInt32 ioTimeoutMs() const;
    virtual ViInt32 closeTimeoutMs() const;
    virtual bool interchangeCheckSupported() const;
    virtual ViInt32 settlingTimeMs() const;

    // The configurable initial settings of the configuration store, by name.
    virtual const NamedValues<bool>& configuredBooleans() const;
    virtual const NamedValues<ViInt32>& configuredIntegers() const;
    virtual const NamedValues<ViReal64>& configuredReals() const;
    virtual const NamedValues<std::string>& configuredStrings() const;

    // One setting of a type; null when the store has none of that name.
    virtual const std::string* configuredString(std::string_view name) const;
    virtual const ViInt32* configuredInteger(std::string_view name) const;
    virtual const ViReal64* configuredReal(std::string_view name) const;
    virtual const bool* configuredBoolean(std::string_view name) const;

    /// The virtual names of the store's driver sessions.
    virtual const VirtualNames& virtualNames() const;
    /// The physical names that the store lists for the driver, by repeated capability.
    virtual const NamedValues<std::vector<std::string>>& physicalNames() const;
    /// Appends the selector text that a token stands for, as a virtual name or, failing that, as "CH1" to "CH6"; false,
    /// and nothing appended, when it stands for itself.
    virtual bool mappedText(std::string_view token, std::string& text) const;

    /// The pairs of the DriverSetup text, and the inherent options that option strings have given.
    virtual const NamedValues<std::string>& driverSetupOptions() const;
    virtual const NamedValues<std::string>& inherentOptionTable() const;
    /// Null when the DriverSetup text has no such name.
    virtual const std::string* driverSetupOption(std::string_view name) const;

    /// Whether the supported-model table holds the session's model.
    virtual bool IsModelSupported() const;
    /// Whether the resource name named an entry of the configuration store.
    virtual bool namesStoreEntry() const;
    virtual bool IsModel(std::string_view name) const;
    static bool IsModelOfFamily(std::string_view model, std::string_view family);
    /// What the connection is opened on: the descriptor of the store entry that the resource name names, otherwise the
    /// resource name.
    virtual const std::string& connectionDescriptor() const;

    /// The reporters of error_messages.h, on this session.
    virtual ViStatus ReportError(ViStatus code, MessageArguments arguments = {});
    virtual ViStatus ReportErrorWithElaboration(ViStatus code, std::string_view elaboration,
                                                MessageArguments arguments = {});
    virtual ViStatus ReportErrorText(ViStatus code, std::string_view text, MessageArguments arguments = {});

    /// Records a failure of the configuration server. The server's own text is the thread's error.
    virtual ViStatus ReportConfigurationError(ViStatus status);

    /// Marks every remembered attribute value invalid.
    virtual void InvalidateAllAttributes();

    /// Sets the options: their defaults, then what the configuration store has under the driver's prefix, then what it
    /// has under the resource name, then the option string.
    virtual ViStatus ResolveConfiguration(const std::string& resourceName, const std::string& optionString);

    /// Takes virtual names, descriptor, flags and DriverSetup from a driver session of the configuration store.
    virtual ViStatus ReadDriverSession(IviDriverSessionHandle configured);

    /// Takes the configurable initial settings of a driver session or a software module; a value read later replaces
    /// one of its name.
    virtual ViStatus ReadConfigurableInitialSettings(IviConfigComponentHandle component);

    // Parsing of option strings; an option set before one that fails stays set.

    /// Takes the model from the configured string setting "model", if there is one.
    virtual ViStatus ApplyConfiguredModel();

    /// A whole option string: DriverSetup first, then the inherent options in front of it.
    virtual ViStatus ParseOptionString(const std::string& optionString);
    virtual ViStatus ParseDriverSetup(const std::string& driverSetup);
    /// Acts on "Model" and accepts every other name.
    virtual ViStatus ApplyDriverSetupOption(const std::string& name, const std::string& value);
    virtual ViStatus ParseInherentOptions(const std::string& options);
    virtual ViStatus ParseBooleanOptionValue(const std::string& name, const std::string& value, bool& flag);

    virtual ViStatus ReadVirtualNames(IviDriverSessionHandle configured);
    virtual ViStatus ReadPhysicalNames(IviSoftwareModuleHandle module);

    /// Lets a simulated instrument take the place of a real one, which is closed.
    virtual ViStatus StartSimulation() = 0;
    /// Whether the instrument is a simulated one, whatever the option says.
    bool runsSimulated() const { return runsSimulated_; }

    template <class Value>
    AttributeCache<Value>& attributeCache()
    {
        return std::get<AttributeCache<Value>>(attributeCaches_);
    }

    /// The instrument object; null until OpenInstrument.
    const std::shared_ptr<TSRO::InstBase>& instrument() const { return instrument_; }

protected:
    /// Takes the place of the instrument before, whose connection is closed; the status of that does not count.
    void setInstrument(std::shared_ptr<TSRO::InstBase> instrument, bool simulated);

private:
    struct StoreObjects;

    ViStatus openSession();
    ViStatus checkIdentity();
    void forgetConfiguration();
    ViStatus applyStore(IviConfigStoreHandle store, const std::string& resourceName, const std::string& optionString);
    ViStatus applyEntries(IviConfigStoreHandle store, StoreObjects& objects, const std::string& resourceName);
    ViStatus findPrefixEntry(IviConfigStoreHandle store, StoreObjects& objects, bool named);
    ViStatus findModule(IviConfigStoreHandle store, StoreObjects& objects);
    ViStatus findNamedEntry(IviConfigStoreHandle store, StoreObjects& objects, const std::string& resourceName);
    ViStatus readEntry(IviDriverSessionHandle entry, StoreObjects& objects);
    void noteNamedEntry(const std::string& resourceName, bool hasDescriptor);
    ViStatus applyOptions(const StoreObjects& objects, const std::string& optionString);
    ViStatus readHardwareAsset(IviDriverSessionHandle configured);
    ViStatus readInherentOptions(IviDriverSessionHandle configured);
    ViStatus readVirtualName(IviVirtualNameHandle virtualName);
    ViStatus readSetting(IviDataComponentHandle setting);
    ViStatus readStringSetting(IviDataComponentHandle setting, const std::string& name);

    const AttributeRegistry& attributes_;
    bool idQuery_ = false;
    bool reset_ = false;
    base::InherentOptions options_;
    base::InherentOptions initialOptions_;
    ViInt32 openTimeoutMs_ = 2000;
    ViInt32 ioTimeoutMs_ = 2000;
    ViInt32 closeTimeoutMs_ = 2000;
    bool interchangeCheckSupported_ = false;
    ViInt32 settlingTimeMs_ = 1000;
    std::string optionString_;
    std::string resourceName_;
    std::string logicalName_;
    std::string ioResourceDescriptor_;
    std::string driverSetup_;
    std::string manufacturer_;
    std::string model_;
    std::string serialNumber_;
    std::string firmwareRevision_;
    NamedValues<std::string> inherentOptions_;
    NamedValues<std::string> driverSetupOptions_;
    NamedValues<bool> configuredBooleans_;
    NamedValues<ViInt32> configuredIntegers_;
    NamedValues<ViReal64> configuredReals_;
    NamedValues<std::string> configuredStrings_;
    VirtualNames virtualNames_;
    NamedValues<std::vector<std::string>> physicalNames_;
    bool namesStoreEntry_ = false;
    bool runsSimulated_ = false;
    std::string connectionDescriptor_;
    std::tuple<AttributeCache<ViInt32>, AttributeCache<ViReal64>, AttributeCache<ViBoolean>, AttributeCache<ViString>>
        attributeCaches_;
    std::shared_ptr<TSRO::InstBase> instrument_;
};

} // namespace drivekit
