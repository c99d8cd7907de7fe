#include "tests/support/temporary_folder.h"

#include "tests/support/utf8_path.h"

#include <iterator>
#include <random>
#include <system_error>

namespace kvxtest
{

TemporaryFolder::TemporaryFolder()
{
    const auto parent = std::filesystem::canonical(std::filesystem::temp_directory_path());
    std::random_device random;
    do {
        path_ = parent / ("kvx-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::operator/(const std::string& name) const
{
    return toUtf8(path_ / fromUtf8(name));
}

std::size_t TemporaryFolder::count() const
{
    const std::filesystem::directory_iterator entries(path_);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace kvxtest
