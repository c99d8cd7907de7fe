#pragma once

/// A library that stands between a program and the C library: one of the calls for which the host may refuse its
/// service fails, or transfers less than it was asked to. For POSIX hosts.
///
/// In a test program: link failing_calls and use the functions below. Only calls of the thread that armed the library
/// count, so that the other end of a connection may live in another thread.
///
/// In a program of its own: start it with these variables. All of its threads count, from its start to its end.
///   LD_PRELOAD          the library ($<TARGET_FILE:failing_calls> in CMake)
///   KVX_FAIL_CALL       which call fails, from 1; 0 or none: calls are only counted
///   KVX_FAIL_ERROR      the errno as a number (ENOSPC is 28), or "short"
///   KVX_FAIL_REPORT     a file that receives "<calls> <name of the call that failed, or none>" when the program exits
///
/// A test runs once with no failure to learn how many calls there are, then once for each of them:
///   for (unsigned long call = 1; call <= calls; ++call) ...
///
/// A call that fails does nothing, except that close closes. A short transfer moves half of the bytes, one at least,
/// and only transfers count then. What the C library calls within itself (getaddrinfo, stdio) is not seen.
extern "C" {

/// In place of an errno: the call transfers less.
enum
{
    kShortTransfer = -1
};

/// From now on the calls of this thread count, from 1, and the one of this number fails with this errno. 0 for the
/// call: none fails.
void kvxArmFailingCall(unsigned long call, int error);

/// Counts no longer.
void kvxDisarmFailingCall(void);

/// How many calls have been counted since the library was armed.
unsigned long kvxCountedCalls(void);

/// The name of the call that has failed since then; null while none has.
const char* kvxFailedCall(void);
}
