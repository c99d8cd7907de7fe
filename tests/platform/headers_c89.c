#include <IviCShared.h>
#include <IviConfigServer.h>
#include <IviVisaType.h>
#include <visa.h>
#include <visatype.h>

/* A negative size refuses to compile. */
typedef char Int32HasFourBytes[sizeof(ViInt32) == 4 ? 1 : -1];
typedef char BooleanHasTwoBytes[sizeof(ViBoolean) == 2 ? 1 : -1];
typedef char SessionHasFourBytes[sizeof(ViSession) == 4 ? 1 : -1];
typedef char Int64HasEightBytes[sizeof(ViInt64) == 8 ? 1 : -1];
typedef char AttrStateIsAsWideAsAPointer[sizeof(ViAttrState) == sizeof(void*) ? 1 : -1];
typedef char ConfigHandleIsAsWideAsAPointer[sizeof(IviConfigHandle) == sizeof(void*) ? 1 : -1];
typedef char ErrorsAreNegative[VI_ERROR_TMO < 0 && IVI_ERROR_OUT_OF_MEMORY < 0 ? 1 : -1];
typedef char StatusHasFourBytes[sizeof(IVICONFIG_ERROR_NOT_EXIST) == 4 && sizeof(VI_SUCCESS) == 4 ? 1 : -1];

ViStatus kvxTimeoutStatusSeenFromC(void);

ViStatus kvxTimeoutStatusSeenFromC(void)
{
    return VI_ERROR_TMO;
}
