/**
 * @file visatype.h
 * Scalar types and calling convention shared by VISA, the IVI session service and the IVI configuration server
 * (VPP-4.3.2, IVI-3.1 Appendix C).
 *
 * Usable from C89 and from C++. ViInt32 has 32 bits on every host, LP64 included.
 */
#ifndef KVX_VISATYPE_H
#define KVX_VISATYPE_H

#include <limits.h>

#if defined(_WIN64)
/** Calling convention of every function; x64 Windows has a single one. */
#define _VI_FUNC __fastcall
/** Calling convention of variadic functions. */
#define _VI_FUNCC __fastcall
/** Calling convention of callbacks. */
#define _VI_FUNCH __fastcall
#define _VISA_ENV_IS_64_BIT
#elif defined(_WIN32)
#define _VI_FUNC __stdcall
#define _VI_FUNCC __cdecl
#define _VI_FUNCH __stdcall
#else
#define _VI_FUNC
#define _VI_FUNCC
#define _VI_FUNCH
#if LONG_MAX > 0x7FFFFFFFL
#define _VISA_ENV_IS_64_BIT
#endif
#endif

typedef signed char ViInt8;
typedef unsigned char ViUInt8;
typedef unsigned char ViByte;
typedef char ViChar;
typedef short ViInt16;
typedef unsigned short ViUInt16;
typedef unsigned short ViBoolean;
typedef float ViReal32;
typedef double ViReal64;

#if LONG_MAX > 0x7FFFFFFFL
typedef int ViInt32;
typedef unsigned int ViUInt32;
#else
typedef long ViInt32;
typedef unsigned long ViUInt32;
#endif

#if defined(_WIN32)
typedef __int64 ViInt64;
typedef unsigned __int64 ViUInt64;
#else
#include <stdint.h>
typedef int64_t ViInt64;
typedef uint64_t ViUInt64;
#endif

/** Completion of a call: 0 is success, positive a warning or a completion code, negative an error. */
typedef ViInt32 ViStatus;
typedef ViUInt32 ViVersion;
typedef ViUInt32 ViObject;
typedef ViObject ViSession;
typedef ViObject ViEvent;
typedef ViObject ViFindList;
typedef ViUInt32 ViAttr;
typedef ViUInt32 ViEventType;
typedef ViUInt32 ViEventFilter;
typedef ViUInt32 ViJobId;
typedef ViUInt32 ViAccessMode;

/** As wide as a pointer: a caller that passes a negative 32-bit number sends a sign-extended value. */
#if defined(_VISA_ENV_IS_64_BIT)
typedef ViUInt64 ViAttrState;
typedef ViUInt64 ViBusAddress;
typedef ViUInt64 ViBusSize;
#else
typedef ViUInt32 ViAttrState;
typedef ViUInt32 ViBusAddress;
typedef ViUInt32 ViBusSize;
#endif

typedef void* ViAddr;
typedef void* ViPAttrState;
typedef ViChar* ViString;
typedef ViString ViRsrc;
typedef const ViChar* ViConstString;
typedef ViConstString ViConstRsrc;
typedef ViByte* ViBuf;
typedef ViByte* ViPBuf;
typedef const ViByte* ViConstBuf;

typedef ViInt8* ViPInt8;
typedef ViUInt8* ViPUInt8;
typedef ViByte* ViPByte;
typedef ViChar* ViPChar;
typedef ViInt16* ViPInt16;
typedef ViUInt16* ViPUInt16;
typedef ViBoolean* ViPBoolean;
typedef ViInt32* ViPInt32;
typedef ViUInt32* ViPUInt32;
typedef ViInt64* ViPInt64;
typedef ViUInt64* ViPUInt64;
typedef ViReal32* ViPReal32;
typedef ViReal64* ViPReal64;
typedef ViStatus* ViPStatus;
typedef ViObject* ViPObject;
typedef ViSession* ViPSession;
typedef ViAttr* ViPAttr;
typedef ViEvent* ViPEvent;
typedef ViFindList* ViPFindList;
typedef ViJobId* ViPJobId;
typedef ViAddr* ViPAddr;
typedef ViString* ViPString;
typedef ViRsrc* ViPRsrc;

#define VI_NULL 0
#define VI_TRUE 1
#define VI_FALSE 0
/** A status and not a long, so that it keeps the width of ViStatus in every expression. */
#define VI_SUCCESS ((ViStatus)0)

#endif
