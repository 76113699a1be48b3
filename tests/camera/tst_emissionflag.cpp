// SPDX-License-Identifier: MIT
// What an exception of an image receiver leaves behind. A program of its own: the state is the process's.

#include "camera.h"
#include "testcamera.h"

#include <QSignalSpy>
#include <QtTest>

#include <stdexcept>

class TestEmissionFlag : public QObject
{
    Q_OBJECT

private slots:
    void aReceiversExceptionLeavesLockAndEmissionAsTheyWere();
};

void TestEmissionFlag::aReceiversExceptionLeavesLockAndEmissionAsTheyWere()
{
    testcamera::resetTo(testcamera::small());
    Camera camera;
    camera.open(testcamera::Device);
    QSignalSpy errors(&camera, &Camera::displayError);
    int images = 0;
    connect(&camera, &Camera::newImage, [&](QImage &image) {
        if (image.isNull())
            return;
        ++images;
        throw std::runtime_error("receiver");
    });
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(errors.count(), 1);
    QCOMPARE(errors.first().at(0).toString(), QString("receiver"));
    QCOMPARE(errors.first().at(1).toInt(), 2000);
    QCOMPARE(kelvosim::lockedBuffers(), 1);

    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(camera.frameCount(), 2);
    QCOMPARE(images, 1); // no further image is emitted
    QCOMPARE(kelvosim::lockedBuffers(), 1);
    camera.close();
    QVERIFY(testcamera::nothingHeld());
}

QTEST_GUILESS_MAIN(TestEmissionFlag)
#include "tst_emissionflag.moc"
