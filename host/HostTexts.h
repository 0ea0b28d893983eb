// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

namespace host {

/// The texts of the window, in the order of the table in HostTexts.cpp.
enum class Text {
    WindowTitle,
    Device,
    Server,
    Panel,
    Fault,
    Log,
    Model,
    Language,
    PcFirmware,
    OtgFirmware,
    ErasePc,
    EraseOtg,
    PcCable,
    OtgCable,
    NoFault,
    NewPanel,
    DeletePanel,
    PanelClosed,
};

QString textOf(Text text, bool english);

} // namespace host
