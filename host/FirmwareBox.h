// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QComboBox>
#include <QVersionNumber>

namespace host {

/// A field for a firmware version of three numbers: typed, or taken from a list of handy ones. What is no
/// version cannot be entered; a field that is left half-typed goes back to what it was.
class FirmwareBox : public QComboBox {
    Q_OBJECT

public:
    explicit FirmwareBox(QWidget *parent = nullptr);

    /// Shows \a version; null shows a dash. Emits nothing, and leaves a field alone that is being typed in.
    void setVersion(const QVersionNumber &version);

Q_SIGNALS:
    void versionEntered(const QVersionNumber &version); ///< another one than before, by the user

protected:
    void focusOutEvent(QFocusEvent *event) override;

private:
    void take();
    void restore();

    QVersionNumber m_version;
};

} // namespace host
