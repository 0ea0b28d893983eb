// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QtGlobal>

#include <functional>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

using MakeWindow = std::function<QWidget *()>;

QWidget *makePanel();

/// Opens what \a make gives and closes it again. How many milliseconds passed from the call until it was
/// painted.
double timeToPaint(const MakeWindow &make);
