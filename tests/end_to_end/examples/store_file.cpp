#include "store_file.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace kvxtest
{
namespace
{

std::filesystem::path makeFolder()
{
    std::string folder = (std::filesystem::temp_directory_path() / "kvx-store-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    return folder;
}

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

StoreFile::StoreFile(const std::string& resource) : folder_(makeFolder())
{
    std::ofstream(folder_ / "IviConfigurationStore.xml") << exampleFor(resource);
}

StoreFile::~StoreFile()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

} // namespace kvxtest
