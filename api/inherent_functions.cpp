#include "api/KVX2800T.h"
#include "api/guarded_frame.h"

namespace
{

/// The answer of a list without entries (IVI-3.2 section 3.1.2.1): an empty text, or the size that it needs.
ViStatus giveNoRecord(ViSession vi, std::string_view function, std::string_view parameter, ViInt32 bufferSize,
                      ViChar buffer[])
{
    return api::framed(vi, [&]() -> ViStatus {
        if (bufferSize == 0)
            return 1;
        const ViStatus status = api::checkPointers(vi, function, parameter, buffer);
        if (status >= 0)
            buffer[0] = '\0';
        return status;
    });
}

} // namespace

ViStatus _VI_FUNC KVX2800T_GetNextCoercionRecord(ViSession Vi, ViInt32 CoercionRecordBufferSize,
                                                 ViChar CoercionRecord[])
{
    return giveNoRecord(Vi, __func__, "CoercionRecord", CoercionRecordBufferSize, CoercionRecord);
}

ViStatus _VI_FUNC KVX2800T_GetNextInterchangeWarning(ViSession Vi, ViInt32 InterchangeWarningBufferSize,
                                                     ViChar InterchangeWarning[])
{
    return giveNoRecord(Vi, __func__, "InterchangeWarning", InterchangeWarningBufferSize, InterchangeWarning);
}

ViStatus _VI_FUNC KVX2800T_ResetInterchangeCheck(ViSession Vi)
{
    return api::framed(Vi, []() -> ViStatus { return VI_SUCCESS; });
}

ViStatus _VI_FUNC KVX2800T_ClearInterchangeWarnings(ViSession Vi)
{
    return api::framed(Vi, []() -> ViStatus { return VI_SUCCESS; });
}
