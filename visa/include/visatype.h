/**
 * @file visatype.h
 * Scalar types and calling convention shared by VISA, the IVI session service and the IVI configuration server
 * (VPP-4.3.2, IVI-3.1 Appendix C).
 *
 * Usable from C89 and from C++. ViInt32 has 32 bits on every host, LP64 included.
 */
#ifndef __VISATYPE_HEADER__
#define __VISATYPE_HEADER__
/* This is the header with all of the types that visa.h needs. */
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

#define _VI_FAR
#define _VI_SIGNED signed
#define _VI_PTR *
/** What makes a code an error. */
#define _VI_ERROR (-2147483647L - 1)

#if defined(_WIN32)
typedef __int64 ViInt64;
typedef unsigned __int64 ViUInt64;
#else
#include <stdint.h>
typedef int64_t ViInt64;
typedef uint64_t ViUInt64;
#endif
#define _VI_INT64_UINT64_DEFINED

#if LONG_MAX > 0x7FFFFFFFL
typedef int ViInt32;
typedef unsigned int ViUInt32;
#else
typedef long ViInt32;
typedef unsigned long ViUInt32;
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
typedef void* ViAddr;

/** Completion of a call: 0 is success, positive a warning or a completion code, negative an error. */
typedef ViInt32 ViStatus;
typedef ViUInt32 ViVersion;
typedef ViUInt32 ViObject;
typedef ViObject ViSession;
typedef ViUInt32 ViAttr;

/** @name One of a type, and an array of it @{ */
typedef ViInt8* ViPInt8;
typedef ViInt8* ViAInt8;
typedef ViUInt8* ViPUInt8;
typedef ViUInt8* ViAUInt8;
typedef ViByte* ViPByte;
typedef ViByte* ViAByte;
typedef ViChar* ViPChar;
typedef ViChar* ViAChar;
typedef ViInt16* ViPInt16;
typedef ViInt16* ViAInt16;
typedef ViUInt16* ViPUInt16;
typedef ViUInt16* ViAUInt16;
typedef ViBoolean* ViPBoolean;
typedef ViBoolean* ViABoolean;
typedef ViInt32* ViPInt32;
typedef ViInt32* ViAInt32;
typedef ViUInt32* ViPUInt32;
typedef ViUInt32* ViAUInt32;
typedef ViInt64* ViPInt64;
typedef ViInt64* ViAInt64;
typedef ViUInt64* ViPUInt64;
typedef ViUInt64* ViAUInt64;
typedef ViReal32* ViPReal32;
typedef ViReal32* ViAReal32;
typedef ViReal64* ViPReal64;
typedef ViReal64* ViAReal64;
typedef ViAddr* ViPAddr;
typedef ViAddr* ViAAddr;
typedef ViStatus* ViPStatus;
typedef ViStatus* ViAStatus;
typedef ViVersion* ViPVersion;
typedef ViVersion* ViAVersion;
typedef ViObject* ViPObject;
typedef ViObject* ViAObject;
typedef ViSession* ViPSession;
typedef ViSession* ViASession;
/** @} */

typedef ViPByte ViBuf;
typedef ViPByte ViPBuf;
typedef ViPByte* ViABuf;
typedef const ViByte* ViConstBuf;

typedef ViPChar ViString;
typedef ViPChar ViPString;
typedef ViPChar* ViAString;
#ifndef _VI_CONST_STRING_DEFINED
typedef const ViChar* ViConstString;
#define _VI_CONST_STRING_DEFINED
#endif

typedef ViString ViRsrc;
typedef ViString ViPRsrc;
typedef ViString* ViARsrc;
typedef ViConstString ViConstRsrc;

#define VI_NULL 0
#define VI_TRUE 1
#define VI_FALSE 0
/** A status and not a long, so that it keeps the width of ViStatus in every expression. */
#define VI_SUCCESS ((ViStatus)0)

/** @name Older names @{ */
#define VISAFN _VI_FUNC
#define ViPtr _VI_PTR
/** @} */

#endif
