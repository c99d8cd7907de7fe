#include "tests/support/comma_locale.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace kvxtest
{
namespace
{

constexpr const char* kName = "de_DE.UTF-8";
constexpr const char* kLocaleSources = "/usr/share/i18n/locales/de_DE";

std::string makeFolder()
{
    std::string path = (std::filesystem::temp_directory_path() / "kvx-locale-XXXXXX").string();
    return mkdtemp(path.data()) == nullptr ? std::string() : path;
}

/// Builds the locale below `folder`; false when there is no localedef or it fails.
bool build(const std::string& folder)
{
    const std::string command = "localedef -i de_DE -f UTF-8 '" + folder + "/" + kName + "' >/dev/null 2>&1";
    return std::system(command.c_str()) == 0; // NOLINT(concurrency-mt-unsafe): the test has no other thread
}

} // namespace

CommaLocale::CommaLocale()
{
    if (!std::filesystem::exists(kLocaleSources)) {
        problem_ = "no locale sources (Debian package locales)";
        return;
    }
    folder_ = makeFolder();
    if (folder_.empty() || !build(folder_)) {
        problem_ = "localedef cannot build the locale (Debian packages libc-bin and locales)";
        return;
    }
    setenv("LOCPATH", folder_.c_str(), 1); // NOLINT(concurrency-mt-unsafe): the test has no other thread
    // setlocale and not std::locale: glibc's newlocale leaks what it makes of LOCPATH.
    if (std::setlocale(LC_ALL, kName) == nullptr) // NOLINT(concurrency-mt-unsafe): the test has no other thread
        problem_ = "the C library does not take the locale that localedef has built";
}

CommaLocale::~CommaLocale()
{
    std::setlocale(LC_ALL, "C"); // NOLINT(concurrency-mt-unsafe): the test has no other thread
    unsetenv("LOCPATH");         // NOLINT(concurrency-mt-unsafe): the test has no other thread
    std::error_code ignored;
    if (!folder_.empty())
        std::filesystem::remove_all(folder_, ignored);
}

} // namespace kvxtest
