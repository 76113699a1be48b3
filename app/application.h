// SPDX-License-Identifier: MIT
// The application object, with the last net for exceptions.
#pragma once

#include <QApplication>

/// Lets no exception of a handler end the program: its text goes to standard error. Slots guard themselves;
/// this catches what a guard forgot, on machines where an exception gets this far at all.
class Application final : public QApplication
{
    Q_OBJECT

public:
    Application(int &argc, char **argv);

    bool notify(QObject *receiver, QEvent *event) override;
};
