#include "tools/kvx2800t/command_line/platform/resource_manager.h"

#include "tools/kvx2800t/command_line/platform/functions.h"

#include <array>

namespace command_line
{
namespace
{

/// Texts of VISA fit into this.
using VisaText = std::array<ViChar, 1024>;

/// Calls a function of VISA that may not be there.
template <class Function, class... Arguments>
ViStatus callVisa(Function function, Arguments... arguments)
{
    return function == nullptr ? VI_ERROR_LIBRARY_NFOUND : function(arguments...);
}

} // namespace

ResourceManager::ResourceManager() : status_(callVisa(KVX_VISA_FUNCTION(viOpenDefaultRM), &session_)) {}

ResourceManager::~ResourceManager()
{
    if (status_ >= VI_SUCCESS)
        callVisa(KVX_VISA_FUNCTION(viClose), session_);
}

std::string ResourceManager::manufacturer() const
{
    VisaText text{};
    callVisa(KVX_VISA_FUNCTION(viGetAttribute), session_, VI_ATTR_RSRC_MANF_NAME, static_cast<void*>(text.data()));
    return text.data();
}

std::string ResourceManager::file()
{
    return libraryFile(platformFunction(Library::Visa, "viOpenDefaultRM"));
}

std::string ResourceManager::reason(ViStatus status) const
{
    VisaText text{};
    callVisa(KVX_VISA_FUNCTION(viStatusDesc), session_, status, text.data());
    return text.data();
}

ViStatus ResourceManager::find(std::vector<std::string>& names) const
{
    ViFindList list = VI_NULL;
    ViUInt32 count = 0;
    VisaText name{};
    ViStatus status = callVisa(KVX_VISA_FUNCTION(viFindRsrc), session_, "?*", &list, &count, name.data());
    for (; status >= VI_SUCCESS && names.size() < count;
         status = callVisa(KVX_VISA_FUNCTION(viFindNext), list, name.data()))
        names.emplace_back(name.data());
    if (list != VI_NULL)
        callVisa(KVX_VISA_FUNCTION(viClose), list);
    return status == VI_ERROR_RSRC_NFOUND ? VI_SUCCESS : status;
}

ViStatus ResourceManager::parse(const std::string& name) const
{
    ViUInt16 type = 0;
    ViUInt16 number = 0;
    return callVisa(KVX_VISA_FUNCTION(viParseRsrc), session_, name.c_str(), &type, &number);
}

ViStatus ResourceManager::tryToOpen(const std::string& name, std::chrono::milliseconds timeout) const
{
    ViSession opened = VI_NULL;
    const ViStatus status = callVisa(KVX_VISA_FUNCTION(viOpen), session_, name.c_str(), ViAccessMode{VI_NULL},
                                     static_cast<ViUInt32>(timeout.count()), &opened);
    if (status >= VI_SUCCESS)
        callVisa(KVX_VISA_FUNCTION(viClose), opened);
    return status;
}

} // namespace command_line
