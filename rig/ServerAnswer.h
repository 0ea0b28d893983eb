#pragma once

#include "rig/FaultBoard.h"
#include "rig/Identity.h"

#include <QByteArray>
#include <QVersionNumber>

#include <chrono>

namespace rig {

/// What a request is about.
struct RequestSubject {
    RequestKind kind;
    Model model;
    Chip chip;
    QVersionNumber version; ///< the newest one
};

/// An answer and the manner in which it is given.
struct ServerAnswer {
    enum class Delivery {
        Whole,
        Dripping, ///< in many pieces over kDrippingTime
        HalfThenHangUp, ///< half of the content that the head announces
        HangUp, ///< nothing at all
        Never ///< nothing, and the connection stays
    };

    QByteArray status = "200 OK";
    QByteArray contentType;
    QByteArray location; ///< where a redirect leads
    QByteArray body;
    QByteArray raw; ///< goes out in place of head and body when not empty
    std::chrono::milliseconds delay{0};
    Delivery delivery = Delivery::Whole;

    QByteArray head() const;
    QByteArray sentBody() const; ///< the part of the body that is sent
};

/// The answer to a request for \a subject, with every fault that strikes it. \a target is where it came from.
ServerAnswer answerTo(const RequestSubject &subject, const QByteArray &target, FaultBoard &faults);
ServerAnswer errorPage(const QByteArray &status);

} // namespace rig
