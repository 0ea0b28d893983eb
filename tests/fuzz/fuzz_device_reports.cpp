// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile reports of a device, one an input, as they come from the bus: ID in front. What the panel's readers
// make of one has to stand in it, and what they state has to fit to it.
#include "device/ControlMessages.h"
#include "device/RegisterFrame.h"
#include "device/RegisterReport.h"
#include "device/Report.h"
#include "hid/src/ReportFraming.h"
#include "tests/fuzz/Input.h"

#include <QStringList>

#include <limits>

using namespace RegisterFrame;
using fuzz::require;

namespace {

constexpr int kMostWords = 28; // that one request holds

void checkFraming(const QByteArray &bytes)
{
    using namespace HIDCommunicator;
    const auto payload = inputPayload(bytes);
    require(payload.has_value() == bytes.startsWith(kReportId), "only the family's reports are passed on");
    require(!payload || kReportId + *payload == bytes, "a report loses its ID and nothing else");
    const auto sent = outputReport(bytes);
    if (!sent)
        return require(!payload || bytes.size() > kOutputReportSize, "a report that fits can be sent");
    require(sent->size() == kOutputReportSize && sent->startsWith(bytes), "what is sent begins with it");
    const QByteArray rest = sent->sliced(bytes.size());
    require(rest.count('\0') == rest.size(), "the rest are zeros");
}

void checkEntries(const QByteArray &report)
{
    const QList<Report::RegisterValue> entries = Report::randomReadEntries(report);
    require(entries.size() <= report.size() / 4, "no entry is read twice");
    for (qsizetype i = 0; i < entries.size(); ++i) {
        require(entries.at(i).address == wordAt(report, kPayloadAt + 4 * i), "addresses are in their place");
        require(entries.at(i).value == wordAt(report, kPayloadAt + 4 * i + 2), "values are in their place");
    }
}

bool isVersion(const QString &text)
{
    const QStringList parts = text.split(u'.');
    return parts.size() == 3 && std::all_of(parts.begin(), parts.end(), [](const QString &part) {
               bool isNumber = false;
               const int number = part.toInt(&isNumber);
               return isNumber && number >= std::numeric_limits<qint16>::min()
                   && number <= std::numeric_limits<qint16>::max();
           });
}

void checkVersion(const QByteArray &report)
{
    const auto reply = Report::versionReply(report);
    if (!reply)
        return require(report.size() < kPayloadAt + 2, "a reply with a start address is one");
    require(reply->start == wordAt(report, kPayloadAt), "the start address is in its place");
    require(reply->version.isEmpty() || isVersion(reply->version), "a version is three signed numbers");
}

void checkLogText(const QByteArray &report)
{
    const auto text = Report::logText(report);
    if (!text)
        return require(report.size() < 2 || report.at(1) == 0, "a report with a length is worth a line");
    require(fuzz::isPrintable(*text) && text->size() < 200, "a log line is one short line");
}

void checkDiagnosis(const QByteArray &report)
{
    const auto decoded = RegisterReport::decode(report);
    if (!decoded)
        return require(report.size() <= kOperationAt, "what has an operation can be taken apart");
    require(kPayloadAt + 2 * decoded->words.size() <= report.size(), "only what is there is taken");
    require(!decoded->checksum || decoded->stated <= report.size(), "a checksum is inside the report");
    const QByteArray covered
        = report.first(std::clamp<qsizetype>(decoded->stated - kChecksumSize, kPayloadAt, report.size()));
    unsigned sum = decoded->rightChecksum;
    for (const char byte : covered)
        sum += quint8(byte);
    require(quint16(sum) == 0, "the right checksum makes the sum zero");
}

/// A request whose words are those of the input comes back as it was meant.
void checkRoundTrip(const QByteArray &bytes)
{
    QList<quint16> words;
    words.reserve(kMostWords);
    for (qsizetype at = 0; at + 2 <= bytes.size() && words.size() < kMostWords; at += 2)
        words.append(wordAt(bytes, at));
    const QByteArray request = ControlMessages::getInstance()->randomRead(words);
    const auto payload = HIDCommunicator::inputPayload(request);
    require(payload && request.size() == HIDCommunicator::kOutputReportSize, "a request is a whole report");
    const auto decoded = RegisterReport::decode(*payload);
    require(decoded && decoded->hasStartMark, "a request begins as one");
    require(std::equal(decoded->words.begin(), decoded->words.end(), words.begin(), words.end()),
            "a request keeps its words");
    require(decoded->checksum == decoded->rightChecksum, "a request's checksum is right");
    require(Report::operation(*payload) == quint8(ControlOperation::RandomRead), "and so is its operation");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = fuzz::bytesOf(data, size);
    checkFraming(bytes);
    checkRoundTrip(bytes);
    const QByteArray report = HIDCommunicator::inputPayload(bytes).value_or(bytes);
    const auto operation = Report::operation(report);
    require(operation.has_value() == (report.size() > kPayloadAt), "what has a payload has an operation");
    require(!Report::isDropped(report) || operation, "only what can be looked at can be dropped");
    checkEntries(report);
    checkVersion(report);
    checkLogText(report);
    checkDiagnosis(report);
    return 0;
}
