// SPDX-License-Identifier: MIT
// The tour: leads the real window over the simulated cameras, from the camera list to the stored list, prints
// what it sees and saves numbered pictures.
//   speckmend-tour [FOLDER]    the pictures go into FOLDER, by default the current one

#include "application.h"
#include "tour.h"

#include <cstdio>
#include <exception>

int main(int argc, char **argv)
{
    Application application(argc, argv);
    const QStringList arguments = Application::arguments();
    try {
        Tour tour(arguments.value(1, "."));
        return tour.play() ? 0 : 1;
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "the tour ended early: %s\n", failure.what());
        return 1;
    }
}
