#pragma once

#include <visa.h>

#include <chrono>
#include <string>
#include <vector>

namespace command_line
{

/// The VISA that the driver uses. Functions return VISA's statuses, VI_ERROR_LIBRARY_NFOUND when there is none.
class ResourceManager
{
public:
    ResourceManager();
    ~ResourceManager();
    ResourceManager(const ResourceManager&) = delete;
    ResourceManager& operator=(const ResourceManager&) = delete;

    /// Of its opening; nothing else works after a failure.
    ViStatus status() const { return status_; }

    /// Whose VISA it is, and the file of the library; empty what cannot be told.
    std::string manufacturer() const;
    static std::string file();

    /// VISA's own words for a status; empty without any.
    std::string reason(ViStatus status) const;

    /// Adds the names of all that VISA finds.
    ViStatus find(std::vector<std::string>& names) const;

    /// Whether it is the name of a resource of this VISA.
    ViStatus parse(const std::string& name) const;

    /// Whether the resource can be opened: opens it and closes it again.
    ViStatus tryToOpen(const std::string& name, std::chrono::milliseconds timeout) const;

private:
    ViSession session_ = VI_NULL;
    ViStatus status_;
};

} // namespace command_line
