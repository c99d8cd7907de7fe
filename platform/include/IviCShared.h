/**
 * @file IviCShared.h
 * Session service for IVI-C drivers (IVI-3.9): handles, one data pointer per session, a lock per session, and error
 * records per session and per thread.
 *
 * Every function may be called from any thread. An unknown handle gives IVI_ERROR_INVALID_SESSION_HANDLE, a null
 * output pointer IVI_ERROR_NULL_POINTER.
 */
#ifndef KVX_IVI_C_SHARED_H
#define KVX_IVI_C_SHARED_H

#include "IviVisaType.h"

#if defined(__cplusplus)
extern "C" {
#endif

/** @name Status codes @{ */
#define IVI_SUCCESS VI_SUCCESS
#define IVI_ERROR_OUT_OF_MEMORY ((ViStatus)0xBFFA0056UL)
#define IVI_ERROR_NULL_POINTER ((ViStatus)0xBFFA0058UL)
#define IVI_ERROR_INVALID_SESSION_HANDLE ((ViStatus)0xBFFA1190UL)
#define IVI_ERROR_CANNOT_CREATE_LOCK ((ViStatus)0xBFFA1198UL)
#define IVI_ERROR_CANNOT_CREATE_THREAD_LOCAL ((ViStatus)0xBFFA11A0UL)
/** @} */

/** Creates a session without data pointer, error or lock. Handles count up from 1 and are never reused. */
ViStatus _VI_FUNC IviSession_New(ViSession* handle);

/** Ends a session. Threads that wait for its lock get IVI_ERROR_INVALID_SESSION_HANDLE; its holder may call this. */
ViStatus _VI_FUNC IviSession_Dispose(ViSession handle);

/** Stores the caller's pointer, which the service neither follows nor frees. */
ViStatus _VI_FUNC IviSession_SetDataPtr(ViSession handle, ViAddr dataPtr);

/** Stores the session's pointer (null when none was set) in *dataPtr. Never waits for the session's lock. */
ViStatus _VI_FUNC IviSession_GetDataPtr(ViSession handle, ViAddr* dataPtr);

/**
 * Acquires the session's lock, which is recursive and owned by the calling thread; waits without limit.
 * @param hasLock null: acquire. Else acquire only when *hasLock is VI_FALSE, and set it to VI_TRUE.
 */
ViStatus _VI_FUNC IviSession_Lock(ViSession handle, ViBoolean* hasLock);

/**
 * Releases one level of the calling thread's lock; nothing happens when the thread does not hold it.
 * @param hasLock null: release. Else release only when *hasLock is VI_TRUE, and set it to VI_FALSE.
 */
ViStatus _VI_FUNC IviSession_Unlock(ViSession handle, ViBoolean* hasLock);

/**
 * Records a status and its text for the session and for the calling thread; VI_NULL addresses the thread alone.
 * An error replaces a warning and a warning replaces success; nothing replaces an equal or more severe status.
 */
ViStatus _VI_FUNC IviSession_SetError(ViSession handle, ViStatus code, ViConstString description);

/**
 * Reads the record of the session, or of the thread for VI_NULL, and clears it unless bufferSize is 0.
 * @param bufferSize  size of description in bytes; 0 asks for the size needed, a negative size means "large enough"
 * @param code        receives the status; may be null
 * @param description receives the text, cut to the buffer; may be null when bufferSize is 0
 * @return the size needed when the text does not fit
 */
ViStatus _VI_FUNC IviSession_GetError(ViSession handle, ViInt32 bufferSize, ViStatus* code, ViChar description[]);

/** Clears the record of the session, or of the thread for VI_NULL. */
ViStatus _VI_FUNC IviSession_ClearError(ViSession handle);

#if defined(__cplusplus)
}
#endif

#endif
