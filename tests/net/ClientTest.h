// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/net/NetworkingFixture.h"

#include <QObject>

#include <memory>

/// Base of the tests whose every function starts with a server and a folder of its own.
class ClientTest : public QObject {
    Q_OBJECT

protected:
    NetworkingFixture &stage() const { return *m_stage; }

protected Q_SLOTS:
    virtual void init() { m_stage = std::make_unique<NetworkingFixture>(); }
    void cleanup() { m_stage.reset(); }

private:
    std::unique_ptr<NetworkingFixture> m_stage;
};
