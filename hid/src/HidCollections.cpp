// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "HidCollections.h"

#include "InterfaceName.h"
#include "LoggingCategory.h"

#include <chrono>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace HIDCommunicator {

namespace {

using namespace std::chrono_literals;

/// For all collections together: callers of the library are promised an answer within 100 ms.
constexpr auto kPatience = 50ms;

bool isReady(const std::shared_future<std::optional<CollectionReports>> &answer)
{
    return answer.wait_for(0s) == std::future_status::ready;
}

/// The collections of \a vendorId, as far as their names tell.
QList<HidCollection> ofVendor(int vendorId, const QStringList &interfaces)
{
    QList<HidCollection> collections;
    for (const QString &name : interfaces) {
        const auto device = deviceNamed(name);
        if (device && device->vendorId == vendorId)
            collections.append({*device, std::nullopt});
    }
    return collections;
}

} // namespace

HidCollections::HidCollections(Sources sources)
    : m_sources(std::move(sources))
{
}

/// Nobody waits for its thread: one that hangs in the system may outlive everything.
HidCollections::Answer HidCollections::ask(const QString &path) const
{
    std::packaged_task<std::optional<CollectionReports>()> question(
        [reports = m_sources.reports, path] { return reports(path); });
    Answer answer = question.get_future().share();
    try {
        std::thread(std::move(question)).detach();
    } catch (const std::system_error &error) {
        qCWarning(hidCategory, "[HID] no thread: %s", error.what());
        std::promise<std::optional<CollectionReports>> none;
        none.set_value(std::nullopt);
        return none.get_future().share();
    }
    return answer;
}

/// One that did not tell is asked again.
HidCollections::Answers HidCollections::answersFor(const QList<HidCollection> &collections)
{
    const std::lock_guard lock(m_mutex);
    Answers answers;
    for (const HidCollection &collection : collections) {
        const QString &path = collection.device.path;
        const Answer known = m_answers.value(path);
        const bool holds = known.valid() && (!isReady(known) || known.get());
        answers.insert(path, holds ? known : ask(path));
    }
    m_answers = answers;
    return answers;
}

std::optional<QList<HidDeviceInfo>> HidCollections::list(int vendorId)
{
    const auto interfaces = m_sources.interfaces();
    if (!interfaces)
        return std::nullopt;
    QList<HidCollection> collections = ofVendor(vendorId, *interfaces);
    const Answers answers = answersFor(collections);
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    for (HidCollection &collection : collections) {
        const Answer answer = answers.value(collection.device.path);
        if (answer.wait_until(deadline) == std::future_status::ready)
            collection.reports = answer.get();
    }
    return inOrderForThePanel(std::move(collections));
}

/// What is being asked stays: a device that hangs would get a thread with every change of the bus.
void HidCollections::forget()
{
    const std::lock_guard lock(m_mutex);
    m_answers.removeIf([](const Answers::iterator &answer) { return isReady(answer.value()); });
}

} // namespace HIDCommunicator
