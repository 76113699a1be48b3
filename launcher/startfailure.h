// SPDX-License-Identifier: MIT
// Tells why the program cannot start, where the one who started it looks.
#pragma once

#include <QString>

/// Writes why the program cannot start to standard error.
void printStartFailure(const QString &text);

/// Whether somebody looks at a screen and nobody at standard error, as when the program was started from the
/// desktop.
bool isSeenOnScreenAlone();

/// Shows why the program cannot start in a box until that is closed; needs a QApplication.
void showStartFailure(const QString &text);
