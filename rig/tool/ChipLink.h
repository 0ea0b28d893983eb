#pragma once

#include <QByteArray>

#include <chrono>

namespace tool {

/// The way to one chip. Every call waits for its answer, a few seconds at most.
class ChipLink {
public:
    virtual ~ChipLink() = default;

    /// How long a chip may take to be found, and to show itself in its boot loader.
    virtual std::chrono::milliseconds patience() const = 0;

    virtual bool find(int productId) = 0; ///< is it on the bus?
    virtual bool attach(int productId, bool alreadyInBootLoader) = 0; ///< talk to this chip
    virtual bool isReady() = 0; ///< is it on the bus in its boot loader?
    virtual bool erase(qsizetype imageSize) = 0;
    virtual bool write(qsizetype offset, const QByteArray &block) = 0;
    virtual QByteArray digest() = 0; ///< SHA-256 of what the flash holds, hexadecimal
    virtual bool restart() = 0;
};

} // namespace tool
