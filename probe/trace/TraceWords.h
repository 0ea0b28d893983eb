// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/trace/Trace.h"

#include <iterator>

/// What the reader and the writer of traces have to agree on.
namespace probe::TraceWords {

constexpr char kMark[] = "quillon-trace";
constexpr int kVersion = 1;

/// A byte that repeats at least so often is written once, with its count: "00*55".
constexpr int kShortestRun = 4;
constexpr char kRunSign = '*';

struct KindWord {
    TraceEvent::Kind kind;
    const char *word;
};
constexpr KindWord kKinds[] = {
    {TraceEvent::Kind::Plug, "plug"},       {TraceEvent::Kind::Unplug, "unplug"},
    {TraceEvent::Kind::Open, "open"},       {TraceEvent::Kind::Denied, "denied"},
    {TraceEvent::Kind::Refused, "refused"}, {TraceEvent::Kind::Out, "out"},
    {TraceEvent::Kind::In, "in"},
};

} // namespace probe::TraceWords
