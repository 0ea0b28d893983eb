#include "rig/tool/ToolPlatform.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

namespace ToolPlatform {

std::filesystem::path home()
{
    const char *folder = std::getenv("HOME");
    return folder ? folder : "";
}

std::vector<std::string> arguments(int argc, char **argv)
{
    return {argv + 1, argv + argc};
}

void pauseFor(long milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void ignoreTerminate()
{
    std::signal(SIGTERM, SIG_IGN);
}

void crash()
{
    std::abort();
}

long startHelper()
{
    return 0; // no test asks for one here
}

SharedWriter::SharedWriter(const std::filesystem::path &path, const std::string &)
    : m_path(path)
{
}

void SharedWriter::write(const std::string &text, bool truncate)
{
    std::ofstream(m_path, std::ios::out | (truncate ? std::ios::trunc : std::ios::app)) << text;
}

} // namespace ToolPlatform
