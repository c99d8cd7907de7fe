#pragma once

#include "instrument/command_port.h"
#include "io/visa_io.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kvxtest
{

/// A connection without VISA: it notes what is written and reads from a list of replies. A read without a reply left
/// times out.
class ScriptedConnection : public InstLink::VisaIO
{
public:
    struct Reply
    {
        ViStatus status;
        std::string text;
    };

    ViStatus write(std::string_view command) override
    {
        written.emplace_back(command);
        if (onWrite)
            onWrite();
        return writeStatus;
    }

    ViStatus read(std::string& reply) override
    {
        ++reads;
        if (replies.empty())
            return VI_ERROR_TMO;
        const Reply next = replies.front();
        replies.pop_front();
        if (next.status >= 0 && !next.text.empty())
            reply = next.text;
        return next.status;
    }

    ViStatus close() override
    {
        ++closes;
        return closeStatus;
    }

    bool isOpen() const override { return open; }

    /// The next read succeeds with `text`; without bytes when it is empty.
    void answer(std::string text, ViStatus status = VI_SUCCESS) { replies.push_back({status, std::move(text)}); }

    ViStatus writeStatus = VI_SUCCESS;
    ViStatus closeStatus = VI_SUCCESS;
    bool open = true;
    std::function<void()> onWrite;
    std::vector<std::string> written;
    std::deque<Reply> replies;
    int reads = 0;
    int closes = 0;

protected:
    ViStatus applyAttributes() override { return VI_SUCCESS; }
};

/// A command port that holds `connection`.
inline TSRO::CommandPort portOn(std::shared_ptr<ScriptedConnection> connection)
{
    return TSRO::CommandPort(InstLink::ConnectionHolder{std::move(connection), {}});
}

} // namespace kvxtest
