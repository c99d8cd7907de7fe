#pragma once

#include <string>

namespace kvxtest
{

/// A process locale that writes one half as "0,5", for as long as the object lives; afterwards the "C" locale again.
/// It is one that the host has, or is built into a temporary folder.
class CommaLocale
{
public:
    CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale();

    /// Why the locale could not be had; empty when it is in force.
    const std::string& problem() const { return problem_; }

private:
    std::string folder_; ///< of a locale that had to be built
    std::string problem_;
};

} // namespace kvxtest
