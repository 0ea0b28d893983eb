#include "rig/tool/UsbChipLink.h"

namespace tool {

std::unique_ptr<ChipLink> makeUsbChipLink()
{
    return nullptr;
}

} // namespace tool
