#include "visa/transport/serial/line_settings_windows.h"

#include "visa/attribute/attributes.h"

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

/// What takes the place of a character with an error; 0 leaves it as it came.
void setReplacement(DCB& line, ViUInt32 value)
{
    line.ErrorChar = static_cast<char>(value);
    line.fErrorChar = value != 0 ? 1 : 0;
}

struct Setting
{
    ViAttr attribute;
    void (*change)(DCB& line, ViUInt32 value);
};

constexpr std::array<Setting, 10> kSettings{{
    {VI_ATTR_ASRL_BAUD, [](DCB& line, ViUInt32 value) { line.BaudRate = value; }},
    {VI_ATTR_ASRL_DATA_BITS, [](DCB& line, ViUInt32 value) { line.ByteSize = static_cast<BYTE>(value); }},
    {VI_ATTR_ASRL_PARITY, setParity},
    {VI_ATTR_ASRL_STOP_BITS, setStopBits},
    {VI_ATTR_ASRL_FLOW_CNTRL, setFlowControl},
    {VI_ATTR_ASRL_XON_CHAR, [](DCB& line, ViUInt32 value) { line.XonChar = static_cast<char>(value); }},
    {VI_ATTR_ASRL_XOFF_CHAR, [](DCB& line, ViUInt32 value) { line.XoffChar = static_cast<char>(value); }},
    {VI_ATTR_ASRL_REPLACE_CHAR, setReplacement},
    {VI_ATTR_ASRL_DTR_STATE,
     [](DCB& line, ViUInt32 value) { line.fDtrControl = value != 0 ? DTR_CONTROL_ENABLE : DTR_CONTROL_DISABLE; }},
    {VI_ATTR_ASRL_RTS_STATE,
     [](DCB& line, ViUInt32 value) { line.fRtsControl = value != 0 ? RTS_CONTROL_ENABLE : RTS_CONTROL_DISABLE; }},
}};

/// Null for an attribute that is no setting of the line.
const Setting* findSetting(ViAttr attribute)
{
    const auto* const setting = std::find_if(kSettings.begin(), kSettings.end(),
                                             [attribute](const Setting& row) { return row.attribute == attribute; });
    return setting == kSettings.end() ? nullptr : setting;
}

bool getLine(HANDLE port, DCB& line)
{
    line.DCBlength = sizeof line;
    return GetCommState(port, &line) != 0;
}

struct Input
{
    ViAttr attribute;
    DWORD bit;
};

constexpr std::array<Input, 4> kInputs{{
    {VI_ATTR_ASRL_CTS_STATE, MS_CTS_ON},
    {VI_ATTR_ASRL_DCD_STATE, MS_RLSD_ON},
    {VI_ATTR_ASRL_DSR_STATE, MS_DSR_ON},
    {VI_ATTR_ASRL_RI_STATE, MS_RING_ON},
}};

// Outputs of either kind are told apart by the same numbers.
static_assert(DTR_CONTROL_ENABLE == RTS_CONTROL_ENABLE && DTR_CONTROL_DISABLE == RTS_CONTROL_DISABLE);

} // namespace

bool makeRaw(HANDLE port) noexcept
{
    DCB line{};
    if (!getLine(port, line))
        return false;
    line.fBinary = 1;
    line.fNull = 0;
    // An error on the line must not hold up all transfers until it is acknowledged.
    line.fAbortOnError = 0;
    line.fDsrSensitivity = 0;
    line.fTXContinueOnXoff = 1;
    // All at once: of what the last user has left, some cannot be changed one by one (8 data bits with 1.5 stop bits,
    // an XON that is to be XOFF).
    for (const AttributeRow& row : kAttributeRows) {
        const Setting* const setting = findSetting(row.attribute);
        if (setting != nullptr && row.holder == Holder::Connection)
            setting->change(line, static_cast<ViUInt32>(row.initial));
    }
    COMMTIMEOUTS unlimited{};
    return SetCommState(port, &line) != 0 && SetCommTimeouts(port, &unlimited) != 0;
}

ViStatus applyLineSetting(HANDLE port, ViAttr attribute, ViUInt32 value) noexcept
{
    const Setting* const setting = findSetting(attribute);
    if (setting == nullptr)
        return VI_ERROR_NSUP_ATTR;
    DCB line{};
    if (!getLine(port, line))
        return VI_ERROR_NSUP_ATTR_STATE;
    setting->change(line, value);
    return SetCommState(port, &line) != 0 ? VI_SUCCESS : VI_ERROR_NSUP_ATTR_STATE;
}

ViUInt32 lineState(HANDLE port, ViAttr attribute) noexcept
{
    const auto input = std::find_if(kInputs.begin(), kInputs.end(),
                                    [attribute](const Input& row) { return row.attribute == attribute; });
    if (input != kInputs.end()) {
        DWORD lines = 0;
        if (GetCommModemStatus(port, &lines) == 0)
            return static_cast<ViUInt32>(VI_STATE_UNKNOWN);
        return (lines & input->bit) != 0 ? VI_STATE_ASSERTED : VI_STATE_UNASSERTED;
    }
    DCB line{};
    if (!getLine(port, line))
        return static_cast<ViUInt32>(VI_STATE_UNKNOWN);
    const DWORD control = attribute == VI_ATTR_ASRL_DTR_STATE ? line.fDtrControl : line.fRtsControl;
    // Whether a handshake holds the line active at this moment is not told.
    if (control > DTR_CONTROL_ENABLE)
        return static_cast<ViUInt32>(VI_STATE_UNKNOWN);
    return control == DTR_CONTROL_ENABLE ? VI_STATE_ASSERTED : VI_STATE_UNASSERTED;
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
