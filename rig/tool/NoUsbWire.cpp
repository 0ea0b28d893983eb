#include "rig/tool/UsbWire.h"

namespace tool {

std::unique_ptr<ChipWire> makeUsbWire()
{
    return nullptr;
}

} // namespace tool
