// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QLabel>

namespace host {

/// The name in front of a field, its buddy, with its letters on the field's base line. A label of its own
/// would centre its line, and a line with Chinese in it is higher than the number beside it.
class Caption : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace host
