// SPDX-License-Identifier: MIT
// The last net for exceptions.

#include "application.h"

#include "guard.h"

Application::Application(int &argc, char **argv)
    : QApplication(argc, argv)
{
}

bool Application::notify(QObject *receiver, QEvent *event)
{
    bool handled = false;
    guarded([&] { handled = QApplication::notify(receiver, event); },
            [](const QString &text) { qWarning("%s", qPrintable(text)); });
    return handled;
}
