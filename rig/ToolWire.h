// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QStringList>

namespace rig::wire {

/// The environment variable that names the boot loader's socket to the flashing tool.
constexpr char kSocketVariable[] = "QUILLON_RIG_SOCKET";

/// Set to kUsb when the chips are on the machine's own USB: the tool then sends its reports there, and over
/// the socket it only says that it is there.
constexpr char kBusVariable[] = "QUILLON_RIG_BUS";
constexpr char kUsb[] = "usb";

// What the tool says over the socket, one message a line, and what it is answered.
/// Process ID, then the command line; answer: kFaults and the names of the tool's faults.
constexpr char kHello[] = "hello";
constexpr char kFind[] = "find"; ///< product ID: is it on the bus? Answer: kYes or kNo
/// A report for the chip that the tool was started for (BootLoaderReports.h), in hexadecimal; the chip's
/// answer, if it gives one, comes the same way.
constexpr char kReport[] = "report";

constexpr char kFaults[] = "faults";
constexpr char kYes[] = "yes";
constexpr char kNo[] = "no";

/// A message as one line, its line feed included; words may hold anything.
QByteArray encode(const QStringList &words);
QStringList decode(const QByteArray &line);

constexpr int kMaxLine = 64 * 1024; ///< the longest line that is accepted

} // namespace rig::wire
