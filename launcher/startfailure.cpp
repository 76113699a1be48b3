// SPDX-License-Identifier: MIT
// Tells why the program cannot start, where the one who started it looks.

#include "startfailure.h"

#include <QMessageBox>

#include <cstdio>
#include <unistd.h>

namespace {

// Asked before there is a QApplication, which ends the process where it finds no screen.
bool hasScreen()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform.isEmpty())
        return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    return !platform.startsWith("offscreen") && !platform.startsWith("minimal");
}

} // namespace

void printStartFailure(const QString &text)
{
    std::fprintf(stderr, "%s\n", qPrintable(text));
}

bool isSeenOnScreenAlone()
{
    return hasScreen() && !isatty(STDERR_FILENO);
}

void showStartFailure(const QString &text)
{
    QMessageBox box(QMessageBox::Critical, "Speckmend", text, QMessageBox::Close);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.exec();
}
