// SPDX-License-Identifier: MIT
// Answers dialogues from inside of their own event loops.

#include "answerer.h"

#include "detectiondialogue.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace {

const char *const Answered = "answered";

void answerBox(QMessageBox &box)
{
    QAbstractButton *button = box.button(QMessageBox::Yes);
    if (!button)
        button = box.buttons().value(0);
    if (button)
        button->click();
    else
        box.reject();
}

void chooseFile(QFileDialog &dialogue, const QString &path)
{
    dialogue.findChild<QLineEdit *>("fileNameEdit")->setText(path);
    QMetaObject::invokeMethod(&dialogue, "accept");
}

} // namespace

Answerer::Answerer()
{
    qApp->installEventFilter(this);
}

/// A dialogue that is shown again, as the detection dialogue is, is answered once.
bool Answerer::eventFilter(QObject *watched, QEvent *event)
{
    auto *dialogue = event->type() == QEvent::Show ? qobject_cast<QDialog *>(watched) : nullptr;
    if (dialogue && dialogue->isModal() && !dialogue->property(Answered).toBool()) {
        dialogue->setProperty(Answered, true);
        QTimer::singleShot(0, dialogue, [this, dialogue] { answer(dialogue); });
    }
    return false;
}

void Answerer::answer(QDialog *dialogue)
{
    if (auto *box = qobject_cast<QMessageBox *>(dialogue)) {
        said << box->text();
        answerBox(*box);
    } else if (auto *files = qobject_cast<QFileDialog *>(dialogue)) {
        chooseFile(*files, file);
    } else if (auto *detecting = qobject_cast<DetectionDialogue *>(dialogue)) {
        detection(*detecting);
    } else {
        qFatal("a %s is open", dialogue->metaObject()->className());
    }
}
