// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QJsonObject>
#include <QString>

namespace probe {

/// What the probe writes. Lines appear at once, also when they go into a pipe, and never in the middle of one
/// another: callable from any thread.
class Output {
public:
    explicit Output(bool json)
        : m_json(json)
    {
    }

    bool isJson() const { return m_json; }

    /// \name To the standard output. Of a pair of these a run uses one: words for a person, JSON for a
    /// program.
    /// @{
    void line(const QString &words) const;
    void document(const QJsonObject &object) const; ///< the one document of a run
    void object(const QJsonObject &object) const; ///< one of several, on a line of its own
    /// @}

    /// To the standard error, with the program's name in front.
    void complain(const QString &words) const;
    /// To the standard error as it stands.
    void remark(const QString &words) const;

private:
    bool m_json;
};

} // namespace probe
