#pragma once

#include "virtual_instrument/scpi/line_assembler.h"
#include "virtual_instrument/transport/http_guard.h"
#include "virtual_instrument/transport/journal.h"
#include "virtual_instrument/transport/test_control.h"

#include <array>
#include <asio.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kvxvirtual
{

/// One client of the test-control port. An HTTP request ends it before anything is executed. It reads no further until
/// its client has taken the answer.
class ControlConnection : public std::enable_shared_from_this<ControlConnection>
{
public:
    using Action = std::function<void()>;
    /// Calls its argument once the instrument has executed what its clients have sent so far.
    using WhenQuiet = std::function<void(Action)>;

    /// `name` is the client's in the journal. With a token, the first line has to be `token` and the token; any other
    /// is answered by an error and ends the connection.
    ControlConnection(asio::ip::tcp::socket socket, std::string name, TestControl& control, Journal& journal,
                      std::optional<std::string> token, WhenQuiet whenQuiet);

    void start() { read(); }

private:
    void read();
    void take(std::string_view bytes);
    void executeLines();
    void admit(const LineAssembler::Line& line);
    void refuse();
    void write(std::string answer);

    asio::ip::tcp::socket socket_;
    std::string name_;
    TestControl& control_;
    Journal& journal_;
    /// Still to be shown; none once it has been.
    std::optional<std::string> token_;
    WhenQuiet whenQuiet_;
    HttpGuard guard_;
    LineAssembler lines_;
    std::array<char, 4096> chunk_{};
    std::string answer_;
};

} // namespace kvxvirtual
