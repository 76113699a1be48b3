// SPDX-License-Identifier: MIT
// Answers whatever dialogue the program opens, and notes what it says.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

class DetectionDialogue;
class QDialog;

/// Watches the whole application for its own life. Message boxes are told Yes where they can be and else
/// their default; file dialogues get the path that was set last; a detection dialogue is handed to its
/// script.
class Answerer final : public QObject
{
public:
    Answerer();

    QString file;                                       ///< for the next file dialogue
    std::function<void(DetectionDialogue &)> detection; ///< runs inside of the dialogue's event loop
    QStringList said;                                   ///< texts of the message boxes

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void answer(QDialog *dialogue);
};
