/* Stands in front of the driver in tests of what its lack of memory is to a program. */
#include <KVX2800T.h>

ViStatus _VI_FUNC KVX2800T_InitWithOptions(ViRsrc ResourceName, ViBoolean IdQuery, ViBoolean Reset,
                                           ViConstString OptionString, ViSession* Vi)
{
    (void)ResourceName;
    (void)IdQuery;
    (void)Reset;
    (void)OptionString;
    *Vi = VI_NULL;
    return IVI_ERROR_OUT_OF_MEMORY;
}
