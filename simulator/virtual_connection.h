#pragma once

#include "io/visa_io.h"
#include "virtual_instrument/common/instrument_clock.h"
#include "virtual_instrument/scpi/line_assembler.h"
#include "virtual_instrument/scpi/virtual_instrument.h"

#include <cstddef>
#include <string>

namespace TSRO
{

/// A connection to a virtual instrument of its own, which lives as long as the connection: what is sent is executed at
/// once, what is answered waits to be received, message by message, also when further messages were sent in between. It
/// is connected from the beginning until it is closed. A read that finds nothing waiting times out without a wait.
class VirtualConnection : public InstLink::VisaIO
{
public:
    /// While this much of the instrument's answers has not been received, it takes no further messages, and writes time
    /// out.
    static constexpr std::size_t kMostWaitingBytes = std::size_t{64} * 1024;

    /// `time` is where the instrument's clock gets the time from.
    explicit VirtualConnection(kvxvirtual::InstrumentClock::Source time);

    ViStatus close() override;
    bool isOpen() const override { return open_; }

protected:
    ViStatus send(std::string_view bytes) override;
    ViStatus receive(std::span<ViByte> buffer, ViUInt32& count) override;

private:
    void execute(const kvxvirtual::LineAssembler::Line& line);

    bool open_ = true;
    kvxvirtual::VirtualInstrument instrument_;
    kvxvirtual::LineAssembler lines_;
    /// What the instrument has answered and nobody has received.
    std::string answers_;
};

} // namespace TSRO
