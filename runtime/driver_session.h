#pragma once

#include "instrument/inst_base.h"
#include "instrument/option_grammar.h"
#include "runtime/error_messages.h"

#include <IviConfigServer.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace drivekit
{

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
    using IoSession::IoSession;

    /// Creates the instrument object and opens it.
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

    /// Whether the supported-model table holds the session's model.
    virtual bool IsModelSupported() const;
    virtual bool IsModel(std::string_view name) const;
    static bool IsModelOfFamily(std::string_view model, std::string_view family);

    /// The reporters of error_messages.h, on this session.
    virtual ViStatus ReportError(ViStatus code, MessageArguments arguments = {});
    virtual ViStatus ReportErrorWithElaboration(ViStatus code, std::string_view elaboration,
                                                MessageArguments arguments = {});
    virtual ViStatus ReportErrorText(ViStatus code, std::string_view text, MessageArguments arguments = {});

    /// Forgets every cached attribute value. No attribute is cached: each read goes to the instrument.
    virtual void InvalidateAllAttributes();

    /// Sets the options: their defaults, then the configuration store's driver session, then the option string.
    virtual ViStatus ResolveConfiguration(const std::string& resourceName, const std::string& optionString);

    // Parsing of option strings; an option set before one that fails stays set.

    /// A whole option string: DriverSetup first, then the inherent options in front of it.
    virtual ViStatus ParseOptionString(const std::string& optionString);
    virtual ViStatus ParseDriverSetup(const std::string& driverSetup);
    /// Acts on "Model" and accepts every other name.
    virtual ViStatus ApplyDriverSetupOption(const std::string& name, const std::string& value);
    virtual ViStatus ParseInherentOptions(const std::string& options);
    virtual ViStatus ParseBooleanOptionValue(const std::string& name, const std::string& value, bool& flag);

    /// Records a failure of the configuration server. The server's own text is the thread's error.
    ViStatus ReportConfigurationError(ViStatus status);

    /// The instrument object; null until OpenInstrument.
    const std::shared_ptr<TSRO::InstBase>& instrument() const { return instrument_; }

protected:
    /// Takes the place of the instrument before, whose connection is closed; the status of that does not count.
    void setInstrument(std::shared_ptr<TSRO::InstBase> instrument);

private:
    using OptionTable = std::map<std::string, std::string, std::less<>>;

    ViStatus openSession();
    ViStatus checkIdentity();
    ViStatus applyStore(IviConfigStoreHandle store, const std::string& optionString);
    ViStatus applyOptions(IviDriverSessionHandle configured, const std::string& optionString);
    ViStatus readDriverSession(IviDriverSessionHandle configured);
    ViStatus readHardwareAsset(IviDriverSessionHandle configured);
    ViStatus readInherentOptions(IviDriverSessionHandle configured);

    bool idQuery_ = false;
    bool reset_ = false;
    TSRO::InherentOptions options_;
    TSRO::InherentOptions initialOptions_;
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
    OptionTable inherentOptions_;
    OptionTable driverSetupOptions_;
    std::shared_ptr<TSRO::InstBase> instrument_;
};

} // namespace drivekit
