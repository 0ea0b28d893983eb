// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

/// Base address of the update server: plain http and a bare host, fixed when the library is built.
QString updateServerAddress();

/// Base address from which the offline upgrade tool is downloaded.
QString offlineToolHost();
