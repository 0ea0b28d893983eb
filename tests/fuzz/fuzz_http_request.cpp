// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile requests to the simulated update server. The first byte of an input says how large the pieces are
// in which the rest arrives, and what stands before it.
#include "rig/HttpMessages.h"
#include "tests/fuzz/Input.h"

using namespace rig;
using fuzz::require;
using State = HttpRequestReader::State;

namespace {

constexpr quint8 kLargestPiece = 0x3F;
/// Behind the first line stands one that is as long as a head may be.
constexpr quint8 kLongHead = 0xFF;
constexpr qsizetype kMostHead = qsizetype(64) * 1024;

QByteArray withLongHead(const QByteArray &request)
{
    const qsizetype end = request.indexOf("\r\n") + 2;
    return end < 2 ? request
                   : request.left(end) + "X: " + QByteArray(kMostHead, 'x') + "\r\n" + request.mid(end);
}

State feedInPieces(HttpRequestReader &reader, const QByteArray &bytes, qsizetype piece)
{
    State state = State::Incomplete;
    for (qsizetype at = 0; at < bytes.size() && state == State::Incomplete; at += piece)
        state = reader.feed(bytes.mid(at, piece));
    return state;
}

void checkRequest(const HttpRequest &request)
{
    require(!request.method.contains(' ') && !request.target.contains(u' '), "words hold no blank");
    require(request.url.isValid() && request.url.path().startsWith(u'/'), "what is asked for has a path");
    const QByteArray words = request.method + ' ' + request.target.toLatin1();
    require(request.head.startsWith(words), "what is asked for is what was written");
    require(request.head.size() < kMostHead * 2, "a head has a limit");
}

/// An answer in which all that can be chosen comes from the request.
void checkAnswer(const HttpRequest &request, quint8 choice)
{
    HttpAnswer answer;
    answer.body = request.target.toLatin1();
    answer.repeat = 1 + choice % 3;
    answer.cutAfter = choice % 5 ? qint64(choice) * 4 : -1;
    answer.raw = choice % 7 ? QByteArray() : request.head;
    answer.manner = choice % 11 ? HttpAnswer::Manner::Answer : HttpAnswer::Manner::HangUp;
    require(answer.sentSize() >= 0 && answer.sentSize() <= answer.size(), "no more is sent than announced");
    const QByteArray announced = "Content-Length: " + QByteArray::number(answer.size()) + "\r\n";
    require(answer.head().endsWith("\r\n\r\n") || !answer.raw.isEmpty(), "a head ends with an empty line");
    require(answer.head().contains(announced) || !answer.raw.isEmpty(), "the size is announced");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const quint8 manner = input.takeByte();
    const QByteArray rest = input.takeRest();
    const bool isLong = manner == kLongHead;
    const QByteArray bytes = isLong ? withLongHead(rest) : rest;
    const qsizetype piece = isLong ? kMostHead / 2 : 1 + (manner & kLargestPiece);
    HttpRequestReader reader;
    const State state = feedInPieces(reader, bytes, piece);
    require(state != State::Incomplete || bytes.size() <= kMostHead, "nobody is listened to without end");
    if (bytes.size() <= kMostHead) {
        HttpRequestReader atOnce;
        const State same = feedInPieces(atOnce, bytes, kMostHead);
        require(state == same, "it does not matter in which pieces a request comes");
        require(state != State::Complete || reader.request().target == atOnce.request().target,
                "and what it asks for is the same");
    }
    if (state == State::Complete) {
        checkRequest(reader.request());
        checkAnswer(reader.request(), manner);
    }
    return 0;
}
