// SPDX-License-Identifier: MIT
// The last net for exceptions.

#include "application.h"

#include "guard.h"

namespace {

/// Follows the display's scale: sizes in pixels grow with the fonts, and icons come in their larger edition.
/// A scale that Qt works out itself it rounds to a whole one, which keeps image pixels square. To be called
/// before there is an application object.
void followDisplayScale()
{
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#if QT_VERSION >= QT_VERSION_CHECK(5, 6, 0)
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
#endif
}

} // namespace

Application::Application(int &argc, char **argv)
    : QApplication((followDisplayScale(), argc), argv)
{
}

bool Application::notify(QObject *receiver, QEvent *event)
{
    bool handled = false;
    guarded([&] { handled = QApplication::notify(receiver, event); },
            [](const QString &text) { qWarning("%s", qPrintable(text)); });
    return handled;
}
