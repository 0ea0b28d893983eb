// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/FirmwareBox.h"

#include <QLineEdit>
#include <QRegularExpressionValidator>

namespace host {

FirmwareBox::FirmwareBox(QWidget *parent)
    : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    // One too old for the panel, the oldest it upgrades, one in between, the newest, and one that a
    // comparison of texts would take for older.
    addItems({QStringLiteral("1.0.9"), QStringLiteral("1.1.1"), QStringLiteral("1.1.9"),
              QStringLiteral("1.2.0"), QStringLiteral("1.10.0")});
    // Each part fills two bytes in the device.
    const QRegularExpression version(QStringLiteral("(0|[1-9][0-9]{0,3})(\\.(0|[1-9][0-9]{0,3})){2}"));
    setValidator(new QRegularExpressionValidator(version, this));
    restore();
    connect(this, &QComboBox::activated, this, &FirmwareBox::take);
    connect(lineEdit(), &QLineEdit::returnPressed, this, &FirmwareBox::take);
}

void FirmwareBox::setVersion(const QVersionNumber &version)
{
    m_version = version;
    if (!lineEdit()->isModified() || !lineEdit()->hasFocus())
        restore();
}

void FirmwareBox::focusOutEvent(QFocusEvent *event)
{
    QComboBox::focusOutEvent(event);
    take();
}

void FirmwareBox::take()
{
    const QVersionNumber version = QVersionNumber::fromString(currentText());
    const bool isNew = lineEdit()->hasAcceptableInput() && version != m_version;
    if (isNew)
        m_version = version;
    restore();
    if (isNew)
        Q_EMIT versionEntered(version);
}

void FirmwareBox::restore()
{
    setEditText(m_version.isNull() ? QStringLiteral("-") : m_version.toString());
}

} // namespace host
