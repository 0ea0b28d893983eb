// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

class QNetworkAccessManager;
class QTimer;

/// What tests may see of the inside of the update server's client.
namespace ClientInside {

QNetworkAccessManager *manager(); ///< keeps the replies that nobody has deleted yet
QTimer *heldFileTimer(); ///< runs while another program holds the image's file

} // namespace ClientInside
