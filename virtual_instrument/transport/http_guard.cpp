#include "virtual_instrument/transport/http_guard.h"

#include "virtual_instrument/scpi/text.h"

#include <algorithm>
#include <iterator>

namespace kvxvirtual
{
namespace
{

constexpr std::string_view kBeginnings[] = {"GET ",     "HEAD ",    "POST ",  "PUT ",   "DELETE ",
                                            "CONNECT ", "OPTIONS ", "TRACE ", "PATCH ", "HOST:"};
constexpr std::size_t kLongestBeginning = 8;

bool beginsWith(std::string_view text, std::string_view beginning)
{
    return equalIgnoringCase(text.substr(0, beginning.size()), beginning);
}

} // namespace

bool HttpGuard::detectsIn(std::string_view bytes)
{
    if (beginning_.empty())
        bytes.remove_prefix(std::min(bytes.find_first_not_of("\r\n"), bytes.size()));
    beginning_ += bytes.substr(0, kLongestBeginning - beginning_.size());
    decided_ = beginning_.size() == kLongestBeginning || beginning_.find('\n') != std::string::npos;
    return std::any_of(std::begin(kBeginnings), std::end(kBeginnings),
                       [this](std::string_view beginning) { return beginsWith(beginning_, beginning); });
}

} // namespace kvxvirtual
