// SPDX-License-Identifier: MIT
// The monkey's answers to dialogues, boxes and menus.
#pragma once

#include "monkeykind.h"

#include <QString>

class DetectionDialogue;
class MonkeyBench;
class MonkeyInput;
class QFileDialog;
class QMenu;
class QMessageBox;
class QWidget;

/// Works on whatever is open on top.
class MonkeyAnswers final
{
public:
    MonkeyAnswers(MonkeyBench &theBench, MonkeyInput &theInput, const QString &folder);

    MonkeyKinds kinds();

    /// Something is open on top of the window: looks at it the first time.
    void meet(QWidget *top);

    /// Whether the user confirmed since the last taking that the camera's list is to be overwritten.
    bool isConfirmed() const { return confirmed; }
    bool takeConfirmation();

private:
    void answer(MonkeyRandom &random);
    void answerMenu(QMenu *menu, MonkeyRandom &random);
    void answerBox(QMessageBox *box, MonkeyRandom &random);
    void answerDetection(DetectionDialogue *dialogue, MonkeyRandom &random);
    void answerOther(QWidget *top, MonkeyRandom &random);
    void chooseFile(QFileDialog *dialogue, MonkeyRandom &random);
    QString anyFile(MonkeyRandom &random) const;
    void writeFile(MonkeyRandom &random);
    void writeParameters(MonkeyRandom &random);

    MonkeyBench &bench;
    MonkeyInput &input;
    const QString files;
    bool confirmed = false;
};
