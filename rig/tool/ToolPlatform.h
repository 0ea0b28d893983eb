// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

/// What a stand-in for the flashing tool needs of the system: the rig's, and the tests' own, which does
/// without Qt.
namespace ToolPlatform {

std::filesystem::path home();

/// In the home folder: through this file the tool tells how far it is.
constexpr char kProgressFile[] = "AppData/Roaming/OrvikQuillon2x2/Firmware_bin.txt";

/// The arguments without the program's name, as UTF-8.
std::vector<std::string> arguments(int argc, char **argv);

/// Sleeps, and ends the program with exit code 15 when it is asked to end meanwhile.
void pauseFor(long milliseconds);
void ignoreTerminate();

[[noreturn]] void crash(); ///< ends as a program does that made a mistake

/// Holds so much memory that the system takes its time to end this program; not on Windows.
void holdMemory(std::size_t mebibytes);

/// Starts this program once more, without arguments, to hang. Its process ID; on Windows only, elsewhere 0.
long startHelper();

/// A file that is open for writing all the time.
class SharedWriter {
public:
    /// \a share is "nothing", "read" or "read-write": what others may do meanwhile.
    SharedWriter(const std::filesystem::path &path, const std::string &share);
    void write(const std::string &text, bool truncate);

private:
    std::filesystem::path m_path;
    [[maybe_unused]] void *m_file = nullptr; ///< on Windows
};

} // namespace ToolPlatform
