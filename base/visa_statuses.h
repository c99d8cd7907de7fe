#pragma once

#include "base/status_codes.h"

#include <algorithm>
#include <array>
#include <string_view>

/// The errors of VISA that opening, attributes and transfers meet (VPP-4.3), for people to read: viStatusDesc is none
/// of the functions that the driver calls.
namespace base
{

inline constexpr ViStatus kVisaTimeout = statusCode(0xBFFF0015U);

struct VisaStatus
{
    ViStatus code;
    std::string_view name;
    std::string_view meaning;
};

inline constexpr std::array<VisaStatus, 38> kVisaStatuses = {{
    {statusCode(0xBFFF0000U), "VI_ERROR_SYSTEM_ERROR", "VISA has failed"},
    {statusCode(0xBFFF000EU), "VI_ERROR_INV_OBJECT", "the session is not open"},
    {statusCode(0xBFFF000FU), "VI_ERROR_RSRC_LOCKED", "another session has locked the instrument"},
    {statusCode(0xBFFF0010U), "VI_ERROR_INV_EXPR", "the expression is not a good one"},
    {statusCode(0xBFFF0011U), "VI_ERROR_RSRC_NFOUND", "nothing answers there"},
    {statusCode(0xBFFF0012U), "VI_ERROR_INV_RSRC_NAME", "the resource name cannot be read"},
    {statusCode(0xBFFF0013U), "VI_ERROR_INV_ACC_MODE", "the access mode is not a good one"},
    {kVisaTimeout, "VI_ERROR_TMO", "the time-out is over"},
    {statusCode(0xBFFF0016U), "VI_ERROR_CLOSING_FAILED", "the session cannot be closed"},
    {statusCode(0xBFFF001DU), "VI_ERROR_NSUP_ATTR", "the interface has no such attribute"},
    {statusCode(0xBFFF001EU), "VI_ERROR_NSUP_ATTR_STATE", "the interface does not take a setting"},
    {statusCode(0xBFFF001FU), "VI_ERROR_ATTR_READONLY", "a setting cannot be changed"},
    {statusCode(0xBFFF0030U), "VI_ERROR_ABORT", "the transfer was aborted"},
    {statusCode(0xBFFF0034U), "VI_ERROR_RAW_WR_PROT_VIOL", "the interface broke its protocol while sending"},
    {statusCode(0xBFFF0035U), "VI_ERROR_RAW_RD_PROT_VIOL", "the interface broke its protocol while receiving"},
    {statusCode(0xBFFF0036U), "VI_ERROR_OUTP_PROT_VIOL", "the instrument broke the protocol while it received"},
    {statusCode(0xBFFF0037U), "VI_ERROR_INP_PROT_VIOL", "the instrument broke the protocol while it sent"},
    {statusCode(0xBFFF0038U), "VI_ERROR_BERR", "bus error"},
    {statusCode(0xBFFF0039U), "VI_ERROR_IN_PROGRESS", "another transfer is going on"},
    {statusCode(0xBFFF003AU), "VI_ERROR_INV_SETUP", "the interface is not set up"},
    {statusCode(0xBFFF003CU), "VI_ERROR_ALLOC", "VISA has no memory"},
    {statusCode(0xBFFF003DU), "VI_ERROR_INV_MASK", "the interface has no such buffer"},
    {statusCode(0xBFFF003EU), "VI_ERROR_IO", "the interface has failed"},
    {statusCode(0xBFFF005FU), "VI_ERROR_NLISTENERS", "nothing listens at the address"},
    {statusCode(0xBFFF0060U), "VI_ERROR_NCIC", "the interface is not the controller in charge"},
    {statusCode(0xBFFF0061U), "VI_ERROR_NSYS_CNTLR", "the interface is not the system controller"},
    {statusCode(0xBFFF0067U), "VI_ERROR_NSUP_OPER", "the interface has no such operation"},
    {statusCode(0xBFFF006AU), "VI_ERROR_ASRL_PARITY", "a parity error on the serial line"},
    {statusCode(0xBFFF006BU), "VI_ERROR_ASRL_FRAMING", "a framing error on the serial line"},
    {statusCode(0xBFFF006CU), "VI_ERROR_ASRL_OVERRUN", "bytes on the serial line were lost"},
    {statusCode(0xBFFF0072U), "VI_ERROR_RSRC_BUSY", "the interface is in use"},
    {statusCode(0xBFFF0078U), "VI_ERROR_INV_PARAMETER", "a parameter is not a good one"},
    {statusCode(0xBFFF0079U), "VI_ERROR_INV_PROT", "the protocol is not a good one"},
    {statusCode(0xBFFF0081U), "VI_ERROR_NIMPL_OPER", "VISA does not offer the operation"},
    {statusCode(0xBFFF009EU), "VI_ERROR_LIBRARY_NFOUND", "a library that VISA needs is missing"},
    {statusCode(0xBFFF00A5U), "VI_ERROR_INTF_NUM_NCONFIG", "there is no interface of that number"},
    {statusCode(0xBFFF00A6U), "VI_ERROR_CONN_LOST", "the connection is lost"},
    {statusCode(0xBFFF00A8U), "VI_ERROR_NPERMISSION", "the user may not use it"},
}};

/// Null for a status that is none of the table's.
constexpr const VisaStatus* visaStatus(ViStatus code)
{
    const auto* const found = std::find_if(kVisaStatuses.begin(), kVisaStatuses.end(),
                                           [code](const VisaStatus& status) { return status.code == code; });
    return found == kVisaStatuses.end() ? nullptr : found;
}

} // namespace base
