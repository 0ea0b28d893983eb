// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "bench/Opening.h"

#include "panel/FirmwareUpgradeWidget.h"

#include <QCoreApplication>
#include <QEvent>

#include <chrono>
#include <memory>

namespace {
using Clock = std::chrono::steady_clock;

class FirstPaint : public QObject {
public:
    bool isDone() const { return m_isDone; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        m_isDone = m_isDone || event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }

private:
    bool m_isDone = false;
};
} // namespace

QWidget *makePanel()
{
    return new QuillonFirmwareUpgrade::FirmwareUpgradeWidget;
}

double timeToPaint(const MakeWindow &make)
{
    FirstPaint paint;
    const Clock::time_point start = Clock::now();
    const std::unique_ptr<QWidget> window(make());
    window->installEventFilter(&paint);
    window->show();
    while (!paint.isDone())
        QCoreApplication::processEvents();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}
