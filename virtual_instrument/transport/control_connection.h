#pragma once

#include "virtual_instrument/scpi/line_assembler.h"
#include "virtual_instrument/transport/test_control.h"

#include <array>
#include <asio.hpp>
#include <functional>
#include <memory>
#include <string>

namespace kvxvirtual
{

/// One client of the test-control port.
class ControlConnection : public std::enable_shared_from_this<ControlConnection>
{
public:
    using Action = std::function<void()>;
    /// Calls its argument once the instrument has executed what its clients have sent so far.
    using WhenQuiet = std::function<void(Action)>;

    ControlConnection(asio::ip::tcp::socket socket, TestControl& control, WhenQuiet whenQuiet);

    void start() { read(); }

private:
    void read();
    void executeLines();
    void write(std::string answer);

    asio::ip::tcp::socket socket_;
    TestControl& control_;
    WhenQuiet whenQuiet_;
    LineAssembler lines_;
    std::array<char, 4096> chunk_{};
    std::string answer_;
};

} // namespace kvxvirtual
