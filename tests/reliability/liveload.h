// SPDX-License-Identifier: MIT
// The real window under a camera that delivers faster than anybody can look.
#pragma once

#include "kelvosim.h"

#include <QElapsedTimer>
#include <QString>
#include <QVector>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

class MainWindow;
class WindowDriver;

/// Signals events of a camera at a steady rate, from a thread of its own, until it is destroyed. They
/// announce frames that nobody took, as a library does that is far ahead of its camera.
class Signaller final
{
public:
    Signaller(const std::string &serial, std::uint32_t event, double perSecond);
    ~Signaller();

    std::uint64_t count() const { return signalled; }

private:
    void signal(double perSecond);

    const std::string camera;
    const std::uint32_t code;
    std::atomic<std::uint64_t> signalled{0};
    std::mutex mutex; // guards over
    std::condition_variable changed;
    bool over = false;
    std::thread thread;
};

/// Shows the window, opens the camera and lets its frames come, while a person clicks into the view.
class LiveLoad final
{
public:
    struct Plan
    {
        kelvosim::SensorKind kind = kelvosim::SensorKind::Mono;
        int width = 320;
        int height = 240;
        QString zoom = "1to1";
        double framesPerSecond = 10000.0; ///< asked for; the simulated sensor may be slower
        double signalsPerSecond = 0.0;    ///< of events that a frame is there, beside the frames
        std::uint64_t frames = 1000;      ///< taken by the camera until the end
        std::uint64_t shownFrames =
            0; ///< shown until the end, which comes when both are reached and some clicks made
        int mostMilliseconds = 0x7fffffff; ///< without a further frame: then it hangs
    };

    struct Sample
    {
        std::uint64_t frames = 0;
        std::uint64_t shown = 0;
        std::int64_t residentBytes = 0;
    };

    struct Figures
    {
        bool hangs = false;
        std::uint64_t frames = 0;      ///< taken by the camera
        std::uint64_t signalled = 0;   ///< events beside those of the frames
        std::uint64_t shown = 0;       ///< frames that got to the window
        int clicks = 0;                ///< made
        int answers = 0;               ///< to them
        qint64 longestGap = 0;         ///< milliseconds between two ticks of a timer of 5 ms
        double seconds = 0.0;          ///< that it took
        double simulatedSeconds = 0.0; ///< that the camera needs for as many frames at the rate that is set
        QVector<Sample> memory;        ///< at the start, after each tenth, at the end
    };

    explicit LiveLoad(const Plan &wanted);
    ~LiveLoad();

    Figures run();

private:
    void open();
    void click();
    void look();
    bool isEnough() const;
    void sample();
    std::uint64_t frames() const;

    const Plan plan;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<WindowDriver> driver;
    Figures figures;
    QElapsedTimer sinceTick;
    QElapsedTimer sinceFrame;
    double frameTime = 0.0;
};

/// The figures in words.
void printFigures(const LiveLoad::Figures &figures);
