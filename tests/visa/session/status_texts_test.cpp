#include <visa.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace
{

TEST(VisaStatusDesc, EveryCodeHasATextOfItsOwn)
{
    std::vector<std::string> texts;
    for (const ViStatus status : {VI_SUCCESS,
                                  VI_SUCCESS_TERM_CHAR,
                                  VI_SUCCESS_MAX_CNT,
                                  VI_WARN_NULL_OBJECT,
                                  VI_WARN_NSUP_ATTR_STATE,
                                  VI_WARN_UNKNOWN_STATUS,
                                  VI_WARN_NSUP_BUF,
                                  VI_ERROR_SYSTEM_ERROR,
                                  VI_ERROR_INV_OBJECT,
                                  VI_ERROR_RSRC_LOCKED,
                                  VI_ERROR_RSRC_NFOUND,
                                  VI_ERROR_INV_RSRC_NAME,
                                  VI_ERROR_INV_ACC_MODE,
                                  VI_ERROR_TMO,
                                  VI_ERROR_NSUP_ATTR,
                                  VI_ERROR_NSUP_ATTR_STATE,
                                  VI_ERROR_ATTR_READONLY,
                                  VI_ERROR_ALLOC,
                                  VI_ERROR_INV_MASK,
                                  VI_ERROR_IO,
                                  VI_ERROR_NLISTENERS,
                                  VI_ERROR_NCIC,
                                  VI_ERROR_NSUP_OPER,
                                  VI_ERROR_ASRL_PARITY,
                                  VI_ERROR_ASRL_FRAMING,
                                  VI_ERROR_ASRL_OVERRUN,
                                  VI_ERROR_RSRC_BUSY,
                                  VI_ERROR_INV_PROT,
                                  VI_ERROR_LIBRARY_NFOUND,
                                  VI_ERROR_INTF_NUM_NCONFIG,
                                  VI_ERROR_CONN_LOST,
                                  VI_ERROR_NPERMISSION,
                                  VI_SUCCESS_DEV_NPRESENT,
                                  VI_WARN_CONFIG_NLOADED,
                                  VI_ERROR_CLOSING_FAILED,
                                  VI_ERROR_ABORT,
                                  VI_ERROR_OUTP_PROT_VIOL,
                                  VI_ERROR_INP_PROT_VIOL,
                                  VI_ERROR_BERR,
                                  VI_ERROR_INV_SETUP,
                                  VI_ERROR_INV_PARAMETER,
                                  VI_ERROR_NIMPL_OPER})
    {
        std::array<ViChar, 256> text{};
        EXPECT_EQ(viStatusDesc(VI_NULL, status, text.data()), VI_SUCCESS) << std::hex << status;
        EXPECT_STRNE(text.data(), "");
        EXPECT_EQ(std::count(texts.begin(), texts.end(), text.data()), 0) << text.data();
        texts.emplace_back(text.data());
    }
}

TEST(VisaStatusDesc, UnknownCodeIsNamedWithAWarning)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(viStatusDesc(VI_NULL, static_cast<ViStatus>(0xBFFF0FFF), text.data()), VI_WARN_UNKNOWN_STATUS);
    EXPECT_STREQ(text.data(), "Unknown status code 0xBFFF0FFF.");
}

TEST(VisaStatusDesc, TimeoutText)
{
    std::array<ViChar, 256> text{};
    EXPECT_EQ(viStatusDesc(VI_NULL, VI_ERROR_TMO, text.data()), VI_SUCCESS);
    EXPECT_STREQ(text.data(), "The time-out passed before the operation was complete.");
}

} // namespace
