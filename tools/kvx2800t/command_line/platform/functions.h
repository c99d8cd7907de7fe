#pragma once

#include <string>

/// Functions of VISA and of the configuration server by their standard names, from the libraries that the driver itself
/// calls: ours, a vendor's in their place, or what stands in front of them.
namespace command_line
{

enum class Library
{
    Visa,
    ConfigServer
};

/// Null when there is no such library, or when it has no such function.
void* platformFunction(Library library, const char* name);

/// The file of the library that a function is in; empty when that cannot be told.
std::string libraryFile(const void* function);

} // namespace command_line

/// The function of that name with its type, or null.
#define KVX_VISA_FUNCTION(name)                                                                                        \
    reinterpret_cast<decltype(&::name)>(command_line::platformFunction(command_line::Library::Visa, #name))
