#pragma once

#include "rig/tool/ChipLink.h"

#include <QByteArray>
#include <QLocalSocket>
#include <QStringList>

namespace tool {

/// The tool's connection to the rig, which leads to the boot loaders too. After a failed call it is of no
/// further use.
class BootLoaderLink : public ChipLink {
public:
    bool connectToRig();

    QStringList greet(const QStringList &arguments); ///< the names of this run's faults

    std::chrono::milliseconds patience() const override { return std::chrono::seconds(4); }
    bool find(int productId) override;
    bool attach(int productId, bool alreadyInBootLoader) override;
    bool isReady() override;
    bool erase(qsizetype imageSize) override;
    bool write(qsizetype offset, const QByteArray &block) override;
    QByteArray digest() override;
    bool restart() override;

    void waitForEnd(); ///< returns when the other side has gone

private:
    QStringList ask(const QStringList &words, const QByteArray &block = {});
    bool agree(const QStringList &words, const QByteArray &block = {});

    QLocalSocket m_socket;
};

} // namespace tool
