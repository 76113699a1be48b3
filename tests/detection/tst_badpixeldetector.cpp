// SPDX-License-Identifier: MIT
// Tests of how frames are walked and averaged.
#include "badpixeldetector.h"

#include "pixeliterators.h"
#include "testframes.h"

#include <QtTest>

using testframes::Mono;
using testframes::RawBayer;

namespace {

using Sums = Matrix<unsigned int>;

class Collector final : public Sums::Iterator
{
public:
    void operator()(unsigned int &value) override { values.push_back(value); }

    std::vector<unsigned> values;
};

class PlaceCollector final : public BadpixelDetector::PixelPosIterator
{
public:
    void operator()(unsigned int &, int x, int y) override { places.emplace_back(x, y); }

    std::vector<QPoint> places;
};

class PixelCollector final : public BadpixelDetector::PixelValIterator
{
public:
    void operator()(unsigned int &, const uchar &pixel) override { pixels.push_back(pixel); }

    std::vector<uchar> pixels;
};

class AddressCollector final : public BadpixelDetector::PixelValIterator
{
public:
    void operator()(unsigned int &, const uchar &pixel) override { addresses.push_back(&pixel); }

    std::vector<const uchar *> addresses;
};

/// Averages, and hands out what it averaged.
class Averager final : public BadpixelDetector
{
public:
    void detect(BadpixelListModel *) override { accumulate(); }

    void average(int mode, const QVector<QImage> &frames)
    {
        setImages(mode, &frames);
        detect(nullptr);
    }

    std::vector<unsigned> mono() const { return valuesOf(monoMatrix.get()); }
    std::vector<unsigned> plane(int number) const { return valuesOf(planeMatrix[number].get()); }
    int initialMode() const { return colorMode; }

private:
    static std::vector<unsigned> valuesOf(Sums *matrix)
    {
        Collector collector;
        if (matrix)
            matrix->forEach(collector);
        return collector.values;
    }
};

/// The averages of mono frames by the public visitors, one frame after the other, each element by virtual
/// calls.
std::vector<unsigned> visitedAverages(const QVector<QImage> &frames)
{
    const PlaneLayout layout{0, 0, 1, 1};
    const QSize size = frames.first().size();
    Sums matrix(static_cast<unsigned>(size.height()), static_cast<unsigned>(size.width()));
    BadpixelDetector::CopyIterator copy;
    BadpixelDetector::SumIterator sum;
    BadpixelDetector::PixelValIterator *receiver = &copy;
    for (const QImage &frame : frames) {
        BadpixelDetector::ImageIterator walk(frame, layout, receiver);
        matrix.forEach(static_cast<Sums::Iterator &>(walk));
        receiver = &sum;
    }
    BadpixelDetector::DivIterator average(static_cast<unsigned>(frames.size()));
    matrix.forEach(static_cast<Sums::Iterator &>(average));
    Collector collector;
    matrix.forEach(collector);
    return collector.values;
}

/// The text that averaging fails with, "" when it does not; *finished counts detectionFinished() until then.
QByteArray failure(int mode, const QVector<QImage> &frames, int *finished)
{
    Averager averager;
    *finished = 0;
    QObject::connect(&averager, &BadpixelDetector::detectionFinished, [finished] { ++*finished; });
    try {
        averager.average(mode, frames);
    } catch (const std::exception &thrown) {
        return thrown.what();
    }
    return "";
}

} // namespace

class TestBadpixelDetector : public QObject
{
    Q_OBJECT

private slots:
    void startsInRawBayerMode();
    void theWalkOverFourByTwoVisitsColumnFour();
    void theWalkReadsThePixelsOfItsPositions();
    void rowsOfPaddedFramesAreReadAtThePitchOfTheWidth();
    void theAverageOfASingleFrameIsThatFrame();
    void averagesAreRoundedDown();
    void aBayerFrameOfOddWidthSevenHasThreeColumnsAPlane();
    void averagesMatchAPlainListOfPlaces_data();
    void averagesMatchAPlainListOfPlaces();
    void averagesMatchAVisitorWithEachFrame();
    void anyNumberOfBrightFramesIsAveraged();
    void whatWasAddedUpBeforeAFrameOfAnotherSizeStays();
    void failuresComeAfterTheSignal_data();
    void failuresComeAfterTheSignal();
    void framesWithoutAVectorAreNoFrames();
    void theFirstTestThatFailsDecides();
    void laterFramesOfAnotherFormatAreReadByteByByte();
    void laterFramesOfOneBitAPixelAreDarkBehindTheirEnd();
    void framesAreReadInPlace();
    void matricesAreReplacedByTheNextAverage();
};

void TestBadpixelDetector::startsInRawBayerMode()
{
    QCOMPARE(Averager().initialMode(), RawBayer);
}

void TestBadpixelDetector::theWalkOverFourByTwoVisitsColumnFour()
{
    const PlaneLayout layout{0, 0, 1, 1};
    PlaceCollector collector;
    BadpixelDetector::ImagePosIterator walk(testframes::flat(4, 2, 0), layout, &collector);
    Sums(2, 4).forEach(walk);
    const std::vector<QPoint> expected{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {0, 1}, {1, 1}, {2, 1}};
    QCOMPARE(collector.places, expected);
}

void TestBadpixelDetector::theWalkReadsThePixelsOfItsPositions()
{
    const PlaneLayout layout{0, 0, 1, 1};
    const QImage frame = testframes::frame(4, 2, {10, 11, 12, 13, 20, 21, 22, 23});
    PixelCollector collector;
    BadpixelDetector::ImageIterator walk(frame, layout, &collector);
    Sums(2, 4).forEach(walk);
    const std::vector<uchar> expected{10, 11, 12, 13, 20, 20, 21, 22};
    QCOMPARE(collector.pixels, expected);
}

void TestBadpixelDetector::rowsOfPaddedFramesAreReadAtThePitchOfTheWidth()
{
    const QImage frame =
        testframes::frame(3, 2, {10, 11, 12, 20, 21, 22}); // rows of 4 bytes, the last is 255
    Averager averager;
    averager.average(Mono, {frame});
    const std::vector<unsigned> expected{10, 11, 12, 255, 255, 20};
    QCOMPARE(averager.mono(), expected);
}

void TestBadpixelDetector::theAverageOfASingleFrameIsThatFrame()
{
    const QImage frame = testframes::frame(4, 1, {9, 8, 7, 6});
    Averager averager;
    averager.average(Mono, {frame});
    QCOMPARE(averager.mono(), (std::vector<unsigned>{9, 8, 7, 6}));
}

void TestBadpixelDetector::averagesAreRoundedDown()
{
    Averager averager;
    averager.average(Mono,
                     {testframes::flat(4, 2, 9), testframes::flat(4, 2, 10), testframes::flat(4, 2, 10)});
    QCOMPARE(averager.mono(), std::vector<unsigned>(8, 9));
}

void TestBadpixelDetector::aBayerFrameOfOddWidthSevenHasThreeColumnsAPlane()
{
    Averager averager;
    averager.average(RawBayer, {testframes::flat(7, 5, 3)});
    for (int plane = 0; plane < 4; ++plane)
        QCOMPARE(averager.plane(plane), std::vector<unsigned>(3 * 2, 3));
    QVERIFY(averager.mono().empty());
}

void TestBadpixelDetector::averagesMatchAPlainListOfPlaces_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("smallest");
    QTest::newRow("mono") << Mono << 1;
    QTest::newRow("raw Bayer") << RawBayer << 2;
}

void TestBadpixelDetector::averagesMatchAPlainListOfPlaces()
{
    QFETCH(int, mode);
    QFETCH(int, smallest);
    QRandomGenerator random(20 + static_cast<quint32>(mode));
    for (int round = 0; round < 400; ++round) {
        const QVector<QImage> frames = testframes::anyFrames(smallest, &random);
        const QSize size = frames.first().size();
        Averager averager;
        averager.average(mode, frames);
        const auto planes = testframes::planes(mode, size.width(), size.height());
        for (std::size_t plane = 0; plane < planes.size(); ++plane) {
            const auto found = mode == Mono ? averager.mono() : averager.plane(static_cast<int>(plane));
            QCOMPARE(found, testframes::averages(frames, planes[plane]));
        }
    }
}

void TestBadpixelDetector::averagesMatchAVisitorWithEachFrame()
{
    QRandomGenerator random(77);
    for (int round = 0; round < 100; ++round) {
        const QVector<QImage> frames = testframes::anyFrames(1, &random);
        Averager averager;
        averager.average(Mono, frames);
        QCOMPARE(averager.mono(), visitedAverages(frames));
    }
}

void TestBadpixelDetector::anyNumberOfBrightFramesIsAveraged()
{
    // Sums of 257 such frames are the last that fit in 16 bits.
    for (const int count : {1, 2, 5, 6, 10, 128, 256, 257, 258, 300}) {
        const QVector<QImage> frames(count, testframes::flat(7, 4, 255));
        Averager averager;
        averager.average(Mono, frames);
        QCOMPARE(averager.mono(), std::vector<unsigned>(7 * 4, 255));
        averager.average(RawBayer, frames);
        for (int plane = 0; plane < 4; ++plane)
            QCOMPARE(averager.plane(plane), std::vector<unsigned>(3 * 2, 255));
    }
}

void TestBadpixelDetector::whatWasAddedUpBeforeAFrameOfAnotherSizeStays()
{
    const QVector<QImage> frames{testframes::flat(4, 2, 9), testframes::flat(4, 2, 10),
                                 testframes::flat(4, 3, 1)};
    Averager averager;
    QVERIFY_EXCEPTION_THROWN(averager.average(Mono, frames), std::runtime_error);
    QCOMPARE(averager.mono(), std::vector<unsigned>(8, 19));
}

void TestBadpixelDetector::failuresComeAfterTheSignal_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QVector<QImage>>("frames");
    QTest::addColumn<QByteArray>("text");
    const QImage good = testframes::flat(4, 4, 1);
    const QByteArray format = "Image format for hot pixel detection not supported.";
    const QByteArray color = "Color mode for hot pixel detection not supported.";
    const QByteArray size = "Aqcuired images are not the same size.";
    const QByteArray noSize = "Matrix has no size";
    QTest::newRow("none") << Mono << QVector<QImage>()
                          << QByteArray("No images acquired for hot pixel detection.");
    QTest::newRow("null first") << Mono << QVector<QImage>{QImage(), good} << format;
    QTest::newRow("grey") << Mono << QVector<QImage>{good.convertToFormat(QImage::Format_Grayscale8)}
                          << format;
    QTest::newRow("32 bits") << Mono << QVector<QImage>{QImage(4, 4, QImage::Format_RGB32)} << format;
    QTest::newRow("mode 8") << 8 << QVector<QImage>{good} << color;
    QTest::newRow("mode 0") << 0 << QVector<QImage>{good} << color;
    QTest::newRow("wider") << Mono << QVector<QImage>{good, testframes::flat(5, 4, 1)} << size;
    QTest::newRow("lower") << RawBayer << QVector<QImage>{good, good, testframes::flat(4, 3, 1)} << size;
    QTest::newRow("turned") << Mono << QVector<QImage>{testframes::flat(2, 8, 1), testframes::flat(8, 2, 1)}
                            << size;
    QTest::newRow("null later") << RawBayer << QVector<QImage>{good, QImage()} << size;
    QTest::newRow("half a column") << RawBayer << QVector<QImage>{testframes::flat(1, 8, 1)} << noSize;
    QTest::newRow("half a row") << RawBayer << QVector<QImage>{testframes::flat(8, 1, 1)} << noSize;
}

void TestBadpixelDetector::failuresComeAfterTheSignal()
{
    QFETCH(int, mode);
    QFETCH(QVector<QImage>, frames);
    QFETCH(QByteArray, text);
    int finished = 0;
    QCOMPARE(failure(mode, frames, &finished), text);
    QCOMPARE(finished, 1);
}

void TestBadpixelDetector::framesWithoutAVectorAreNoFrames()
{
    Averager averager;
    QVERIFY_EXCEPTION_THROWN(averager.detect(nullptr), std::runtime_error);
}

void TestBadpixelDetector::theFirstTestThatFailsDecides()
{
    int finished = 0;
    QCOMPARE(failure(8, {QImage(4, 4, QImage::Format_RGB32), QImage()}, &finished),
             QByteArray("Image format for hot pixel detection not supported."));
    QCOMPARE(failure(8, {testframes::flat(4, 4, 1), QImage()}, &finished),
             QByteArray("Color mode for hot pixel detection not supported."));
    QVERIFY_EXCEPTION_THROWN(Averager().average(8, {testframes::flat(4, 4, 1)}),
                             BadpixelDetector::ErrColorMode);
}

void TestBadpixelDetector::laterFramesOfAnotherFormatAreReadByteByByte()
{
    QImage colour(4, 1, QImage::Format_RGB32);
    const uchar bytes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    std::memcpy(colour.bits(), bytes, sizeof bytes);
    Averager averager;
    averager.average(Mono, {testframes::flat(4, 1, 11), colour});
    QCOMPARE(averager.mono(), (std::vector<unsigned>{6, 6, 7, 7}));
}

void TestBadpixelDetector::laterFramesOfOneBitAPixelAreDarkBehindTheirEnd()
{
    QImage bits(8, 2, QImage::Format_Mono); // 8 bytes, where 16 pixels are read
    std::memset(bits.bits(), 100, 8);
    Averager averager;
    averager.average(Mono, {testframes::flat(8, 2, 0), bits});
    std::vector<unsigned> expected(16, 50);
    std::fill(expected.begin() + 8, expected.end(), 0); // the element at (8, 0) reads byte 8 already
    QCOMPARE(averager.mono(), expected);
    averager.average(RawBayer, {testframes::flat(8, 2, 0), bits});
    QCOMPARE(averager.plane(0), std::vector<unsigned>(4, 50));
    QCOMPARE(averager.plane(3), std::vector<unsigned>(4, 0));
}

void TestBadpixelDetector::framesAreReadInPlace()
{
    const std::vector<uchar> borrowed{1, 2, 3, 4, 5, 6, 7, 8};
    const uchar *start = borrowed.data();
    const QImage frame(start, 4, 2, 4, QImage::Format_Indexed8);
    const PlaneLayout layout{0, 0, 1, 1};
    AddressCollector collector;
    BadpixelDetector::ImageIterator walk(frame, layout, &collector);
    Sums(2, 4).forEach(walk);
    const std::vector<const uchar *> expected{start,     start + 1, start + 2, start + 3,
                                              start + 4, start + 4, start + 5, start + 6};
    QCOMPARE(collector.addresses, expected);
}

void TestBadpixelDetector::matricesAreReplacedByTheNextAverage()
{
    Averager averager;
    averager.average(Mono, {testframes::flat(4, 2, 9)});
    averager.average(Mono, {testframes::flat(2, 1, 5)});
    QCOMPARE(averager.mono(), std::vector<unsigned>(2, 5));
    averager.average(RawBayer, {testframes::flat(4, 2, 9)});
    averager.average(RawBayer, {testframes::flat(2, 2, 5)});
    for (int plane = 0; plane < 4; ++plane)
        QCOMPARE(averager.plane(plane), std::vector<unsigned>(1, 5));
}

QTEST_MAIN(TestBadpixelDetector)
#include "tst_badpixeldetector.moc"
