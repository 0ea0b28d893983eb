// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <HIDCommunicator/HidTransport.h>

#include <memory>

namespace rig {

class SimulatedDevice;

/// The bus that \a device hangs on, for HIDCommunicator::installTransport(). It may outlive the device: the
/// bus is then empty. Hotplug is announced at once; reports are answered as the device answers them.
std::unique_ptr<HIDCommunicator::HidTransport> makeSimulatedBus(SimulatedDevice &device);

} // namespace rig
