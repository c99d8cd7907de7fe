#pragma once

#include <string_view>

/// What the driver says of itself.
namespace drivekit
{

inline constexpr std::string_view kDriverPrefix = "KVX2800T";
inline constexpr std::string_view kDriverVendor = "Tessaro Instruments";
inline constexpr std::string_view kDriverDescription = "IVI-C Driver for KVX2800T";
inline constexpr std::string_view kDriverRevision = "1.0.0.0";
inline constexpr std::string_view kGroupCapabilities = "IviDCPwrBase,IviDCPwrMeasurement";
inline constexpr std::string_view kSupportedModels = "KVX2833T";
inline constexpr std::string_view kModelFamily = "KVX2800T";
/// The model of a simulated session that was given none.
inline constexpr std::string_view kDefaultSimulatedModel = "KVX2833T";

/// The family of a supported model, compared with its letter case; empty for every other model.
std::string_view familyOfModel(std::string_view model);

} // namespace drivekit
