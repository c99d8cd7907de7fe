#include "visa/transport/vxi11/vxi11_status.h"

#include <algorithm>
#include <array>

namespace visa
{
namespace
{

struct DeviceErrorRow
{
    std::int32_t error;
    ViStatus status;
};

constexpr std::array<DeviceErrorRow, 15> kDeviceErrors{{
    {0, VI_SUCCESS},
    {1, VI_ERROR_INV_RSRC_NAME}, // syntax: of the device's name, the only text that is sent
    {3, VI_ERROR_RSRC_NFOUND},   // device not accessible
    {4, VI_ERROR_CONN_LOST},     // invalid link: the device has given it up
    {5, VI_ERROR_INV_SETUP},     // parameter
    {6, VI_ERROR_IO},            // channel not established
    {8, VI_ERROR_NSUP_OPER},     // not supported
    {9, VI_ERROR_ALLOC},         // out of resources
    {11, VI_ERROR_RSRC_LOCKED},  // locked by another link
    {12, VI_ERROR_SESN_NLOCKED}, // no lock held
    {15, VI_ERROR_TMO},          // I/O time-out
    {17, VI_ERROR_IO},           // I/O error
    {21, VI_ERROR_RSRC_NFOUND},  // invalid address
    {23, VI_ERROR_ABORT},        // abort
    {29, VI_ERROR_IO},           // channel already established
}};

} // namespace

ViStatus statusOfVxi11(std::int32_t error)
{
    const auto* const row = std::find_if(kDeviceErrors.begin(), kDeviceErrors.end(),
                                         [error](const DeviceErrorRow& each) { return each.error == error; });
    return row == kDeviceErrors.end() ? VI_ERROR_IO : row->status;
}

} // namespace visa
