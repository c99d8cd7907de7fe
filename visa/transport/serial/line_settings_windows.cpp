#include "visa/transport/serial/line_settings_windows.h"

#include <algorithm>
#include <array>

namespace visa
{
namespace
{

// Windows gives the parities the numbers that VISA does.
static_assert(VI_ASRL_PAR_NONE == NOPARITY && VI_ASRL_PAR_ODD == ODDPARITY && VI_ASRL_PAR_EVEN == EVENPARITY);
static_assert(VI_ASRL_PAR_MARK == MARKPARITY && VI_ASRL_PAR_SPACE == SPACEPARITY);

void setParity(DCB& line, ViUInt32 value)
{
    line.Parity = static_cast<BYTE>(value);
    line.fParity = value != VI_ASRL_PAR_NONE ? 1 : 0;
}

void setStopBits(DCB& line, ViUInt32 value)
{
    if (value == VI_ASRL_STOP_ONE)
        line.StopBits = ONESTOPBIT;
    else
        line.StopBits = value == VI_ASRL_STOP_ONE5 ? ONE5STOPBITS : TWOSTOPBITS;
}

/// The bits of VISA's value may be combined. A line without a job is held active, as an instrument expects of its host.
void setFlowControl(DCB& line, ViUInt32 value)
{
    line.fOutX = (value & VI_ASRL_FLOW_XON_XOFF) != 0 ? 1 : 0;
    line.fInX = line.fOutX;
    line.fOutxCtsFlow = (value & VI_ASRL_FLOW_RTS_CTS) != 0 ? 1 : 0;
    line.fRtsControl = line.fOutxCtsFlow != 0 ? RTS_CONTROL_HANDSHAKE : RTS_CONTROL_ENABLE;
    line.fOutxDsrFlow = (value & VI_ASRL_FLOW_DTR_DSR) != 0 ? 1 : 0;
    line.fDtrControl = line.fOutxDsrFlow != 0 ? DTR_CONTROL_HANDSHAKE : DTR_CONTROL_ENABLE;
}

struct Setting
{
    ViAttr attribute;
    void (*change)(DCB& line, ViUInt32 value);
};

constexpr std::array<Setting, 5> kSettings{{
    {VI_ATTR_ASRL_BAUD, [](DCB& line, ViUInt32 value) { line.BaudRate = value; }},
    {VI_ATTR_ASRL_DATA_BITS, [](DCB& line, ViUInt32 value) { line.ByteSize = static_cast<BYTE>(value); }},
    {VI_ATTR_ASRL_PARITY, setParity},
    {VI_ATTR_ASRL_STOP_BITS, setStopBits},
    {VI_ATTR_ASRL_FLOW_CNTRL, setFlowControl},
}};

bool getLine(HANDLE port, DCB& line)
{
    line.DCBlength = sizeof line;
    return GetCommState(port, &line) != 0;
}

} // namespace

bool makeRaw(HANDLE port) noexcept
{
    constexpr char kXon = 0x11;
    constexpr char kXoff = 0x13;
    constexpr BYTE kDataBits = 8;
    DCB line{};
    if (!getLine(port, line))
        return false;
    line.fBinary = 1;
    line.fNull = 0;
    line.fErrorChar = 0;
    // An error on the line must not hold up all transfers until it is acknowledged.
    line.fAbortOnError = 0;
    line.fDsrSensitivity = 0;
    line.fTXContinueOnXoff = 1;
    line.XonChar = kXon;
    line.XoffChar = kXoff;
    // All at once: of what the last user has left, some cannot be changed one by one (8 data bits with 1.5 stop bits).
    line.BaudRate = CBR_9600;
    line.ByteSize = kDataBits;
    setParity(line, VI_ASRL_PAR_NONE);
    setStopBits(line, VI_ASRL_STOP_ONE);
    setFlowControl(line, VI_ASRL_FLOW_NONE);
    COMMTIMEOUTS unlimited{};
    return SetCommState(port, &line) != 0 && SetCommTimeouts(port, &unlimited) != 0;
}

ViStatus applyLineSetting(HANDLE port, ViAttr attribute, ViUInt32 value) noexcept
{
    const auto* const setting = std::find_if(kSettings.begin(), kSettings.end(),
                                             [attribute](const Setting& row) { return row.attribute == attribute; });
    if (setting == kSettings.end())
        return VI_ERROR_NSUP_ATTR;
    DCB line{};
    if (!getLine(port, line))
        return VI_ERROR_NSUP_ATTR_STATE;
    setting->change(line, value);
    return SetCommState(port, &line) != 0 ? VI_SUCCESS : VI_ERROR_NSUP_ATTR_STATE;
}

DWORD durationMs(HANDLE port, DWORD characters) noexcept
{
    // Start bit, eight data bits, parity, two stop bits.
    constexpr DWORD kBitsPerCharacter = 12;
    constexpr DWORD kMsPerSecond = 1000;
    DCB line{};
    if (!getLine(port, line) || line.BaudRate == 0)
        return 0;
    return characters * kBitsPerCharacter * kMsPerSecond / line.BaudRate + 1;
}

} // namespace visa
