// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "net/UpdateServer.h"

QString updateServerAddress()
{
    return QStringLiteral(QUILLON_UPDATE_SERVER);
}

QString offlineToolHost()
{
    return QStringLiteral(QUILLON_DOWNLOAD_HOST);
}
