// SPDX-License-Identifier: MIT
// A detection run in the real window: ten dark frames, the light test, failures, abortion, many runs.

#include "windowfixture.h"

#include "detectiondialogue.h"
#include "displaywidget.h"
#include "parameterwidget.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

namespace {

constexpr std::uint8_t Dark = 4;

/// A dark frame with hot pixels that read 200.
std::vector<std::uint8_t> darkFrame(const std::vector<QPoint> &hot)
{
    std::vector<std::uint8_t> frame = WindowFixture::flatFrame(Dark);
    for (const QPoint &pixel : hot)
        frame[static_cast<std::size_t>(pixel.y() * WindowFixture::spec().width + pixel.x())] = 200;
    return frame;
}

/// A dark frame whose first `count` bytes read `value`.
std::vector<std::uint8_t> leakingFrame(int count, std::uint8_t value)
{
    std::vector<std::uint8_t> frame = WindowFixture::flatFrame(Dark);
    std::fill_n(frame.begin(), count, value);
    return frame;
}

DetectionDialogue *openDialogue()
{
    for (QWidget *top : QApplication::topLevelWidgets()) {
        auto *dialogue = qobject_cast<DetectionDialogue *>(top);
        if (dialogue && dialogue->isVisible())
            return dialogue;
    }
    return nullptr;
}

bool hasLabel(const QWidget *dialogue, const QString &text)
{
    for (const QLabel *label : dialogue->findChildren<QLabel *>()) {
        if (label->text() == text)
            return true;
    }
    return false;
}

} // namespace

class TestDetectionRun : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { bench.window.reset(); }

    void tenFramesThenTheEleventhStartsTheRun();
    void foundPixelsBecomeUserEntriesAndAreCounted();
    void aFactoryEntryIsNotAddedAgainAndDoesNotCount();
    void clearingTheOldListKeepsFactoryEntries();
    void withoutClearingTheOldListStays();
    void theThresholdOfTheDialogueCounts();
    void fiveThousandAndOneBrightBytesFailTheRun();
    void fiveThousandBrightBytesPass();
    void anyNumberOfBytesOfValueOneHundredPasses();
    void aFailedRunIsReportedAndTheNextStartsClean();
    void aNullImageIsAFrameAndTheNextRunStartsClean();
    void closingTheDialogueWhileCapturingDropsTheRun();
    void aClosedDialogueNoLongerCounts();
    void runsCanFollowOneAnother();
    void openingAgainAndAgainLeaksNothing();
    void closingTheCameraEndsTheRun();
    void closingTheCameraWithTenFramesDropsThem();
    void theDialogueStaysModalFromStartToClose();
    void framesAreDeepCopies();
    void detectionOfA32BitCameraIsRefused();

private:
    /// Opens the dialogue and runs `visit` in it; the dialogue is closed afterwards if it is still open.
    void inDialogue(const std::function<void(DetectionDialogue *)> &visit)
    {
        bool seen = false;
        WindowDriver::whenModal([&](QWidget *modal) {
            auto *dialogue = qobject_cast<DetectionDialogue *>(modal);
            QVERIFY(dialogue);
            seen = true;
            const QPointer<DetectionDialogue> open = dialogue;
            visit(dialogue);
            if (open && open->isVisible())
                open->reject();
        });
        bench.driver->trigger("detectAction");
        QVERIFY(seen);
    }

    static void start(DetectionDialogue *dialogue)
    {
        dialogue->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
    }

    static bool isIdle(const DetectionDialogue *dialogue)
    {
        return dialogue->findChild<QDialogButtonBox *>()->isEnabled();
    }

    static int progress(const DetectionDialogue *dialogue)
    {
        return dialogue->findChild<QProgressBar *>()->value();
    }

    /// Pushes frames one by one, each handled before the next.
    void feed(int count, const std::vector<std::uint8_t> &frame)
    {
        for (int i = 0; i < count; ++i) {
            const std::uint64_t shown = frames;
            QVERIFY(bench.push(serial, frame));
            QVERIFY(
                WindowDriver::waitFor([&] { return kelvosim::lockedBuffers() == 0 && handled() > shown; }));
            frames = handled();
        }
    }

    std::uint64_t handled() const
    {
        std::uint64_t count = 0;
        for (const kelvosim::Call &call : kelvosim::log())
            count += call.function == "vx_UnlockSeqBuf" && call.returned;
        return count;
    }

    WindowFixture bench;
    QString serial;
    std::uint64_t frames = 0;
};

void TestDetectionRun::init()
{
    serial = bench.mono;
    bench.openOnFreshBench(serial);
    QTRY_VERIFY(bench.enabled("detectAction"));
    frames = handled();
}

void TestDetectionRun::tenFramesThenTheEleventhStartsTheRun()
{
    QSignalSpy finished(bench.window.get(), &MainWindow::detectionFinished);
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        for (int frame = 1; frame <= 10; ++frame) {
            feed(1, darkFrame({{40, 41}}));
            QCOMPARE(progress(dialogue), frame * 10);
            QVERIFY(!isIdle(dialogue));
        }
        QCOMPARE(bench.rows(), 2);
        QCOMPARE(finished.count(), 0);
        // The eleventh starts the run and is not used itself: its hot pixel is not found.
        feed(1, darkFrame({{70, 70}}));
        QCOMPARE(finished.count(), 1);
        QVERIFY(isIdle(dialogue));
        QCOMPARE(bench.rows(), 3);
        QCOMPARE(bench.cell(2, 0), QString("40"));
        QCOMPARE(progress(dialogue), 100);
    });
}

void TestDetectionRun::foundPixelsBecomeUserEntriesAndAreCounted()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        QVERIFY(hasLabel(dialogue, "Please Wait..."));
        feed(11, darkFrame({{40, 41}, {60, 61}}));
        QVERIFY(hasLabel(dialogue, "Hot pixel detected: 2"));
        QVERIFY(!hasLabel(dialogue, "Please Wait..."));
    });
    QCOMPARE(bench.rows(), 4);
    QCOMPARE(bench.cell(3, 2), QString("user"));
}

void TestDetectionRun::aFactoryEntryIsNotAddedAgainAndDoesNotCount()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(11, darkFrame({{10, 10}, {60, 61}}));
        QVERIFY(hasLabel(dialogue, "Hot pixel detected: 1"));
    });
    QCOMPARE(bench.rows(), 3);
}

void TestDetectionRun::clearingTheOldListKeepsFactoryEntries()
{
    bench.moveTo(QPoint(70, 70));
    bench.invoke("addNewBadpixel");
    QCOMPARE(bench.rows(), 3);
    inDialogue([&](DetectionDialogue *dialogue) {
        dialogue->findChild<QCheckBox *>()->setChecked(true);
        start(dialogue);
        QCOMPARE(bench.rows(), 2);
    });
}

void TestDetectionRun::withoutClearingTheOldListStays()
{
    bench.moveTo(QPoint(70, 70));
    bench.invoke("addNewBadpixel");
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(11, darkFrame({{70, 70}, {40, 41}}));
        QVERIFY(hasLabel(dialogue, "Hot pixel detected: 1"));
    });
    QCOMPARE(bench.rows(), 4);
}

void TestDetectionRun::theThresholdOfTheDialogueCounts()
{
    std::vector<std::uint8_t> frame = WindowFixture::flatFrame(Dark);
    frame[50 * 96 + 20] = Dark + 30;
    for (const int threshold : {40, 20}) {
        inDialogue([&](DetectionDialogue *dialogue) {
            dialogue->findChild<QSpinBox *>()->setValue(threshold);
            start(dialogue);
            feed(11, frame);
        });
        QCOMPARE(bench.rows(), threshold == 40 ? 2 : 3);
    }
}

void TestDetectionRun::fiveThousandAndOneBrightBytesFailTheRun()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(3, darkFrame({}));
        QString text;
        QString title;
        QTimer boxes; // the dialogue is modal already, so the box is looked for from here on
        connect(&boxes, &QTimer::timeout, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                text = box->text();
                title = box->windowTitle();
                QCOMPARE(box->icon(), QMessageBox::Critical);
                for (int i = 0; i < 12; ++i) { // frames go on arriving, and none is captured
                    QImage frame(96, 80, QImage::Format_Indexed8);
                    frame.fill(Dark);
                    bench.invoke("newImage", Q_ARG(QImage &, frame));
                }
                QCOMPARE(progress(dialogue), 40);
                box->button(QMessageBox::Ok)->click();
            }
        });
        boxes.start(5);
        QVERIFY(bench.push(serial, leakingFrame(5001, 101)));
        QTRY_VERIFY(isIdle(dialogue));
        QCOMPARE(title, QString("Detection failed"));
        QCOMPARE(text, QString("Too many hot pixel have been found.\nPlease make sure that the sensor is "
                               "completely obscured and the threshold is not too low."));
        QCOMPARE(progress(dialogue), 0);
        frames = handled();
        feed(12, darkFrame({{40, 41}})); // the run is over: these are not captured
    });
    QCOMPARE(bench.rows(), 2);
}

void TestDetectionRun::fiveThousandBrightBytesPass()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(2, leakingFrame(5000, 255));
        QCOMPARE(progress(dialogue), 20);
    });
}

void TestDetectionRun::anyNumberOfBytesOfValueOneHundredPasses()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(2, leakingFrame(96 * 80, 100));
        QCOMPARE(progress(dialogue), 20);
    });
}

void TestDetectionRun::aFailedRunIsReportedAndTheNextStartsClean()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(9, darkFrame({{40, 41}}));
        QImage strange(12, 12, QImage::Format_Indexed8);
        strange.fill(Dark);
        bench.invoke("newImage", Q_ARG(QImage &, strange));
        feed(1, darkFrame({{40, 41}}));
        QVERIFY(isIdle(dialogue));
        QVERIFY(hasLabel(dialogue, "Hot pixel detected: -"));
        QVERIFY(hasLabel(dialogue, "Aqcuired images are not the same size. Please restart detection."));
        QCOMPARE(bench.driver->message(), QString("Aqcuired images are not the same size."));
        QCOMPARE(bench.rows(), 2);
        start(dialogue);
        feed(11, darkFrame({{40, 41}}));
        QVERIFY(hasLabel(dialogue, "Hot pixel detected: 1"));
    });
    QCOMPARE(bench.rows(), 3);
}

void TestDetectionRun::aNullImageIsAFrameAndTheNextRunStartsClean()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        QImage none;
        bench.invoke("newImage", Q_ARG(QImage &, none));
        QCOMPARE(progress(dialogue), 10);
        feed(10, darkFrame({{40, 41}}));
        QVERIFY(isIdle(dialogue));
        QCOMPARE(bench.driver->message(), QString("Image format for hot pixel detection not supported."));
        start(dialogue);
        feed(11, darkFrame({{40, 41}}));
        QVERIFY(hasLabel(dialogue, "Hot pixel detected: 1"));
    });
}

void TestDetectionRun::closingTheDialogueWhileCapturingDropsTheRun()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(8, darkFrame({{40, 41}}));
        QTest::keyClick(dialogue, Qt::Key_Escape);
        QVERIFY(!dialogue->isVisible());
    });
    feed(5, darkFrame({{40, 41}}));
    QCOMPARE(bench.rows(), 2);
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(1, darkFrame({{40, 41}}));
        QCOMPARE(progress(dialogue), 10);
        feed(10, darkFrame({{40, 41}}));
        QVERIFY(isIdle(dialogue));
    });
    QCOMPARE(bench.rows(), 3);
}

void TestDetectionRun::aClosedDialogueNoLongerCounts()
{
    QPointer<DetectionDialogue> closed;
    inDialogue([&](DetectionDialogue *dialogue) {
        closed = dialogue;
        start(dialogue);
        feed(3, darkFrame({}));
    });
    feed(12, darkFrame({{40, 41}}));
    QVERIFY(!closed || !closed->isVisible());
    QVERIFY(!openDialogue());
    bench.moveTo(QPoint(70, 70));
    bench.invoke("addNewBadpixel"); // announces a pixel to nobody
    QVERIFY(!closed);
}

void TestDetectionRun::runsCanFollowOneAnother()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        for (int run = 0; run < 4; ++run) {
            start(dialogue);
            QVERIFY(hasLabel(dialogue, "Hot pixel detected: 0"));
            feed(11, darkFrame({{40 + run, 41}}));
            QVERIFY(isIdle(dialogue));
            QVERIFY(dialogue->isVisible());
            QVERIFY(hasLabel(dialogue, "Hot pixel detected: 1"));
        }
    });
    QCOMPARE(bench.rows(), 6);
}

void TestDetectionRun::openingAgainAndAgainLeaksNothing()
{
    for (int round = 0; round < 30; ++round) {
        inDialogue([&](DetectionDialogue *dialogue) {
            start(dialogue);
            feed(1, darkFrame({}));
        });
        QVERIFY(bench.window->findChildren<DetectionDialogue *>().isEmpty());
    }
}

void TestDetectionRun::closingTheCameraEndsTheRun()
{
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(4, darkFrame({{40, 41}}));
        bench.invoke("closeCamera");
        QVERIFY(isIdle(dialogue));
        QCOMPARE(progress(dialogue), 0);
        bench.invoke("openCamera");
        frames = handled();
        start(dialogue);
        feed(11, darkFrame({{50, 51}}));
        QVERIFY(isIdle(dialogue));
    });
    QCOMPARE(bench.rows(), 3);
    QCOMPARE(bench.cell(2, 0), QString("50"));
}

void TestDetectionRun::closingTheCameraWithTenFramesDropsThem()
{
    QSignalSpy finished(bench.window.get(), &MainWindow::detectionFinished);
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(10, darkFrame({{40, 41}}));
        bench.invoke("closeCamera");
        QVERIFY(isIdle(dialogue));
        QCOMPARE(progress(dialogue), 0);
        QVERIFY(hasLabel(dialogue, "Hot pixel detected: 0"));
    });
    QCOMPARE(finished.count(), 0);
}

void TestDetectionRun::theDialogueStaysModalFromStartToClose()
{
    bool ended = false;
    WindowDriver::whenModal([&](QWidget *modal) {
        auto *dialogue = qobject_cast<DetectionDialogue *>(modal);
        start(dialogue);
        QVERIFY(dialogue->isVisible());
        QVERIFY(dialogue->isModal());
        QCOMPARE(QApplication::activeModalWidget(), static_cast<QWidget *>(dialogue));
        feed(11, darkFrame({}));
        QVERIFY(dialogue->isVisible());
        QCOMPARE(QApplication::activeModalWidget(), static_cast<QWidget *>(dialogue));
        QVERIFY(!ended);
        dialogue->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Close)->click();
    });
    bench.driver->trigger("detectAction");
    ended = true;
    QVERIFY(!QApplication::activeModalWidget());
}

void TestDetectionRun::framesAreDeepCopies()
{
    // Three buffers serve ten frames: were they shared, the last frames would overwrite the first.
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(5, darkFrame({{40, 41}}));
        feed(6, darkFrame({}));
        QVERIFY(isIdle(dialogue));
    });
    // Half of the frames read 200: the mean is far above the threshold.
    QCOMPARE(bench.rows(), 3);
}

void TestDetectionRun::detectionOfA32BitCameraIsRefused()
{
    kelvosim::CameraSpec colour = WindowFixture::spec();
    colour.serial = "KVCOLOUR";
    colour.kind = kelvosim::SensorKind::Colour32;
    kelvosim::addCamera(colour);
    QTRY_VERIFY(bench.driver->selectCamera("KVCOLOUR"));
    bench.driver->trigger("openCameraAction");
    serial = "KVCOLOUR";
    frames = handled();
    inDialogue([&](DetectionDialogue *dialogue) {
        start(dialogue);
        feed(11, std::vector<std::uint8_t>(96 * 80 * 4, 0));
        QVERIFY(isIdle(dialogue));
        QVERIFY(hasLabel(dialogue,
                         "Image format for hot pixel detection not supported. Please restart detection."));
    });
    QCOMPARE(bench.rows(), 2);
}

QTEST_MAIN(TestDetectionRun)
#include "tst_detectionrun.moc"
