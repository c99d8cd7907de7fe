#include "tests/support/visa/serial_settings.h"

namespace kvxtest
{

std::vector<SettingCase> hostSettings()
{
    return {{"BaudOdd", VI_ATTR_ASRL_BAUD, 12345, VI_SUCCESS},
            {"ParityMark", VI_ATTR_ASRL_PARITY, VI_ASRL_PAR_MARK, VI_SUCCESS},
            {"ParitySpace", VI_ATTR_ASRL_PARITY, VI_ASRL_PAR_SPACE, VI_SUCCESS},
            {"StopOneAndAHalf", VI_ATTR_ASRL_STOP_BITS, VI_ASRL_STOP_ONE5, VI_SUCCESS},
            {"FlowDtrDsr", VI_ATTR_ASRL_FLOW_CNTRL, VI_ASRL_FLOW_DTR_DSR, VI_SUCCESS},
            {"FlowCombined", VI_ATTR_ASRL_FLOW_CNTRL, VI_ASRL_FLOW_XON_XOFF | VI_ASRL_FLOW_RTS_CTS, VI_SUCCESS}};
}

} // namespace kvxtest
