#pragma once

#include <QString>

/// Base address of the update server: plain http and a bare host, fixed when the library is built.
inline QString updateServerAddress()
{
    return QStringLiteral(QUILLON_UPDATE_SERVER);
}

/// Base address from which the offline upgrade tool is downloaded.
inline QString offlineToolHost()
{
    return QStringLiteral(QUILLON_DOWNLOAD_HOST);
}
