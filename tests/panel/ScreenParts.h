// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>
#include <QStringList>

/// What several tests expect on the screen.
namespace ScreenParts {

/// The style of the offer to try again.
inline QString retryStyle(const QString &family)
{
    return QStringLiteral("QLabel{border:0px; color:rgba(47,212,179,1);font-family:\"%1\";font-size:16px; "
                          "font-weight:700; letter-spacing:0px; text-align:center;}")
        .arg(family);
}

/// What a VisibilityRecorder writes down when the hint at the cable makes room for card and notes.
inline const QStringList kHintToCard{QStringLiteral("-tipMoiveLb"),      QStringLiteral("-m_detectingUsbLb"),
                                     QStringLiteral("-m_connectHintLb"), QStringLiteral("+verCompLb"),
                                     QStringLiteral("+m_notesEdit"),     QStringLiteral("+m_notesIconLb"),
                                     QStringLiteral("+m_notesTitleLb"),  QStringLiteral("+m_notesLineLb")};

} // namespace ScreenParts
