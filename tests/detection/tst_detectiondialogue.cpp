// SPDX-License-Identifier: MIT
// Tests that the detection dialogue stays open and modal through its runs, and goes when it is closed.
#include "detectiondialogue.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTimer>
#include <QWindow>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

const Qt::WindowFlags Ready = Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
const Qt::WindowFlags Capturing = Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint;

QPushButton *startButton(const DetectionDialogue *dialogue)
{
    return dialogue->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
}

QPushButton *closeButton(const DetectionDialogue *dialogue)
{
    return dialogue->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Close);
}

QProgressBar *progress(const DetectionDialogue *dialogue)
{
    return dialogue->findChild<QProgressBar *>();
}

/// The texts of the labels in the group of this title, from top to bottom; buddies are left out.
QStringList labelsOf(const DetectionDialogue *dialogue, const QString &title)
{
    QStringList texts;
    for (const QGroupBox *box : dialogue->findChildren<QGroupBox *>()) {
        if (box->title() != title)
            continue;
        for (const QLabel *label : box->findChildren<QLabel *>())
            texts << label->text();
    }
    return texts;
}

/// Status, count and message.
QStringList report(const DetectionDialogue *dialogue)
{
    return labelsOf(dialogue, "Detection");
}

bool controlsEnabled(const DetectionDialogue *dialogue)
{
    return dialogue->findChild<QDialogButtonBox *>()->isEnabled() &&
           dialogue->findChild<QCheckBox *>()->isEnabled() &&
           dialogue->findChild<QSpinBox *>()->isEnabled() && dialogue->findChild<QSlider *>()->isEnabled();
}

bool controlsDisabled(const DetectionDialogue *dialogue)
{
    return !dialogue->findChild<QDialogButtonBox *>()->isEnabled() &&
           !dialogue->findChild<QCheckBox *>()->isEnabled() &&
           !dialogue->findChild<QSpinBox *>()->isEnabled() && !dialogue->findChild<QSlider *>()->isEnabled();
}

/// The lowest label, which tells why a run failed.
QLabel *messageLabel(const DetectionDialogue *dialogue)
{
    return dialogue->findChildren<QGroupBox *>().last()->findChildren<QLabel *>().last();
}

/// Waits until the window manager, if there is one, has dealt with what it was asked before: it takes one
/// thing after the other, and shows this window last. The window takes no activation away.
bool waitForWindowManager()
{
    if (QGuiApplication::platformName() == "offscreen")
        return true; // there is none, and the probe would be activated whatever it says
    QWidget probe(nullptr, Qt::Window | Qt::WindowDoesNotAcceptFocus);
    probe.setAttribute(Qt::WA_ShowWithoutActivating);
    probe.setGeometry(700, 500, 50, 50);
    probe.show();
    return QTest::qWaitForWindowExposed(&probe);
}

int top(const QWidget *widget)
{
    return widget->mapTo(widget->window(), QPoint(0, 0)).y();
}

class EventCounter final : public QObject
{
public:
    explicit EventCounter(QEvent::Type countedType)
        : type(countedType)
    {
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == type;
        return false;
    }

    int count = 0;

private:
    QEvent::Type type;
};

} // namespace

class TestDetectionDialogue : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void showsItsTextsAndDefaults();
    void isLaidOutFromTopToBottom();
    void startEmitsTheChoices();
    void startDisablesTheControlsAndClearsTheReport();
    void startDoesNotCloseTheDialogue();
    void enterStartsARun();
    void finishMakesReadyForTheNextRunAndKeepsTheProgress();
    void abortSetsTheProgressBack();
    void addedPixelsAreCounted();
    void eachRunCountsFromZero();
    void anErrorReplacesTheCount();
    void aMessageIsShownWhole_data();
    void aMessageIsShownWhole();
    void theButtonsStayUnderTheMouse();
    void staysOpenAndModalFromStartToClose();
    void isNeverHiddenFromStartToClose();
    void runsCanFollowOneAnother();
    void otherWindowsGetNoClicksFromStartToClose();
    void escapeClosesWhileCapturing();
    void escapeClosesWhenReady();
    void theWindowManagerClosesWhileCapturing();
    void theReceiverOfFinishedMayAbortTheRun();
    void aClosedDialogueDoesNotComeBack();
    void aClosedDialogueCountsNoMore();
    void aDialogueThatWasNeverShownStaysHidden();
    void execReturnsTheResult();
    void execEndsWhenTheDialogueIsDestroyed();
    void execEndsWhenItsParentIsDestroyed();
    void canBeOpenedAgainAfterItWasClosed();
    void canBeOpenedAgainAfterItWasClosedWhileCapturing();
    void isReadyWhenFinishedIsEmitted();
    void theReceiverOfFinishedMayDeleteTheDialogue();
    void theWindowStaysWhereItIs();
    void theWindowStaysActive();
    void theFocusReturnsAfterARun();
    void openingAgainAndAgainLeaksNothing();

private:
    /// Opens the dialogue, runs `visit` in its loop and closes it if it is still there. @return exec()'s
    int inDialogue(const std::function<void()> &visit)
    {
        // A window that comes back before its manager has let it go may never be shown.
        if (dialogue->windowHandle() && !waitForWindowManager())
            qFatal("The window manager does not answer.");
        bool visited = false;
        QTimer::singleShot(0, dialogue, [&] {
            visited = QTest::qWaitForWindowExposed(dialogue);
            visit();
            if (dialogue)
                dialogue->reject();
        });
        ended = false;
        const int result = dialogue->exec();
        ended = true;
        if (!visited)
            qFatal("The dialogue was not shown.");
        return result;
    }

    void start() { startButton(dialogue)->click(); }

    bool isOpenAndModal() const
    {
        return !ended && dialogue->isVisible() && dialogue->isModal() &&
               QApplication::activeModalWidget() == dialogue;
    }

    std::unique_ptr<QWidget> parent;
    QPointer<DetectionDialogue> dialogue;
    bool ended = false;
};

void TestDetectionDialogue::init()
{
    parent = std::make_unique<QWidget>();
    parent->setGeometry(20, 20, 600, 400);
    parent->show();
    QVERIFY(QTest::qWaitForWindowExposed(parent.get()));
    dialogue = new DetectionDialogue(parent.get());
}

void TestDetectionDialogue::cleanup()
{
    parent.reset();
}

void TestDetectionDialogue::showsItsTextsAndDefaults()
{
    QCOMPARE(dialogue->windowTitle(), QString("Hot pixel detection"));
    QCOMPARE(dialogue->minimumWidth(), 400);
    QVERIFY(dialogue->isModal());
    QCOMPARE(dialogue->windowFlags(), Ready);
    QCOMPARE(labelsOf(dialogue, "Preferences"), QStringList("Threshold"));
    QCOMPARE(report(dialogue), (QStringList{"", "Hot pixel detected: 0", ""}));
    QCOMPARE(startButton(dialogue)->text(), QString("Start"));
    QVERIFY(closeButton(dialogue));
    QCOMPARE(dialogue->findChild<QCheckBox *>()->text(), QString("Clear old hot pixel list"));
    QVERIFY(!dialogue->findChild<QCheckBox *>()->isChecked());
    const QSpinBox *threshold = dialogue->findChild<QSpinBox *>();
    QCOMPARE(threshold->minimum(), 5);
    QCOMPARE(threshold->maximum(), 255);
    QCOMPARE(threshold->value(), 40);
    QCOMPARE(dialogue->findChild<QSlider *>()->value(), 40);
    QCOMPARE(progress(dialogue)->minimum(), 0);
    QCOMPARE(progress(dialogue)->maximum(), 100);
}

void TestDetectionDialogue::isLaidOutFromTopToBottom()
{
    inDialogue([&] {
        const auto *advice = dialogue->findChild<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(advice->text(), QString("Cover the sensor completely during capturing!\n"));
        const auto groups = dialogue->findChildren<QGroupBox *>();
        QCOMPARE(groups.size(), 2);
        const auto labels = groups.at(1)->findChildren<QLabel *>();
        const QSpinBox *threshold = dialogue->findChild<QSpinBox *>();
        const std::vector<int> tops{top(advice),
                                    top(groups.at(0)),
                                    top(threshold),
                                    top(dialogue->findChild<QCheckBox *>()),
                                    top(groups.at(1)),
                                    top(labels.at(0)),
                                    top(progress(dialogue)),
                                    top(labels.at(1)),
                                    top(labels.at(2)),
                                    top(dialogue->findChild<QDialogButtonBox *>())};
        QVERIFY(std::is_sorted(tops.begin(), tops.end()));
        QVERIFY(dialogue->findChild<QSlider *>()->x() < threshold->x());
    });
}

void TestDetectionDialogue::startEmitsTheChoices()
{
    QSignalSpy started(dialogue, &DetectionDialogue::startDetect);
    dialogue->findChild<QSpinBox *>()->setValue(25);
    dialogue->findChild<QCheckBox *>()->setChecked(true);
    inDialogue([&] {
        start();
        QCOMPARE(started.count(), 1);
        QCOMPARE(started.at(0).at(0).toBool(), true);
        QCOMPARE(started.at(0).at(1).toInt(), 25);
        dialogue->finishDetect();
        dialogue->findChild<QCheckBox *>()->setChecked(false);
        dialogue->findChild<QSlider *>()->setValue(200);
        start();
        QCOMPARE(started.count(), 2);
        QCOMPARE(started.at(1).at(0).toBool(), false);
        QCOMPARE(started.at(1).at(1).toInt(), 200);
    });
}

void TestDetectionDialogue::startDisablesTheControlsAndClearsTheReport()
{
    inDialogue([&] {
        dialogue->showError("something");
        QStringList reportThen;
        bool disabledThen = false;
        connect(dialogue, &DetectionDialogue::startDetect, this, [&] {
            reportThen = report(dialogue);
            disabledThen = controlsDisabled(dialogue);
        });
        start();
        QCOMPARE(reportThen, (QStringList{"Please Wait...", "Hot pixel detected: 0", ""}));
        QVERIFY(disabledThen);
        QCOMPARE(dialogue->windowFlags(), Capturing);
        QCOMPARE(dialogue->windowHandle()->flags(), Capturing);
    });
}

void TestDetectionDialogue::startDoesNotCloseTheDialogue()
{
    QSignalSpy finished(dialogue, &QDialog::finished);
    inDialogue([&] {
        start();
        QCoreApplication::processEvents();
        QVERIFY(isOpenAndModal());
        QCOMPARE(finished.count(), 0);
    });
    QCOMPARE(finished.count(), 1);
}

void TestDetectionDialogue::enterStartsARun()
{
    QSignalSpy started(dialogue, &DetectionDialogue::startDetect);
    inDialogue([&] {
        QTest::keyClick(dialogue, Qt::Key_Return);
        QTRY_COMPARE(started.count(), 1);
        QTest::keyClick(dialogue, Qt::Key_Return); // not while capturing
        QCoreApplication::processEvents();
        QCOMPARE(started.count(), 1);
        QVERIFY(isOpenAndModal());
    });
}

void TestDetectionDialogue::finishMakesReadyForTheNextRunAndKeepsTheProgress()
{
    inDialogue([&] {
        start();
        dialogue->updateProgress(70);
        QCOMPARE(progress(dialogue)->value(), 70);
        dialogue->addDetectedPixel(1);
        dialogue->finishDetect();
        QVERIFY(controlsEnabled(dialogue));
        QCOMPARE(report(dialogue), (QStringList{"", "Hot pixel detected: 1", ""}));
        QCOMPARE(progress(dialogue)->value(), 70);
        QCOMPARE(dialogue->windowFlags(), Ready);
        QCOMPARE(dialogue->windowHandle()->flags(), Ready);
    });
}

void TestDetectionDialogue::abortSetsTheProgressBack()
{
    inDialogue([&] {
        start();
        dialogue->updateProgress(70);
        dialogue->abortDetect();
        QVERIFY(isOpenAndModal());
        QVERIFY(controlsEnabled(dialogue));
        QCOMPARE(report(dialogue).first(), QString());
        QCOMPARE(progress(dialogue)->value(), 0);
        QCOMPARE(dialogue->windowFlags(), Ready);
    });
}

void TestDetectionDialogue::addedPixelsAreCounted()
{
    dialogue->addDetectedPixel(1);
    QCOMPARE(report(dialogue).at(1), QString("Hot pixel detected: 1"));
    dialogue->addDetectedPixel(1200);
    QCOMPARE(report(dialogue).at(1), QString("Hot pixel detected: 1201"));
}

void TestDetectionDialogue::eachRunCountsFromZero()
{
    inDialogue([&] {
        for (int run = 0; run < 2; ++run) {
            start();
            QCOMPARE(report(dialogue).at(1), QString("Hot pixel detected: 0"));
            dialogue->addDetectedPixel(1);
            dialogue->addDetectedPixel(1);
            dialogue->finishDetect();
            QCOMPARE(report(dialogue).at(1), QString("Hot pixel detected: 2"));
        }
    });
}

void TestDetectionDialogue::anErrorReplacesTheCount()
{
    dialogue->addDetectedPixel(5);
    dialogue->showError("Not instanced. Please restart detection.");
    QCOMPARE(report(dialogue),
             (QStringList{"", "Hot pixel detected: -", "Not instanced. Please restart detection."}));
}

void TestDetectionDialogue::aMessageIsShownWhole_data()
{
    QTest::addColumn<QString>("message");
    const QString advice = " Please restart detection.";
    for (const char *const text :
         {"Not instanced.", "No images acquired for hot pixel detection.",
          "Image format for hot pixel detection not supported.",
          "Color mode for hot pixel detection not supported.", "Aqcuired images are not the same size.",
          "Matrix has no size", "Matrix<T>::operator() (unsigned posY, unsigned poX) out of range",
          "std::bad_alloc"})
        QTest::newRow(text) << text + advice;
    QTest::newRow("a long story") << QString("Many words. ").repeated(40);
}

void TestDetectionDialogue::aMessageIsShownWhole()
{
    QFETCH(QString, message);
    inDialogue([&] {
        dialogue->resize(dialogue->minimumSize());
        dialogue->showError(message);
        const QLabel *label = messageLabel(dialogue);
        QCOMPARE(label->text(), message);
        QTRY_VERIFY(label->height() >= label->heightForWidth(label->width()));
        QVERIFY(label->rect().width() >= label->minimumSizeHint().width());
        QCOMPARE(dialogue->width(), dialogue->minimumWidth());
        QVERIFY(dialogue->rect().contains(
            QRect(closeButton(dialogue)->mapTo(dialogue, QPoint()), closeButton(dialogue)->size())));
    });
}

void TestDetectionDialogue::theButtonsStayUnderTheMouse()
{
    inDialogue([&] {
        const QSize size = dialogue->size();
        const int place = top(startButton(dialogue));
        const auto stays = [&] {
            QCoreApplication::processEvents();
            return dialogue->size() == size && top(startButton(dialogue)) == place;
        };
        start();
        QVERIFY(stays());
        dialogue->finishDetect();
        QVERIFY(stays());
        dialogue->showError("Color mode for hot pixel detection not supported. Please restart detection.");
        QVERIFY(stays());
        start();
        QVERIFY(stays());
    });
}

void TestDetectionDialogue::staysOpenAndModalFromStartToClose()
{
    inDialogue([&] {
        QVERIFY(isOpenAndModal());
        start();
        QVERIFY(isOpenAndModal());
        QVERIFY(QTest::qWaitForWindowExposed(dialogue));
        QVERIFY(isOpenAndModal());
        dialogue->finishDetect();
        QVERIFY(QTest::qWaitForWindowExposed(dialogue));
        QVERIFY(isOpenAndModal());
        closeButton(dialogue)->click();
        QVERIFY(!dialogue->isVisible());
    });
    QVERIFY(!QApplication::activeModalWidget());
}

void TestDetectionDialogue::isNeverHiddenFromStartToClose()
{
    EventCounter hidden(QEvent::Hide);
    dialogue->installEventFilter(&hidden);
    inDialogue([&] {
        dialogue->windowHandle()->installEventFilter(&hidden);
        const WId window = dialogue->winId();
        start();
        dialogue->finishDetect();
        start();
        dialogue->abortDetect();
        QCOMPARE(hidden.count, 0);
        QCOMPARE(dialogue->winId(), window);
    });
    QVERIFY(hidden.count > 0);
}

void TestDetectionDialogue::runsCanFollowOneAnother()
{
    QSignalSpy started(dialogue, &DetectionDialogue::startDetect);
    inDialogue([&] {
        for (int run = 1; run <= 5; ++run) {
            start();
            QCOMPARE(started.count(), run);
            QVERIFY(isOpenAndModal());
            if (run % 2)
                dialogue->finishDetect();
            else
                dialogue->abortDetect();
            QVERIFY(isOpenAndModal());
            QVERIFY(controlsEnabled(dialogue));
        }
    });
}

void TestDetectionDialogue::otherWindowsGetNoClicksFromStartToClose()
{
    QPushButton button(parent.get());
    button.resize(100, 50);
    button.show();
    QSignalSpy clicked(&button, &QPushButton::clicked);
    QWindow *window = parent->windowHandle();
    const QPoint inButton(50, 25);
    QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, inButton);
    QCOMPARE(clicked.count(), 1);
    inDialogue([&] {
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, inButton);
        start();
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, inButton);
        dialogue->finishDetect();
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, inButton);
        QCOMPARE(clicked.count(), 1);
    });
    QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, inButton);
    QCOMPARE(clicked.count(), 2);
}

void TestDetectionDialogue::escapeClosesWhileCapturing()
{
    QSignalSpy rejected(dialogue, &QDialog::rejected);
    QSignalSpy finished(dialogue, &QDialog::finished);
    inDialogue([&] {
        start();
        QVERIFY(QTest::qWaitForWindowExposed(dialogue));
        QTest::keyClick(dialogue->windowHandle(), Qt::Key_Escape);
        QVERIFY(!dialogue->isVisible());
        QCOMPARE(rejected.count(), 1);
        QCOMPARE(finished.count(), 1);
    });
}

void TestDetectionDialogue::escapeClosesWhenReady()
{
    inDialogue([&] {
        QTest::keyClick(dialogue->windowHandle(), Qt::Key_Escape);
        QVERIFY(!dialogue->isVisible());
    });
}

void TestDetectionDialogue::theWindowManagerClosesWhileCapturing()
{
    QSignalSpy rejected(dialogue, &QDialog::rejected);
    inDialogue([&] {
        start();
        QVERIFY(QTest::qWaitForWindowExposed(dialogue));
        dialogue->windowHandle()->close();
        QVERIFY(!dialogue->isVisible());
        QCOMPARE(rejected.count(), 1);
    });
}

void TestDetectionDialogue::theReceiverOfFinishedMayAbortTheRun()
{
    connect(dialogue, &QDialog::finished, dialogue, &DetectionDialogue::abortDetect);
    inDialogue([&] {
        start();
        dialogue->updateProgress(50);
        QTest::keyClick(dialogue, Qt::Key_Escape);
        QVERIFY(!dialogue->isVisible());
        QCOMPARE(progress(dialogue)->value(), 0);
    });
    QVERIFY(!dialogue->isVisible());
    QVERIFY(!QApplication::activeModalWidget());
}

void TestDetectionDialogue::aClosedDialogueDoesNotComeBack()
{
    inDialogue([&] {
        start();
        dialogue->reject();
        dialogue->finishDetect();
        QVERIFY(!dialogue->isVisible());
    });
    dialogue->abortDetect();
    dialogue->finishDetect();
    dialogue->updateProgress(10);
    dialogue->showError("late");
    QCoreApplication::processEvents();
    QVERIFY(!dialogue->isVisible());
    QVERIFY(!QApplication::activeModalWidget());
}

void TestDetectionDialogue::aClosedDialogueCountsNoMore()
{
    inDialogue([&] {
        start();
        dialogue->addDetectedPixel(1);
    });
    dialogue->addDetectedPixel(1);
    QCOMPARE(report(dialogue).at(1), QString("Hot pixel detected: 1"));
}

void TestDetectionDialogue::aDialogueThatWasNeverShownStaysHidden()
{
    dialogue->finishDetect();
    dialogue->abortDetect();
    QVERIFY(!dialogue->isVisible());
}

void TestDetectionDialogue::execReturnsTheResult()
{
    QCOMPARE(inDialogue([] {}), int(QDialog::Rejected));
    QTimer::singleShot(0, dialogue, [&] { dialogue->done(7); });
    QCOMPARE(dialogue->exec(), 7);
}

void TestDetectionDialogue::execEndsWhenTheDialogueIsDestroyed()
{
    const int result = inDialogue([&] {
        start();
        delete dialogue;
    });
    QCOMPARE(result, int(QDialog::Rejected));
    QVERIFY(!dialogue);
    QVERIFY(!QApplication::activeModalWidget());
}

void TestDetectionDialogue::execEndsWhenItsParentIsDestroyed()
{
    const int result = inDialogue([&] { parent.reset(); });
    QCOMPARE(result, int(QDialog::Rejected));
    QVERIFY(!dialogue);
}

void TestDetectionDialogue::canBeOpenedAgainAfterItWasClosed()
{
    for (int round = 0; round < 3; ++round) {
        inDialogue([&] {
            QVERIFY(isOpenAndModal());
            start();
            dialogue->addDetectedPixel(1);
            QCOMPARE(report(dialogue).at(1), QString("Hot pixel detected: 1"));
            dialogue->finishDetect();
            QVERIFY(isOpenAndModal());
        });
    }
}

void TestDetectionDialogue::canBeOpenedAgainAfterItWasClosedWhileCapturing()
{
    QSignalSpy started(dialogue, &DetectionDialogue::startDetect);
    for (int run = 1; run <= 2; ++run) {
        inDialogue([&] {
            QVERIFY(controlsEnabled(dialogue));
            QCOMPARE(report(dialogue).first(), QString());
            QCOMPARE(dialogue->windowFlags(), Ready);
            QCOMPARE(dialogue->windowHandle()->flags(), Ready);
            start();
            QCOMPARE(started.count(), run);
            QVERIFY(controlsDisabled(dialogue));
            dialogue->reject();
            QVERIFY(!dialogue->isVisible());
        });
    }
}

void TestDetectionDialogue::isReadyWhenFinishedIsEmitted()
{
    bool readyThen = false;
    connect(dialogue, &QDialog::finished, this, [&] {
        readyThen = controlsEnabled(dialogue) && dialogue->windowFlags() == Ready && !dialogue->isVisible();
    });
    inDialogue([&] { start(); });
    QVERIFY(readyThen);
}

void TestDetectionDialogue::theReceiverOfFinishedMayDeleteTheDialogue()
{
    connect(dialogue, &QDialog::finished, this, [&] { delete dialogue; });
    inDialogue([&] { start(); });
    QVERIFY(!dialogue);
}

void TestDetectionDialogue::theWindowStaysWhereItIs()
{
    inDialogue([&] {
        dialogue->move(130, 90);
        dialogue->resize(dialogue->size() + QSize(40, 30));
        QVERIFY(waitForWindowManager());
        const QRect outside = dialogue->frameGeometry();
        const QRect inside = dialogue->geometry();
        start();
        QVERIFY(waitForWindowManager());
        QCOMPARE(dialogue->frameGeometry(), outside);
        QCOMPARE(dialogue->geometry(), inside);
        dialogue->finishDetect();
        QVERIFY(waitForWindowManager());
        QCOMPARE(dialogue->frameGeometry(), outside);
        QCOMPARE(dialogue->geometry(), inside);
    });
}

void TestDetectionDialogue::theWindowStaysActive()
{
    inDialogue([&] {
        dialogue->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dialogue));
        start();
        QVERIFY(waitForWindowManager());
        QVERIFY(dialogue->isActiveWindow());
        dialogue->finishDetect();
        QVERIFY(waitForWindowManager());
        QVERIFY(dialogue->isActiveWindow());
    });
}

void TestDetectionDialogue::theFocusReturnsAfterARun()
{
    inDialogue([&] {
        for (QWidget *widget : {static_cast<QWidget *>(startButton(dialogue)),
                                static_cast<QWidget *>(dialogue->findChild<QSpinBox *>())}) {
            widget->setFocus();
            start();
            dialogue->finishDetect();
            QCOMPARE(dialogue->focusWidget(), widget);
        }
    });
}

void TestDetectionDialogue::openingAgainAndAgainLeaksNothing()
{
    delete dialogue;
    const int widgets = QApplication::allWidgets().size();
    const int windows = QGuiApplication::allWindows().size();
    for (int round = 0; round < 30; ++round) {
        dialogue = new DetectionDialogue(parent.get());
        inDialogue([&] {
            start();
            if (round % 2)
                dialogue->finishDetect();
        });
        delete dialogue;
        QCOMPARE(QApplication::allWidgets().size(), widgets);
        QCOMPARE(QGuiApplication::allWindows().size(), windows);
    }
    QVERIFY(parent->findChildren<QObject *>().isEmpty());
}

QTEST_MAIN(TestDetectionDialogue)
#include "tst_detectiondialogue.moc"
