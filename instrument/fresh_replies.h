#pragma once

#include "instrument/identity.h"
#include "io/visa_io.h"

#include <string>
#include <string_view>

namespace TSRO
{

/// Keeps a reply from answering another query than its own.
///
/// After an exchange that failed, timed out or was cut, its reply may still come. Before the next command the
/// connection is made silent and brought into step: one that starts anew when it is opened again (a raw socket) is
/// closed and opened, and asked for its identity; on others what comes is read until nothing has come for one time-out,
/// and then the identity is asked for until every one of these questions has its answer. While that does not succeed,
/// commands fail and are not sent. Only failures cost anything: there is no call more on ways that succeed.
class FreshReplies
{
public:
    /// Off at first: nothing is watched then.
    void enable(bool enabled) { isEnabled_ = enabled; }

    /// The instrument that has to answer. Without a model any will do.
    void expect(const Identity& identity) { expected_ = identity; }

    /// The next reply may be one to an earlier query.
    void suspect() { isSuspect_ = isEnabled_; }

    /// A message of the caller's own was sent: each of its lines with a query owes a reply.
    void sent(std::string_view message);

    /// The caller has read one reply, if `status` says so.
    void received(ViStatus status);

    /// Before a command, or before a query. 0 when its reply will be its own; base::kErrorIo when another instrument
    /// answers; otherwise the failure of VISA that stands in the way.
    ViStatus prepare(InstLink::VisaIO& connection, bool isQuery)
    {
        isSuspect_ = isSuspect_ || (isQuery && owed_ > 0);
        return isSuspect_ ? refresh(connection) : VI_SUCCESS;
    }

    /// As prepare(), before a command that must not wait for a line to be silent: there it goes out at once, and the
    /// line is brought into step later.
    ViStatus prepareAtOnce(InstLink::VisaIO& connection)
    {
        const ViStatus status = connection.startsAnew() ? prepare(connection, false) : VI_SUCCESS;
        // An instrument that takes commands but answers none is told all the same.
        return status == VI_ERROR_TMO ? VI_SUCCESS : status;
    }

private:
    ViStatus refresh(InstLink::VisaIO& connection);
    ViStatus reopen(InstLink::VisaIO& connection);
    ViStatus settle(InstLink::VisaIO& connection);
    ViStatus takeAnswers(InstLink::VisaIO& connection);
    bool isExpected(std::string_view reply) const;

    bool isEnabled_ = false;
    bool isSuspect_ = false;
    /// Replies that messages of the caller's own still have to get.
    int owed_ = 0;
    /// Questions for the identity that nothing has answered: those of a failed attempt and of the caller.
    int unanswered_ = 0;
    /// Whether another instrument has given its identity.
    bool isOther_ = false;
    Identity expected_;
    std::string reply_;
};

} // namespace TSRO
