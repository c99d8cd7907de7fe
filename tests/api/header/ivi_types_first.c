/* A program that has the scalar types from elsewhere, under the names and the guard of IVI-3.1's appendix C. That one
   lacks two of the types that VISA's functions take. */
#define __VISATYPE_HEADER__
#define _VI_FAR
#define _VI_FUNC
#define _VI_FUNCC
#define _VI_FUNCH
#define _VI_SIGNED signed
#define _VI_ERROR (-2147483647L - 1)
#define _VI_PTR _VI_FAR*

#include <limits.h>
#include <stdint.h>
typedef uint64_t ViUInt64;
typedef int64_t ViInt64;
#define _VI_INT64_UINT64_DEFINED
#if LONG_MAX > 0x7FFFFFFFL
#define _VISA_ENV_IS_64_BIT
typedef unsigned int ViUInt32;
typedef _VI_SIGNED int ViInt32;
#else
typedef unsigned long ViUInt32;
typedef _VI_SIGNED long ViInt32;
#endif

typedef unsigned short ViUInt16;
typedef _VI_SIGNED short ViInt16;
typedef unsigned char ViUInt8;
typedef _VI_SIGNED char ViInt8;
typedef char ViChar;
typedef unsigned char ViByte;
typedef void _VI_PTR ViAddr;
typedef float ViReal32;
typedef double ViReal64;
typedef ViUInt16 ViBoolean;
typedef ViInt32 ViStatus;
typedef ViUInt32 ViVersion;
typedef ViUInt32 ViObject;
typedef ViObject ViSession;
typedef ViUInt32 ViAttr;

#define POINTERS_TO(type)                                                                                              \
    typedef Vi##type _VI_PTR ViP##type;                                                                                \
    typedef Vi##type _VI_PTR ViA##type
POINTERS_TO(UInt64);
POINTERS_TO(Int64);
POINTERS_TO(UInt32);
POINTERS_TO(Int32);
POINTERS_TO(UInt16);
POINTERS_TO(Int16);
POINTERS_TO(UInt8);
POINTERS_TO(Int8);
POINTERS_TO(Char);
POINTERS_TO(Byte);
POINTERS_TO(Addr);
POINTERS_TO(Real32);
POINTERS_TO(Real64);
POINTERS_TO(Boolean);
POINTERS_TO(Status);
POINTERS_TO(Version);
POINTERS_TO(Object);
POINTERS_TO(Session);

typedef ViPByte ViBuf;
typedef ViPByte ViPBuf;
typedef ViPByte _VI_PTR ViABuf;
typedef ViPChar ViString;
typedef ViPChar ViPString;
typedef ViPChar _VI_PTR ViAString;
typedef ViString ViRsrc;
typedef ViString ViPRsrc;
typedef ViString _VI_PTR ViARsrc;
typedef const ViChar* ViConstString;
#define _VI_CONST_STRING_DEFINED

#define VI_SUCCESS (0L)
#define VI_NULL (0)
#define VI_TRUE (1)
#define VI_FALSE (0)
#define VISAFN _VI_FUNC
#define ViPtr _VI_PTR

#include "api/KVX2800T.h"

#include <IviCShared.h>
#include <IviConfigServer.h>
#include <visa.h>

ViStatus sendNothing(ViSession vi);

ViStatus sendNothing(ViSession vi)
{
    ViConstBuf bytes = 0;
    ViConstRsrc name = "ASRL1::INSTR";
    ViUInt32 count = 0;
    return viOpen(vi, name, VI_NULL, 0, &vi) < VI_SUCCESS ? VI_ERROR_TMO : viWrite(vi, bytes, 0, &count);
}
