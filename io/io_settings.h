#pragma once

#include <visatype.h>

#include <cstdint>
#include <memory>

namespace InstLink
{

class MessageLog;

/// What a connection is opened with. The record belongs to the instrument and outlives its connections, so that it can
/// be changed before there is one. The serial values are those of VISA's ASRL attributes.
struct IoSettings
{
    ViUInt8 termChar = '\n';
    bool termCharEnabled = true;
    /// Time-outs in milliseconds; their low 32 bits count.
    std::int64_t openTimeoutMs = 2000;
    std::int64_t timeoutMs = 2000;
    bool appendTermChar = true;
    bool stripTermChar = true;
    /// Sizes in bytes. A connection keeps its own sizes whatever stands here.
    ViUInt32 readBufferSize = 1024;
    ViUInt32 writeBufferSize = 1024;
    ViInt32 baudRate = 9600;
    ViInt32 dataBits = 8;
    ViInt32 flowControl = 0;
    ViInt32 parity = 0;
    ViInt32 stopBits = 10;
    /// Where connections write down their messages; null: nowhere.
    std::shared_ptr<MessageLog> messageLog = {};
};

} // namespace InstLink
