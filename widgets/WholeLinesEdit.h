// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QPointer>
#include <QTextEdit>

/// A read-only text box that ends below a whole line: a text that is longer than the box is scrolled into
/// view, and no line is seen cut in half while the text stands at its beginning. GUI thread only.
class WholeLinesEdit : public QTextEdit {
public:
    explicit WholeLinesEdit(QWidget *parent);

    /// Ends above \a sibling as well while that can be seen and the text is longer than the box.
    void keepClearOf(QWidget *sibling);

    /// Around what is seen of the text, in the box's pixels: clear of the scroll bar and of the siblings
    /// above.
    QRect outline() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    int room() const;
    void endBelowWholeLine();

    QList<QPointer<QWidget>> m_above;
};
