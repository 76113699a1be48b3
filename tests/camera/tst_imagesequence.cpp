// SPDX-License-Identifier: MIT
// The ring of image buffers: what it asks of the library, and that nothing is left behind.

#include "imagesequence.h"
#include "testcamera.h"

#include <QtTest>

#include <stdexcept>

class TestImageSequence : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void setupAllocatesAndAddsOneBufferAfterTheOther();
    void setupAgainClearsFirst();
    void clearTakesBuffersOutOfTheSequenceBeforeFreeingThem();
    void clearOfAnEmptySequenceCallsNothing();
    void destructionClears();
    void aFailingAllocationIsReported();
    void aBufferThatCannotJoinIsFreed();
    void imageInfoIsZeroByDefault();

private:
    kelvo::Handle handle = 0;
    const ImageInfo info{64, 48, 8};
};

void TestImageSequence::init()
{
    testcamera::resetTo(testcamera::small());
    handle = testcamera::Device | 0x8000;
    QCOMPARE(vx_InitCamera(&handle, nullptr), 0);
    kelvosim::clearLog();
}

void TestImageSequence::cleanup()
{
    QCOMPARE(kelvosim::allocatedBuffers(), 0);
    vx_ExitCamera(handle);
}

void TestImageSequence::setupAllocatesAndAddsOneBufferAfterTheOther()
{
    ImageSequence sequence;
    sequence.setup(handle, 2, info);
    QCOMPARE(testcamera::calls(),
             (QStringList{"vx_AllocImageMem", "vx_AddToSequence", "vx_AllocImageMem", "vx_AddToSequence"}));
    QCOMPARE(kelvosim::allocatedBuffers(), 2);
    QCOMPARE(kelvosim::log().front().numbers, (std::vector<double>{64, 48, 8}));
}

void TestImageSequence::setupAgainClearsFirst()
{
    ImageSequence sequence;
    sequence.setup(handle, 3, info);
    kelvosim::clearLog();
    sequence.setup(handle, 1, info);
    QCOMPARE(kelvosim::allocatedBuffers(), 1);
    QCOMPARE(testcamera::calls().first(), QString("vx_ClearSequence"));
}

void TestImageSequence::clearTakesBuffersOutOfTheSequenceBeforeFreeingThem()
{
    ImageSequence sequence;
    sequence.setup(handle, 2, info);
    kelvosim::clearLog();
    sequence.clear();
    QCOMPARE(testcamera::calls(), (QStringList{"vx_ClearSequence", "vx_FreeImageMem", "vx_FreeImageMem"}));
}

void TestImageSequence::clearOfAnEmptySequenceCallsNothing()
{
    ImageSequence sequence;
    sequence.clear();
    QVERIFY(testcamera::calls().isEmpty());
}

void TestImageSequence::destructionClears()
{
    {
        ImageSequence sequence;
        sequence.setup(handle, 3, info);
        QCOMPARE(kelvosim::allocatedBuffers(), 3);
    }
    QCOMPARE(kelvosim::allocatedBuffers(), 0);
}

void TestImageSequence::aFailingAllocationIsReported()
{
    kelvosim::failCall("vx_AllocImageMem", 2, 1, "no memory");
    ImageSequence sequence;
    try {
        sequence.setup(handle, 3, info);
        QFAIL("should throw");
    } catch (const std::runtime_error &failure) {
        QCOMPARE(failure.what(), "Can't allocate image memory.");
    }
    QCOMPARE(kelvosim::allocatedBuffers(), 1);
}

void TestImageSequence::aBufferThatCannotJoinIsFreed()
{
    kelvosim::failCall("vx_AddToSequence", 1, 1, "no place");
    ImageSequence sequence;
    try {
        sequence.setup(handle, 3, info);
        QFAIL("should throw");
    } catch (const std::runtime_error &failure) {
        QCOMPARE(failure.what(), "Can't add buffer to sequence.");
    }
    QCOMPARE(testcamera::calls(), (QStringList{"vx_AllocImageMem", "vx_AddToSequence", "vx_FreeImageMem"}));
}

void TestImageSequence::imageInfoIsZeroByDefault()
{
    const ImageInfo nothing;
    QCOMPARE(nothing.width, 0u);
    QCOMPARE(nothing.height, 0u);
    QCOMPARE(nothing.bitsPerPixel, 0u);
}

QTEST_GUILESS_MAIN(TestImageSequence)
#include "tst_imagesequence.moc"
