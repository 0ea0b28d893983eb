#pragma once

#include "tests/flash/FlashingStage.h"

#include <QObject>

#include <memory>

/// Base of the tests whose every function starts with a flashing stage of its own.
class FlashingTest : public QObject {
    Q_OBJECT

protected:
    std::unique_ptr<FlashingStage> m;

protected Q_SLOTS:
    void init() { m = std::make_unique<FlashingStage>(); }
    virtual void cleanup() { m.reset(); }
};
