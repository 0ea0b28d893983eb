#pragma once

#include "rig/tool/ChipLink.h"

#include <memory>

namespace tool {

/// The way to a chip over the machine's own USB; null where there is none.
std::unique_ptr<ChipLink> makeUsbChipLink();

} // namespace tool
