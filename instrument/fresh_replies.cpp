#include "instrument/fresh_replies.h"

#include "base/ascii.h"
#include "base/status_codes.h"
#include "instrument/reply_parsing.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace TSRO
{
namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::string_view kIdentityQuery = "*IDN?";
constexpr std::size_t kIdentityFields = 4;
/// How often a connection is asked before a command fails.
constexpr int kMostQuestions = 5;
/// Time-outs without a byte after which a question of an earlier attempt has no answer any more.
constexpr int kLongSilence = 5;
/// Failures in a row, none of them a time-out, after which a connection is taken for lost.
constexpr int kMostFailures = 3;
/// How many time-outs a connection may go on sending.
constexpr int kLongestDrain = 20;
/// Replies that may be read past before an instrument is taken for one that never stops sending.
constexpr int kMostReplies = 10000;

bool containsIdentityQuery(std::string_view line)
{
    return std::search(line.begin(), line.end(), kIdentityQuery.begin(), kIdentityQuery.end(),
                       [](char a, char b) { return base::ascii::toUpper(a) == b; }) != line.end();
}

/// Gives a connection a time-out that silence can be told by, and its own again at the end.
class Patience
{
public:
    explicit Patience(InstLink::VisaIO& connection) : connection_(connection), own_(connection.timeout())
    {
        constexpr ViInt32 kShortest = 100;
        constexpr ViInt32 kForInfinite = 2000;
        time_ = own_ < 0 ? kForInfinite : std::max(own_, kShortest);
        if (time_ != own_)
            connection_.setTimeout(time_);
    }
    Patience(const Patience&) = delete;
    Patience& operator=(const Patience&) = delete;
    ~Patience()
    {
        if (time_ != own_)
            connection_.setTimeout(own_);
    }

private:
    InstLink::VisaIO& connection_;
    ViInt32 own_;
    ViInt32 time_ = 0;
};

/// Reads until a number of time-outs in a row have brought nothing. An instrument that never stops sending, and a
/// connection that is lost, end it with a failure.
ViStatus drain(InstLink::VisaIO& connection, int silences, milliseconds timeout, std::string& reply)
{
    const auto end = steady_clock::now() + kLongestDrain * timeout;
    int silent = 0;
    int failures = 0;
    for (int replies = 0; silent < silences; ++replies) {
        const ViStatus status = connection.read(reply);
        silent = status == VI_ERROR_TMO ? silent + 1 : 0;
        failures = status < 0 && status != VI_ERROR_TMO ? failures + 1 : 0;
        if (failures == kMostFailures)
            return status;
        if (replies == kMostReplies || steady_clock::now() > end)
            return VI_ERROR_TMO;
    }
    return VI_SUCCESS;
}

} // namespace

void FreshReplies::sent(std::string_view message)
{
    if (!isEnabled_)
        return;
    while (!message.empty()) {
        const std::string_view line = message.substr(0, message.find('\n'));
        owed_ += line.find('?') == std::string_view::npos ? 0 : 1;
        message.remove_prefix(std::min(message.size(), line.size() + 1));
        // Its answer looks like the one to a question of our own.
        if (containsIdentityQuery(line))
            ++unanswered_;
    }
}

void FreshReplies::received(ViStatus status)
{
    if (status < 0)
        return suspect();
    owed_ = std::max(owed_ - 1, 0);
    if (owed_ == 0 && !isSuspect_)
        unanswered_ = 0;
}

ViStatus FreshReplies::refresh(InstLink::VisaIO& connection)
{
    const Patience patience(connection);
    ViStatus status = connection.startsAnew() ? reopen(connection) : settle(connection);
    if (status < 0 && status != VI_ERROR_TMO && status != base::kErrorIo && !connection.startsAnew()) {
        // More than a late reply is wrong with it.
        status = connection.reopen();
        if (status >= 0)
            status = settle(connection);
    }
    if (status < 0)
        return status;
    isSuspect_ = false;
    owed_ = 0;
    unanswered_ = 0;
    return VI_SUCCESS;
}

ViStatus FreshReplies::reopen(InstLink::VisaIO& connection)
{
    ViStatus status = connection.reopen();
    if (status < 0 || expected_.model.empty())
        return status;
    status = connection.write(kIdentityQuery);
    reply_.clear();
    if (status >= 0)
        status = connection.read(reply_);
    if (status < 0)
        return status;
    return status != VI_SUCCESS_MAX_CNT && isExpected(reply_) ? status : base::kErrorIo;
}

ViStatus FreshReplies::settle(InstLink::VisaIO& connection)
{
    const milliseconds timeout(connection.timeout());
    ViStatus status = drain(connection, unanswered_ > 0 ? kLongSilence : 1, timeout, reply_);
    if (status < 0)
        return status;
    unanswered_ = 0;
    isOther_ = false;
    for (int question = 0; question < kMostQuestions; ++question) {
        status = connection.write(kIdentityQuery);
        if (status < 0)
            return status;
        ++unanswered_;
        status = takeAnswers(connection);
        if (status != VI_ERROR_TMO)
            return status;
    }
    return isOther_ ? base::kErrorIo : status;
}

/// Reads until every question has its answer. What answers none of them is late and is dropped.
ViStatus FreshReplies::takeAnswers(InstLink::VisaIO& connection)
{
    const auto end = steady_clock::now() + kLongestDrain * milliseconds(connection.timeout());
    bool isCut = false;
    for (int replies = 0; unanswered_ > 0; ++replies) {
        if (replies == kMostReplies || steady_clock::now() > end)
            return VI_ERROR_TMO;
        reply_.clear();
        const ViStatus status = connection.read(reply_);
        if (status < 0)
            return status;
        const bool isRest = std::exchange(isCut, status == VI_SUCCESS_MAX_CNT);
        if (isCut || isRest)
            continue;
        if (isExpected(reply_))
            --unanswered_;
        else
            isOther_ = isOther_ || ReplyFields(reply_).count() == kIdentityFields;
    }
    return VI_SUCCESS;
}

bool FreshReplies::isExpected(std::string_view reply) const
{
    if (expected_.model.empty())
        return !reply.empty();
    const ReplyFields fields(reply);
    return fields.count() == kIdentityFields && fields[1] == expected_.model && fields[2] == expected_.serialNumber;
}

} // namespace TSRO
