#include "api/KVX2800T.h"
#include "api/guarded_frame.h"

using TSRO::InstBase;

ViStatus _VI_FUNC KVX2800T_ConfigureCurrentProtectionLevel(ViSession vi, ViConstString channelName, ViReal64 level)
{
    return api::configureChannel(vi, channelName, &InstBase::setCurrentProtectionLevel, level);
}

ViStatus _VI_FUNC KVX2800T_QueryCurrentProtectionLevel(ViSession vi, ViConstString channelName, ViReal64* level)
{
    return api::queryChannel(vi, channelName, {__func__, "Level"}, &InstBase::currentProtectionLevel, level);
}

ViStatus _VI_FUNC KVX2800T_ConfigureCurrentProtectionDelay(ViSession vi, ViConstString channelName, ViReal64 delay)
{
    return api::configureChannel(vi, channelName, &InstBase::setCurrentProtectionDelay, delay);
}

ViStatus _VI_FUNC KVX2800T_QueryCurrentProtectionDelay(ViSession vi, ViConstString channelName, ViReal64* delay)
{
    return api::queryChannel(vi, channelName, {__func__, "Delay"}, &InstBase::currentProtectionDelay, delay);
}

ViStatus _VI_FUNC KVX2800T_ConfigureCurrentProtectionDelayMode(ViSession vi, ViConstString channelName, ViInt32 mode)
{
    return api::configureChannel(vi, channelName, &InstBase::setCurrentProtectionDelayMode, mode);
}

ViStatus _VI_FUNC KVX2800T_QueryCurrentProtectionDelayMode(ViSession vi, ViConstString channelName, ViInt32* mode)
{
    return api::queryChannel(vi, channelName, {__func__, "Mode"}, &InstBase::currentProtectionDelayMode, mode);
}

ViStatus _VI_FUNC KVX2800T_ConfigureOVPValue(ViSession vi, ViConstString channelName, ViReal64 level)
{
    return api::configureChannel(vi, channelName, &InstBase::setOvpValue, level);
}

ViStatus _VI_FUNC KVX2800T_QueryOVPValue(ViSession vi, ViConstString channelName, ViReal64* level)
{
    return api::queryChannel(vi, channelName, {__func__, "Level"}, &InstBase::ovpValue, level);
}

ViStatus _VI_FUNC KVX2800T_ConfigureOVPEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return api::configureChannel(vi, channelName, &InstBase::setOvpEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryOVPEnabled(ViSession vi, ViConstString channelName, ViBoolean* enabled)
{
    return api::queryChannel(vi, channelName, {__func__, "Enabled"}, &InstBase::ovpEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_ConfigureOCPValue(ViSession vi, ViConstString channelName, ViReal64 level)
{
    return api::configureChannel(vi, channelName, &InstBase::setOcpValue, level);
}

ViStatus _VI_FUNC KVX2800T_QueryOCPValue(ViSession vi, ViConstString channelName, ViReal64* level)
{
    return api::queryChannel(vi, channelName, {__func__, "Level"}, &InstBase::ocpValue, level);
}

ViStatus _VI_FUNC KVX2800T_ConfigureOCPEnabled(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return api::configureChannel(vi, channelName, &InstBase::setOcpEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryOCPEnabled(ViSession vi, ViConstString channelName, ViBoolean* enabled)
{
    return api::queryChannel(vi, channelName, {__func__, "Enabled"}, &InstBase::ocpEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_ConfigureOCPDelay(ViSession vi, ViConstString channelName, ViReal64 delay)
{
    return api::configureChannel(vi, channelName, &InstBase::setOcpDelay, delay);
}

ViStatus _VI_FUNC KVX2800T_QueryOCPDelay(ViSession vi, ViConstString channelName, ViReal64* delay)
{
    return api::queryChannel(vi, channelName, {__func__, "Delay"}, &InstBase::ocpDelay, delay);
}

ViStatus _VI_FUNC KVX2800T_ConfigureOCPDelayMode(ViSession vi, ViConstString channelName, ViInt32 mode)
{
    return api::configureChannel(vi, channelName, &InstBase::setOcpDelayMode, mode);
}

ViStatus _VI_FUNC KVX2800T_QueryOCPDelayMode(ViSession vi, ViConstString channelName, ViInt32* mode)
{
    return api::queryChannel(vi, channelName, {__func__, "Mode"}, &InstBase::ocpDelayMode, mode);
}

ViStatus _VI_FUNC KVX2800T_ConfigureRemoteSense(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return api::configureChannel(vi, channelName, &InstBase::setRemoteSenseEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryRemoteSense(ViSession vi, ViConstString channelName, ViBoolean* enabled)
{
    return api::queryChannel(vi, channelName, {__func__, "Enabled"}, &InstBase::remoteSenseEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_ConfigureOutputSense(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return api::configureChannel(vi, channelName, &InstBase::setOutputSenseEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryOutputSense(ViSession vi, ViConstString channelName, ViBoolean* enabled)
{
    return api::queryChannel(vi, channelName, {__func__, "Enabled"}, &InstBase::outputSenseEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_ConfigurePowerOnState(ViSession vi, ViConstString channelName, ViInt32 state)
{
    return api::configureChannel(vi, channelName, &InstBase::setPowerOnState, state);
}

ViStatus _VI_FUNC KVX2800T_QueryPowerOnState(ViSession vi, ViConstString channelName, ViInt32* state)
{
    return api::queryChannel(vi, channelName, {__func__, "State"}, &InstBase::powerOnState, state);
}

ViStatus _VI_FUNC KVX2800T_ConfigurePairing(ViSession vi, ViConstString channelName, ViInt32 pairing)
{
    return api::configureChannel(vi, channelName, &InstBase::setPairing, pairing);
}

ViStatus _VI_FUNC KVX2800T_QueryPairing(ViSession vi, ViConstString channelName, ViInt32* pairing)
{
    return api::queryChannel(vi, channelName, {__func__, "Pairing"}, &InstBase::pairing, pairing);
}

ViStatus _VI_FUNC KVX2800T_ConfigureTracking(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return api::configureChannel(vi, channelName, &InstBase::setTrackingEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryTracking(ViSession vi, ViConstString channelName, ViBoolean* enabled)
{
    return api::queryChannel(vi, channelName, {__func__, "Enabled"}, &InstBase::trackingEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_ConfigureOutputOffMode(ViSession vi, ViConstString channelName, ViInt32 mode)
{
    return api::configureChannel(vi, channelName, &InstBase::setOutputOffMode, mode);
}

ViStatus _VI_FUNC KVX2800T_QueryOutputOffMode(ViSession vi, ViConstString channelName, ViInt32* mode)
{
    return api::queryChannel(vi, channelName, {__func__, "Mode"}, &InstBase::outputOffMode, mode);
}

ViStatus _VI_FUNC KVX2800T_ConfigureTriggerInput(ViSession vi, ViConstString channelName, ViBoolean enabled)
{
    return api::configureChannel(vi, channelName, &InstBase::setTriggerInputEnabled, enabled);
}

ViStatus _VI_FUNC KVX2800T_QueryTriggerInput(ViSession vi, ViConstString channelName, ViBoolean* enabled)
{
    return api::queryChannel(vi, channelName, {__func__, "Enabled"}, &InstBase::triggerInputEnabled, enabled);
}
