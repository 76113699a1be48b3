// SPDX-License-Identifier: MIT
// A camera that delivers faster than it is looked at: frames never pile up, everything else gets its turn.

#include "camera.h"
#include "testcamera.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QtTest>

class TestCameraLoad : public QObject
{
    Q_OBJECT

private slots:
    void aSlowReceiverStillLetsTimersAndEventsThrough();
    void stoppingIsPromptUnderLoad();
};

/// A camera at 500 frames a second.
static void resetToFastCamera()
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.freeRunning = true;
    testcamera::resetTo(spec);
    kelvosim::setLogging(false);
    kelvosim::overrideFrameRate(testcamera::Serial, 500.0);
}

void TestCameraLoad::aSlowReceiverStillLetsTimersAndEventsThrough()
{
    resetToFastCamera();
    Camera camera;
    camera.open(testcamera::Device);
    int images = 0;
    connect(&camera, &Camera::newImage, [&](QImage &image) {
        if (!image.isNull())
            ++images;
        QThread::msleep(20); // ten times as long as the camera needs for a frame
    });
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(20);
    QTRY_VERIFY_WITH_TIMEOUT(images >= 50, 20000);
    // Between two frames the loop has its turn, so the timer keeps up with the images.
    QVERIFY2(ticks >= images / 2, qPrintable(QString("%1 ticks, %2 images").arg(ticks).arg(images)));

    const int before = camera.failedCount();
    kelvosim::failFrames(testcamera::Serial, 1);
    const int imagesBefore = images;
    QTRY_VERIFY(camera.failedCount() > before);
    QVERIFY2(images - imagesBefore <= 5, "other events of the camera wait for a few frames at most");

    // Nothing has piled up: after the camera stopped, at most one frame and one further one follow.
    vx_StopLiveVideo(camera.handle(), 1);
    const int atStop = camera.frameCount();
    const int failedAtStop = camera.failedCount();
    kelvosim::signalEvent(testcamera::Serial, 8); // waited for after the last frame, so delivered after it
    QTRY_COMPARE(camera.failedCount(), failedAtStop + 1);
    testcamera::turnEventLoop();
    QVERIFY(camera.frameCount() - atStop <= 2);
    QVERIFY(kelvosim::completedFrames(testcamera::Serial) > std::uint64_t(camera.frameCount()) * 3);
}

void TestCameraLoad::stoppingIsPromptUnderLoad()
{
    resetToFastCamera();
    Camera camera;
    for (int round = 0; round < 20; ++round) {
        camera.open(testcamera::Device);
        QTRY_VERIFY(camera.frameCount() > 3);
        QElapsedTimer timer;
        timer.start();
        camera.close();
        QVERIFY2(timer.elapsed() < 400, "the event thread had to be terminated");
        QVERIFY(testcamera::nothingHeld());
    }
}

QTEST_GUILESS_MAIN(TestCameraLoad)
#include "tst_cameraload.moc"
