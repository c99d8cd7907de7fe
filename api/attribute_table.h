#pragma once

#include "runtime/attribute_registry.h"

namespace api
{

/// The driver's 27 attributes. Constant: any thread may read it, at any time.
const drivekit::AttributeRegistry& attributeRegistry();

} // namespace api
