#pragma once

#include "instrument/identity.h"
#include "io/visa_io.h"

#include <string>

namespace TSRO
{

/// Keeps a reply from answering another query than its own.
///
/// After an exchange that failed, timed out or was cut, its reply may still come. Before the next command the
/// connection is made silent and brought into step: one that starts anew when it is opened again (a raw socket) is
/// closed and opened, and asked for its identity; on others what comes is read until nothing has come for one time-out,
/// and then
/// "*IDN?" is asked until every one of these questions has its answer. While that does not succeed, commands fail and
/// are not sent. Only failures cost anything: what stands here is no call more on ways that succeed.
class FreshReplies
{
public:
    /// Off at first: nothing is watched then.
    void enable(bool enabled) { isEnabled_ = enabled; }

    /// The instrument that has to answer. Without a model any will do.
    void expect(const Identity& identity) { expected_ = identity; }

    /// The next reply may be one to an earlier query.
    void suspect() { isSuspect_ = isEnabled_; }

    /// A reply is owed: a query was sent, and nothing has read its answer yet.
    void owe(bool isOwed) { isOwed_ = isEnabled_ && isOwed; }

    /// Before a command, or before a query. 0 when its reply will be its own; base::kErrorIo when another instrument
    /// answers; otherwise the failure of VISA that stands in the way.
    ViStatus prepare(InstLink::VisaIO& connection, bool isQuery)
    {
        isSuspect_ = isSuspect_ || (isQuery && isOwed_);
        return isSuspect_ ? refresh(connection) : VI_SUCCESS;
    }

private:
    ViStatus refresh(InstLink::VisaIO& connection);
    ViStatus reopen(InstLink::VisaIO& connection);
    ViStatus settle(InstLink::VisaIO& connection);
    ViStatus takeAnswers(InstLink::VisaIO& connection);
    bool isExpected(std::string_view reply) const;

    bool isEnabled_ = false;
    bool isSuspect_ = false;
    bool isOwed_ = false;
    /// "*IDN?" that a failed attempt has sent and nothing has answered.
    int unanswered_ = 0;
    Identity expected_;
    std::string reply_;
};

} // namespace TSRO
