/* Beside the IVI headers, in any order: a code that both define is spelled alike. */
#ifdef KVX_IVI_FIRST
#include <IviCShared.h>
#include <IviConfigServer.h>
#endif

#include "api/KVX2800T.h"

#include <IviCShared.h>
#include <IviConfigServer.h>
#include <visa.h>

int isNullPointer(ViStatus status);

int isNullPointer(ViStatus status)
{
    return status == IVI_ERROR_NULL_POINTER;
}
