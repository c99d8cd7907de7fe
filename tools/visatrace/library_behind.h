#pragma once

/// The VISA that calls are forwarded to: the library that KVX_VISATRACE_LIBRARY named when this one was loaded, or else
/// the loader's libvisa.so.0 or libvisa.so, and never this one.
namespace visatrace
{

/// Whether there is one. The first call loads it, and writes a line that says why when that is impossible; nothing is
/// tried again. Threads do not wait for each other.
bool hasLibraryBehind();

/// A function of it, null when it has none of that name or when there is no library.
void* functionBehind(const char* name);

} // namespace visatrace
