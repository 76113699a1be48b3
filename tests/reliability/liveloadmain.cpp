// SPDX-License-Identifier: MIT
// The window under load for as long as wanted, in figures.
//   speckmend-liveload [--size 320x240] [--zoom 1to1] [--frames 100000] [--shown 0] [--rate 10000] [--signals
//   0]

#include "liveload.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({{"size", "Pixels of the sensor.", "width x height", "320x240"},
                       {"zoom", "1to4, 1to2, 1to1, 2to1 or 4to1.", "zoom", "1to1"},
                       {"frames", "Frames that the camera takes.", "number", "100000"},
                       {"shown", "Frames that get to the window.", "number", "0"},
                       {"rate", "Frames a second that are asked for.", "number", "10000"},
                       {"signals", "Further events a second.", "number", "0"}});
    parser.process(application);
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    QDir::setCurrent(folder.path());
    LiveLoad::Plan plan;
    plan.width = parser.value("size").section('x', 0, 0).toInt();
    plan.height = parser.value("size").section('x', 1, 1).toInt();
    plan.zoom = parser.value("zoom");
    plan.frames = parser.value("frames").toULongLong();
    plan.shownFrames = parser.value("shown").toULongLong();
    plan.framesPerSecond = parser.value("rate").toDouble();
    plan.signalsPerSecond = parser.value("signals").toDouble();
    LiveLoad load(plan);
    const LiveLoad::Figures figures = load.run();
    printFigures(figures);
    return figures.clicks == figures.answers ? 0 : 1;
}
