#pragma once

#include "io/io_settings.h"

namespace TSRO
{

/// How an instrument opens its connections and what it does when an exchange on one goes wrong.
struct ConnectionSetup
{
    InstLink::IoSettings io = {};
    /// A reply never answers another query: fresh_replies.h.
    bool freshReplies = false;
};

} // namespace TSRO
