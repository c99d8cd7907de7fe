#include "tests/support/platform/store_file.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kvxtest
{
namespace
{

std::string exampleFor(const std::string& resource)
{
    const std::string usual = "TCPIP0::127.0.0.1::5025::SOCKET";
    std::ostringstream read;
    read << std::ifstream(KVX_EXAMPLE_STORE).rdbuf();
    std::string text = read.str();
    const std::size_t place = text.find(usual);
    if (place == std::string::npos)
        throw std::runtime_error("the example store does not name " + usual);
    return text.replace(place, usual.size(), resource);
}

} // namespace

StoreFile::StoreFile(const std::string& resource)
{
    std::ofstream(path()) << exampleFor(resource);
}

} // namespace kvxtest
