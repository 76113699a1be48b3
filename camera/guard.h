// SPDX-License-Identifier: MIT
// The one place where exceptions stop before they reach the event loop.
#pragma once

#include <QString>

#include <exception>

/// Runs `work`; the text of a std::exception that leaves it is handed to `report(QString)`.
///
/// Everything that the event loop or a widget calls and that may throw runs in here: on 32-bit ARM an
/// exception that reaches the frames of QtGui or QtWidgets ends the process.
/// @return whether `work` ran to its end
template<typename Work, typename Report>
bool guarded(Work &&work, Report &&report)
{
    try {
        work();
        return true;
    } catch (const std::exception &failure) {
        report(QString(failure.what()));
        return false;
    }
}
