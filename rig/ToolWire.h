#pragma once

#include <QByteArray>
#include <QStringList>

namespace rig::wire {

/// The environment variable that names the boot loader's socket to the flashing tool.
constexpr char kSocketVariable[] = "QUILLON_RIG_SOCKET";

/// Set to kUsb when the chips are on the machine's own USB: the tool then takes its image there, with the
/// reports of BootLoaderReports.h. Over the socket it only says that it is there.
constexpr char kBusVariable[] = "QUILLON_RIG_BUS";
constexpr char kUsb[] = "usb";

// What the tool says, one message a line, and what it is answered. Unless stated, the answer is kYes or kNo.
constexpr char kHello[]
    = "hello"; ///< process ID, then the command line; answer: kFaults and the names of the tool's faults
constexpr char kFind[] = "find"; ///< product ID: is it on the bus?
constexpr char kAttach[]
    = "attach"; ///< product ID, "1" when it is said to be in its boot loader already: talk to this chip
constexpr char kReady[] = "ready"; ///< is the chip on the bus in its boot loader?
constexpr char kErase[]
    = "erase"; ///< size of the image to come; answered when the chip has had the time for it
constexpr char kWrite[] = "write"; ///< offset and count; so many bytes follow the line
constexpr char kDigest[] = "digest"; ///< answer: kDigest and the SHA-256 of what the flash holds
constexpr char kRestart[] = "restart";

constexpr char kFaults[] = "faults";
constexpr char kYes[] = "yes";
constexpr char kNo[] = "no";

/// A message as one line, its line feed included; words may hold anything.
QByteArray encode(const QStringList &words);
QStringList decode(const QByteArray &line);

/// The longest line and the largest block either side accepts.
constexpr int kMaxLine = 64 * 1024;
constexpr int kMaxBlock = 1024 * 1024;

} // namespace rig::wire
