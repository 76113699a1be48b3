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
    void impossibleSizesAreNotAskedFor_data();
    void impossibleSizesAreNotAskedFor();
    void memoryNowhereCountsAsNone();
    void onlyItsOwnMemoryIsHeld();
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

void TestImageSequence::impossibleSizesAreNotAskedFor_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("bits");
    QTest::newRow("nothing") << 0 << 0 << 8;
    QTest::newRow("no column") << 0 << 48 << 8;
    QTest::newRow("no row") << 64 << 0 << 8;
    QTest::newRow("negative") << -64 << -48 << 8;
    QTest::newRow("negative height") << 64 << -1 << 8;
    QTest::newRow("largest") << INT_MAX << INT_MAX << 32;
    QTest::newRow("smallest") << INT_MIN << INT_MIN << 32;
    QTest::newRow("one row") << INT_MAX << 1 << 8;
    QTest::newRow("one column, padded") << 1 << 89478486 << 8;
    QTest::newRow("a gibibyte and a bit") << 16384 << 21846 << 8;
    QTest::newRow("a gibibyte and a bit of colour") << 16384 << 5462 << 32;
}

void TestImageSequence::impossibleSizesAreNotAskedFor()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, bits);
    ImageSequence sequence;
    try {
        sequence.setup(handle, 3,
                       ImageInfo(std::uint32_t(width), std::uint32_t(height), std::uint32_t(bits)));
        QFAIL("there cannot be such memory");
    } catch (const std::runtime_error &failure) {
        QCOMPARE(failure.what(), "Can't allocate image memory.");
    }
    QVERIFY(testcamera::calls().isEmpty());
}

void TestImageSequence::memoryNowhereCountsAsNone()
{
    kelvosim::failCall("vx_AllocImageMem", 1, 20, "");
    kelvosim::overrideResult("vx_AllocImageMem", 0);
    ImageSequence sequence;
    try {
        sequence.setup(handle, 3, info);
        QFAIL("a null pointer is no memory");
    } catch (const std::runtime_error &failure) {
        QCOMPARE(failure.what(), "Can't allocate image memory.");
    }
    QCOMPARE(testcamera::calls(), QStringList{"vx_AllocImageMem"});
}

void TestImageSequence::onlyItsOwnMemoryIsHeld()
{
    char own[64 * 48] = {};
    char foreign = 0;
    ImageSequence sequence;
    QVERIFY(!sequence.holds(nullptr));
    kelvosim::overridePointer("vx_AllocImageMem", own);
    kelvosim::overrideResult("vx_AddToSequence", 0);
    sequence.setup(handle, 1, info);
    QVERIFY(sequence.holds(own));
    QVERIFY(!sequence.holds(own + 1));
    QVERIFY(!sequence.holds(&foreign));
    QVERIFY(!sequence.holds(nullptr));
    sequence.clear();
    QVERIFY(!sequence.holds(own));
    kelvosim::reset(); // of the memory that the library allocated and did not tell of
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
