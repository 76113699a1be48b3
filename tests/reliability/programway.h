// SPDX-License-Identifier: MIT
// One scripted way through the whole program in its real window, to be played while the library fails or
// lies.
#pragma once

#include "answerer.h"
#include "kelvosim.h"
#include "watchdog.h"

#include <QRect>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

#include <functional>
#include <memory>

class MainWindow;
class WindowDriver;

/// Start, list, open, live frames, settings, detection, edit, write, save, load, export, import, correction,
/// unplug, reconnect, close, another camera, quit. The program's timers are stopped and what they do is
/// played as steps, so that a fault-free way makes the same calls in the same order every time.
class ProgramWay final
{
public:
    ProgramWay();
    ~ProgramWay();

    /// Number of steps, and what a step is called.
    int length() const { return steps.size(); }
    QString stepName(int step) const { return steps.at(step).name; }

    /// Called before each step; `length()` stands for the time after the last one.
    std::function<void(int)> beforeStep;

    /// All calls fail after the first that does: nothing is waited for then. Waits that are under way at that
    /// moment end with an event, as they would not end with the library.
    bool diesWithFirstFailure = false;

    /// Clicks into the view after each step, as proof that the window lives.
    bool clicksAfterEachStep = false;

    /// What the library tells cannot be counted on: how much it gave is not added up, and what is waited for
    /// may never come.
    bool libraryLies = false;

    /// What hangs is told by this name.
    void setName(const QString &name) { wayName = name; }

    /// Plays the way once on a fresh bench; what it finds wrong is in findings().
    void play();

    const QStringList &findings() const { return found; }

    /// All texts of the status bar and of boxes, and of the exception that ended the start.
    QStringList shown() const;
    const QStringList &shownIn(int step) const { return textsOfSteps.at(step); }

    /// For each logged call, the step in which it was made.
    const QVector<int> &firstCallOfSteps() const { return firstCalls; }

    void find(const QString &finding);

private:
    enum Change { Nothing = 0, MayAdd = 1, MayLose = 2, MayStore = 4 };
    struct Step
    {
        QString name;
        std::function<void()> play;
        int mayChange; // of Change
    };
    using Entries = QStringList; // "x y class"

    void addSteps();
    void addListSteps();
    void addCameraSteps();
    void resetBench();
    void makeListFile();
    void playStep(int step);
    void start();
    void refreshList();
    void open(const std::string &serial);
    void close();
    void changeSettings();
    void detect();
    void runDetection(DetectionDialogue &dialogue);
    void addEntry();
    void deleteLastEntry();
    void chooseFile(const char *action, const QString &name);
    void unplug();
    void plug();
    void pushFrames(int count);
    void pushFrame();
    void clickSomewhere();
    void quit();

    bool waitFor(const std::function<bool()> &condition);
    bool isGone();
    bool hears(bool camera);
    Entries entries() const;
    Entries userEntries() const;
    void invoke(const char *slot);
    void trigger(const char *action);
    void stopTimers();
    void checkEntries(const Step &step, const Entries &before);
    void checkStore(const Step &step, const std::vector<kelvosim::Pixel> &before);
    void checkHeld();
    void checkBooks();
    void checkWarnings();

    QVector<Step> steps;
    QTemporaryDir folder;
    Answerer answerer;
    Watchdog watchdog;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<WindowDriver> driver;
    std::string opened; // serial number of the camera that was opened last
    QString wayName;
    QStringList found;
    QStringList texts; // of the present step, boxes excepted
    QVector<QStringList> textsOfSteps;
    QVector<int> firstCalls;
    int clicks = 0;
    bool gone = false;
    bool waitedInVain = false; // since the last opening
};
