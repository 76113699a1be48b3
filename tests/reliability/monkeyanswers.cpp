// SPDX-License-Identifier: MIT
// Answers at random, and fills the files that are chosen.

#include "monkeyanswers.h"

#include "detectiondialogue.h"
#include "dialog_about.h"
#include "monkeybench.h"
#include "monkeydiary.h"
#include "monkeyinput.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>

namespace {

const char *const ParameterFile = "cameraparameter.xml"; // in the current directory

/// Random bytes.
QByteArray garbage(MonkeyRandom &random, int longest)
{
    QByteArray bytes(random.below(longest), '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(random.below(256));
    return bytes;
}

/// Lines of entries, some of them of other classes, outside of any image, or no entries at all.
QByteArray listText(MonkeyRandom &random)
{
    QByteArray text;
    for (int line = random.below(random.oneIn(200) ? 4000 : 40); line > 0; --line) {
        const int extent = random.oneIn(8) ? 100000 : 90;
        text += QByteArray::number(random.below(extent)) + ' ' + QByteArray::number(random.below(extent));
        text += random.pick({" 1\n", " 1\n", " 0\n", " 2\r\n", " 7\n", "\n", " one\n", " -1 9 9\n"});
    }
    return text;
}

QByteArray parameterText(MonkeyRandom &random)
{
    const QString text = "<CameraSettings><Sensor ID=\"%1\"><Timing pixelclock=\"%2\" framerate=\"%3\" "
                         "exposure=\"%4\"/><Gain master=\"%5\" red=\"%6\" green=\"-1\" blue=\"0\"/></Sensor>"
                         "</CameraSettings>";
    const QString sensor = random.pick({"0101", "0205", "4D", "x"});
    const int pixelClock = random.from(-5, 120);
    const QString frameRate = random.pick({"20.5", "0", "-1", "1e400", "nan", "", "5"});
    const QString exposure = random.pick({"10", "0", "-1", "1e9", "inf"});
    return text.arg(sensor)
        .arg(pixelClock)
        .arg(frameRate, exposure)
        .arg(random.from(-5, 120))
        .arg(random.from(-5, 120))
        .toUtf8();
}

void store(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

/// Turns a bit of a file over, as a bad disk does.
void damage(const QString &path, MonkeyRandom &random)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite) || file.size() == 0)
        return;
    QByteArray bytes = file.readAll();
    const int place = random.below(bytes.size());
    bytes[place] = static_cast<char>(bytes.at(place) ^ (1 << random.below(8)));
    file.seek(0);
    file.write(bytes);
}

} // namespace

MonkeyAnswers::MonkeyAnswers(MonkeyBench &theBench, MonkeyInput &theInput, const QString &folder)
    : bench(theBench)
    , input(theInput)
    , files(folder)
{
}

MonkeyKinds MonkeyAnswers::kinds()
{
    return {{"answer", 120, MonkeyKind::InDialogue, [this](MonkeyRandom &random) { answer(random); }},
            {"more dark frames", 120, MonkeyKind::InDialogue,
             [this](MonkeyRandom &random) { bench.pushDarkFrame(random); }},
            {"end of the session", 1, MonkeyKind::InDialogue,
             [](MonkeyRandom &random) {
                 if (random.oneIn(10))
                     QCoreApplication::quit();
             }},
            {"write file", 4, MonkeyKind::Anywhere, [this](MonkeyRandom &random) { writeFile(random); }},
            {"write parameters", 2, MonkeyKind::Anywhere,
             [this](MonkeyRandom &random) { writeParameters(random); }}};
}

void MonkeyAnswers::meet(QWidget *top)
{
    if (top->property("met").toBool())
        return;
    top->setProperty("met", true);
    monkeydiary::count(top->metaObject()->className());
    auto *box = qobject_cast<QMessageBox *>(top);
    if (!box || !box->text().startsWith("This action will completely overwrite"))
        return;
    QObject::connect(box, &QMessageBox::finished, box, [this](int result) {
        confirmed = confirmed || result == QMessageBox::Yes;
        monkeydiary::count(result == QMessageBox::Yes ? "writes confirmed" : "writes refused");
    });
}

bool MonkeyAnswers::takeConfirmation()
{
    const bool taken = confirmed;
    confirmed = false;
    return taken;
}

void MonkeyAnswers::answer(MonkeyRandom &random)
{
    QWidget *top = input.receiver();
    if (!top)
        return;
    monkeydiary::note(top->metaObject()->className());
    if (auto *menu = qobject_cast<QMenu *>(top))
        answerMenu(menu, random);
    else if (auto *file = qobject_cast<QFileDialog *>(top))
        chooseFile(file, random);
    else if (auto *box = qobject_cast<QMessageBox *>(top))
        answerBox(box, random);
    else if (auto *detection = qobject_cast<DetectionDialogue *>(top))
        answerDetection(detection, random);
    else
        answerOther(top, random);
}

void MonkeyAnswers::answerMenu(QMenu *menu, MonkeyRandom &random)
{
    const QList<QAction *> actions = menu->actions();
    if (actions.isEmpty() || random.oneIn(3)) {
        menu->close();
        return;
    }
    QAction *action = random.pick(actions);
    monkeydiary::note(action->text());
    menu->setActiveAction(action);
    input.pressKey(Qt::Key_Return);
}

void MonkeyAnswers::answerBox(QMessageBox *box, MonkeyRandom &random)
{
    const QList<QAbstractButton *> buttons = box->buttons();
    if (buttons.isEmpty() || random.oneIn(6)) {
        input.pressKey(Qt::Key_Escape);
        return;
    }
    QAbstractButton *button = random.pick(buttons);
    monkeydiary::note(button->text());
    button->click();
}

void MonkeyAnswers::answerDetection(DetectionDialogue *dialogue, MonkeyRandom &random)
{
    const auto *buttons = dialogue->findChild<QDialogButtonBox *>();
    const int what = random.below(8);
    if (what == 0)
        input.pressKey(Qt::Key_Escape);
    else if (what == 1)
        buttons->button(QDialogButtonBox::Close)->click();
    else if (what == 2)
        dialogue->findChild<QSpinBox *>()->setValue(random.from(0, 300));
    else
        buttons->button(QDialogButtonBox::Ok)->click();
}

void MonkeyAnswers::answerOther(QWidget *top, MonkeyRandom &random)
{
    auto *link = top->findChild<QWidget *>("aboutQtLabel");
    if (link && random.oneIn(2))
        input.clickOn(link);
    else if (random.oneIn(2))
        input.pressKey(Qt::Key_Escape);
    else
        top->close();
}

/// The path is always one of the monkey's own.
void MonkeyAnswers::chooseFile(QFileDialog *dialogue, MonkeyRandom &random)
{
    dialogue->setOption(QFileDialog::ReadOnly);
    if (random.oneIn(4)) {
        dialogue->reject();
        return;
    }
    const QString path = anyFile(random);
    monkeydiary::note(path);
    monkeydiary::count("files chosen");
    dialogue->findChild<QLineEdit *>("fileNameEdit")->setText(path);
    QMetaObject::invokeMethod(dialogue, "accept");
}

/// Files that are there and are not, a folder, and places where none can be.
QString MonkeyAnswers::anyFile(MonkeyRandom &random) const
{
    const QString name =
        random.pick<const char *>({"a.txt", "b.txt", "a.bin", "b.bin", "c d.txt", "\xc3\xbc\xe2\x9c\x93.bin",
                                   "a", "folder", "missing/a.txt", "%1%s%n.txt"});
    return files + '/' + (random.oneIn(30) ? QString(300, 'x') : name);
}

void MonkeyAnswers::writeFile(MonkeyRandom &random)
{
    const QString path = anyFile(random);
    monkeydiary::note(path);
    if (random.oneIn(3))
        damage(path, random);
    else if (random.oneIn(20))
        QFile::remove(path);
    else
        store(path, random.oneIn(5) ? garbage(random, 3000) : listText(random));
}

void MonkeyAnswers::writeParameters(MonkeyRandom &random)
{
    if (random.oneIn(4))
        QFile::remove(ParameterFile);
    else
        store(ParameterFile, random.oneIn(5) ? garbage(random, 500) : parameterText(random));
}
