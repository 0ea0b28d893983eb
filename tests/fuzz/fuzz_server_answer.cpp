// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile answers to a version query: what the update server, or whoever sits on the wire, gives as a version
// and as notes, and what follows from such a version beside those of a device.
#include "net/VersionAnswer.h"
#include "panel/VersionRules.h"
#include "tests/fuzz/Input.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace QuillonFirmwareUpgrade;
using fuzz::require;

namespace {

const QString kDeviceVersions[] = {QString(), QStringLiteral("0.0.0"), QStringLiteral("1.1.0"),
                                   QStringLiteral("1.2.3"), QStringLiteral("-1.32767.-32768")};

QByteArray bodyOf(const VersionAnswer &answer)
{
    const QJsonObject entry{{QStringLiteral("f_ver"), answer.version},
                            {QStringLiteral("f_remark"), answer.notes},
                            {QStringLiteral("f_remark_en"), answer.notesInEnglish}};
    return QJsonDocument(QJsonArray{entry}).toJson();
}

void checkRoundTrip(const VersionAnswer &answer)
{
    const bool whole = answer.version.isValidUtf16() && answer.notes.isValidUtf16()
        && answer.notesInEnglish.isValidUtf16();
    if (!whole)
        return; // JSON has no way to write half a character
    const auto again = VersionAnswer::read(bodyOf(answer));
    require(again && again->version == answer.version && again->notes == answer.notes
                && again->notesInEnglish == answer.notesInEnglish,
            "an answer that is written can be read");
}

void checkRules(const QString &device, const QString &remote)
{
    using namespace VersionRules;
    require(compare(device, remote) == -compare(remote, device), "of two versions one is newer, or none");
    require(compare(remote, remote) == 0, "a version is not newer than itself");
    const Versions versions{device, remote, remote, device};
    const UpgradePlan plan = choosePlan(versions);
    require(plan != UpgradePlan::Both, "a version is not older both ways");
    require(plan == UpgradePlan::None || !device.isEmpty(), "without a version nothing is planned");
    require(!isUpToDate(device, remote) || plan != UpgradePlan::PcOnly, "who is up to date is not upgraded");
    const UpgradePlan both = choosePlan({device, remote, device, remote});
    require((both == UpgradePlan::Both) == (plan == UpgradePlan::PcOnly),
            "two older chips are both upgraded");
    const QString shown = displayVersion(versions);
    require(shown == device || shown == remote, "what is announced is one of the two");
    require(!planLogName(plan).isEmpty() && !planLogName(both).isEmpty(), "a plan has a name");
    require(device.isEmpty() || compare(device, QStringLiteral("1.1.1")) >= 0 || isTooOld(device),
            "who is older than the oldest is too old");
    require(!isTooOld(remote) || compare(remote, QStringLiteral("1.1.1")) < 0, "and nobody else");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray body = fuzz::bytesOf(data, size);
    const auto answer = VersionAnswer::read(body);
    const QString version = answer ? answer->version : QString::fromUtf8(body);
    checkRules(kDeviceVersions[std::size_t(body.size()) % std::size(kDeviceVersions)], version);
    if (!answer)
        return 0;
    require(version.size() <= VersionAnswer::kLongestVersion, "a version has a limit");
    require(fuzz::isPrintable(version), "a version can be printed");
    require(answer->notes.size() + answer->notesInEnglish.size() + version.size() <= body.size(),
            "nothing is in an answer that was not in the body");
    checkRoundTrip(*answer);
    return 0;
}
