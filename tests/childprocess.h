// SPDX-License-Identifier: MIT
// Starts other programs from a test, wherever that runs.
#pragma once

#include <QProcess>

/// A class of its own makes Qt start programs with fork(). What it takes for a plain QProcess shares memory
/// with the child, and tells of a crash under an emulator.
class ChildProcess final : public QProcess
{
public:
    /// Starts a program of this build: like the test itself, through the emulator if it is for another
    /// machine.
    void startBuilt(const QString &program, const QStringList &arguments = {})
    {
        const QString emulator = qEnvironmentVariable("SPECKMEND_EMULATOR");
        if (emulator.isEmpty())
            start(program, arguments);
        else
            start(emulator, QStringList(program) + arguments);
    }
};
