// Stands in for the flashing tool in tests. What it does is told by the environment variable
// QUILLON_FAKE_TOOL, one instruction a line, carried out in order; without one it quits at once with exit
// code 0.
//
//   write TEXT       the progress file now holds this one line
//   append TEXT      the progress file has one line more
//   empty            the progress file exists and is empty
//   pause MS         nothing for so long
//   await NAME       nothing until the file NAME exists in the home folder
//   ignore-terminate a polite request to end is not heard from here on
//   chatter BYTES    so many bytes on the standard output and as many on the standard error
//   hang             nothing until it is killed
//   crash            ends by a signal
//   exit CODE        ends with this exit code
//
// Before the first instruction it adds a line to "flashing-tool-runs.txt" in the home folder: the working
// directory and the arguments, separated by tabulators.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>

namespace fs = std::filesystem;

namespace {
fs::path home()
{
    const char *folder = std::getenv("HOME");
    return folder ? folder : "";
}

fs::path progressFile()
{
    return home() / "AppData/Roaming/OrvikQuillon2x2/Firmware_bin.txt";
}

void recordRun(int argc, char **argv)
{
    std::ostringstream line;
    line << fs::current_path().string();
    for (int i = 1; i < argc; ++i)
        line << '\t' << argv[i];
    line << '\n';
    std::ofstream(home() / "flashing-tool-runs.txt", std::ios::app) << line.str() << std::flush;
}

void report(const std::string &text, std::ios::openmode mode)
{
    std::ofstream(progressFile(), std::ios::out | mode) << text << std::flush;
}

void pauseFor(long milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void await(const std::string &name)
{
    while (!fs::exists(home() / name))
        pauseFor(5);
}

void chatter(long bytes)
{
    const std::string line(64, 'x');
    for (long written = 0; written < bytes; written += 64) {
        std::cout << line << std::flush;
        std::cerr << line << std::flush;
    }
}

void obey(const std::string &instruction, const std::string &rest)
{
    if (instruction == "write")
        report(rest + "\n", std::ios::trunc);
    else if (instruction == "append")
        report(rest + "\n", std::ios::app);
    else if (instruction == "empty")
        report("", std::ios::trunc);
    else if (instruction == "pause")
        pauseFor(std::stol(rest));
    else if (instruction == "await")
        await(rest);
    else if (instruction == "ignore-terminate")
        std::signal(SIGTERM, SIG_IGN);
    else if (instruction == "chatter")
        chatter(std::stol(rest));
    else if (instruction == "hang")
        await("never");
    else if (instruction == "crash")
        std::raise(SIGSEGV);
    else if (instruction == "exit")
        std::exit(std::stoi(rest));
    else
        std::exit(99);
}
} // namespace

int main(int argc, char **argv)
{
    recordRun(argc, argv);
    const char *script = std::getenv("QUILLON_FAKE_TOOL");
    std::istringstream lines(script ? script : "");
    for (std::string line; std::getline(lines, line);) {
        const auto blank = line.find(' ');
        obey(line.substr(0, blank), blank == std::string::npos ? "" : line.substr(blank + 1));
    }
    return 0;
}
