// SPDX-License-Identifier: MIT
// A life of the monkey: some thousand actions on one bench, through any number of program starts.
#pragma once

#include "monkeyanswers.h"
#include "monkeybench.h"
#include "monkeyinput.h"
#include "monkeykind.h"
#include "monkeywindow.h"

#include <QBasicTimer>
#include <QObject>
#include <QString>

#include <memory>

class MainWindow;
class MonkeyInvariants;

/// Performs one action in each turn of whichever event loop runs, so that actions go on inside of dialogues.
class MonkeyLife final : public QObject
{
    Q_OBJECT

public:
    /// @param folder for the files of the life; it is the current directory as well
    MonkeyLife(quint64 lifeSeed, quint64 actionCount, const QString &folder);
    ~MonkeyLife() override;

    /// Lives to the end: starts the program whenever it has ended, and looks at the end whether it still
    /// works.
    void live();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void start();
    void play();
    void end();
    void act();
    const MonkeyKind &choose(MonkeyRandom &random) const;
    void spoilSettings();
    void checkHealth();
    void checkNothingHeld();

    const quint64 seed;
    const quint64 actions;
    quint64 done = 0;
    int depth = 0;
    MonkeyBench bench;
    MonkeyInput input;
    MonkeyAnswers answers;
    MonkeyWindow hands;
    MonkeyKinds inWindow;
    MonkeyKinds inDialogue;
    int windowWeight = 0;
    int dialogueWeight = 0;
    QBasicTimer turn;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<MonkeyInvariants> invariants;
};
