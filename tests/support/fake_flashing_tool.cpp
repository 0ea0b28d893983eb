// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Stands in for the flashing tool in tests. The rig's takes an image to a chip; this one does any one thing,
// in any order, and starts at once, for it does without Qt: on a test's faster clock a start takes its time.
// What it does is told by the environment variable QUILLON_FAKE_TOOL, one instruction a line, carried out in
// order; without one it quits at once with exit code 0.
//
//   write TEXT       the progress file now holds this one line
//   append TEXT      the progress file has one line more
//   empty            the progress file exists and is empty
//   pause MS         nothing for so long
//   await NAME       nothing until the file NAME exists in the home folder
//   hold WORD        the progress file is open for writing from here on, and others may "read", "read-write"
//                    or do "nothing" meanwhile. Only Windows asks for it
//   helper           a copy of the tool runs that hangs; "helper.txt" in the home folder then holds its
//                    process ID. On Windows only
//   ignore-terminate a polite request to end is not heard from here on
//   hold-memory MIB  so much memory is given back when it ends, which takes its time; not on Windows
//   chatter BYTES    so many bytes on the standard output and as many on the standard error
//   hang             nothing until it is killed
//   crash            ends by a signal
//   exit CODE        ends with this exit code
//
// Before the first instruction it adds a line to "flashing-tool-runs.txt" in the home folder: the working
// directory and the arguments, separated by tabulators.
#include "rig/tool/ToolPlatform.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {
using ToolPlatform::home;
using ToolPlatform::pauseFor;

std::unique_ptr<ToolPlatform::SharedWriter> heldFile;

void recordRun(const std::vector<std::string> &arguments)
{
    std::ostringstream line;
    line << fs::current_path().generic_u8string();
    for (const std::string &argument : arguments)
        line << '\t' << argument;
    line << '\n';
    std::ofstream(home() / "flashing-tool-runs.txt", std::ios::app) << line.str() << std::flush;
}

void report(const std::string &text, std::ios::openmode mode)
{
    if (heldFile)
        heldFile->write(text, mode == std::ios::trunc);
    else
        std::ofstream(home() / ToolPlatform::kProgressFile, std::ios::out | mode) << text << std::flush;
}

void await(const std::string &name)
{
    while (!fs::exists(home() / name))
        pauseFor(5);
}

void chatter(long bytes)
{
    const std::string line(4096, 'x');
    for (long written = 0; written < bytes; written += long(line.size())) {
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
    else if (instruction == "hold")
        heldFile = std::make_unique<ToolPlatform::SharedWriter>(home() / ToolPlatform::kProgressFile, rest);
    else if (instruction == "helper")
        std::ofstream(home() / "helper.txt") << ToolPlatform::startHelper() << std::flush;
    else if (instruction == "ignore-terminate")
        ToolPlatform::ignoreTerminate();
    else if (instruction == "hold-memory")
        ToolPlatform::holdMemory(std::stoul(rest));
    else if (instruction == "chatter")
        chatter(std::stol(rest));
    else if (instruction == "hang")
        await("never");
    else if (instruction == "crash")
        ToolPlatform::crash();
    else if (instruction == "exit")
        std::exit(std::stoi(rest));
    else
        std::exit(99);
}
} // namespace

int main(int argc, char **argv)
{
    const std::vector<std::string> arguments = ToolPlatform::arguments(argc, argv);
    recordRun(arguments);
    const char *script = std::getenv("QUILLON_FAKE_TOOL");
    std::istringstream lines(script ? script : "");
    for (std::string line; std::getline(lines, line);) {
        const auto blank = line.find(' ');
        obey(line.substr(0, blank), blank == std::string::npos ? "" : line.substr(blank + 1));
    }
    return 0;
}
