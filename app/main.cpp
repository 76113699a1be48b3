// SPDX-License-Identifier: MIT
// Program start.

#include "application.h"
#include "mainwindow.h"
#include "startfailure.h"

#include <exception>

int main(int argc, char **argv)
{
    Application application(argc, argv);
    try {
        MainWindow window;
        window.show();
        return Application::exec();
    } catch (const std::exception &failure) {
        printStartFailure(failure.what());
        if (isSeenOnScreenAlone())
            showStartFailure(failure.what());
        return 1;
    }
}
