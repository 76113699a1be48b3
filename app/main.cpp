// SPDX-License-Identifier: MIT
// Program start.

#include "application.h"
#include "mainwindow.h"

#include <cstdio>
#include <exception>

int main(int argc, char **argv)
{
    Application application(argc, argv);
    try {
        MainWindow window;
        window.show();
        return Application::exec();
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
