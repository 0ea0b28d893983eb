// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QFile>

namespace tool {

/// The file through which the tool tells how far it is: one line for each percentage, then one result line.
class ProgressFile {
public:
    ProgressFile();

    bool begin(); ///< empties the file; false when it cannot be written
    void percent(int percent);
    void result(const QByteArray &line);
    void raw(const QByteArray &bytes);
    void writeHalfLines(bool half) { m_halfLines = half; } ///< each line arrives in two pieces

private:
    void line(const QByteArray &text);

    QFile m_file;
    bool m_halfLines = false;
};

} // namespace tool
