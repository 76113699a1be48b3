// SPDX-License-Identifier: MIT
// Tests of what counts as a hot pixel, and where it is reported.
#include "hotpixeldetector.h"

#include "badpixellistmodel.h"
#include "testframes.h"

#include <QFile>
#include <QtTest>

#include <numeric>

using testframes::Mono;
using testframes::RawBayer;

namespace {

using Points = std::vector<QPoint>;

Points entries(const BadpixelListModel &model)
{
    Points list;
    for (int row = 0; row < model.rowCount(); ++row)
        list.emplace_back(model.badpixel(row).x, model.badpixel(row).y);
    return list;
}

Points found(int mode, const QVector<QImage> &frames, unsigned threshold)
{
    HotpixelDetector detector;
    detector.setThreshold(threshold);
    detector.setImages(mode, &frames);
    BadpixelListModel model;
    detector.detect(&model);
    return entries(model);
}

void addOnce(Points *list, const QPoint &point)
{
    if (std::find(list->begin(), list->end(), point) == list->end())
        list->push_back(point);
}

/// The whole rule once more: each plane against its own mean, along the plain list of its places.
Points expected(int mode, const QVector<QImage> &frames, unsigned threshold)
{
    Points list;
    const QSize size = frames.first().size();
    for (const auto &plane : testframes::planes(mode, size.width(), size.height())) {
        const auto values = testframes::averages(frames, plane);
        const auto places = testframes::places(plane, size.width());
        const unsigned mean =
            std::accumulate(values.begin(), values.end(), 0u) / static_cast<unsigned>(values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (values[i] > mean + threshold)
                addOnce(&list, places[i]);
        }
    }
    return list;
}

QImage withPixels(QImage frame, const Points &pixels, uchar grey)
{
    for (const QPoint &pixel : pixels)
        frame.scanLine(pixel.y())[pixel.x()] = grey;
    return frame;
}

/// The pixels of a PGM file with one byte a pixel; a null image when there is none.
QImage readPgm(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.readLine() != "P5\n")
        return QImage();
    const QList<QByteArray> size = file.readLine().trimmed().split(' ');
    file.readLine();
    const QByteArray pixels = file.readAll();
    return testframes::frame(size.at(0).toInt(), size.at(1).toInt(),
                             std::vector<uchar>(pixels.begin(), pixels.end()));
}

QVector<QImage> sweep(int count)
{
    QVector<QImage> frames;
    const QString folder =
        QString::fromLocal8Bit(qgetenv("SPECKMEND_SOURCE_DIR")) + "/../shared/frames/bayer8-sweep/";
    for (int i = 0; i < count; ++i) {
        const QImage frame = readPgm(folder + QString("%1.pgm").arg(i, 2, 10, QChar('0')));
        if (!frame.isNull())
            frames.append(frame);
    }
    return frames;
}

/// How many pixels a rule finds that looks at the frame as a whole, pixel by pixel.
int plainCount(const QVector<QImage> &frames, unsigned threshold)
{
    std::vector<unsigned> values;
    for (int y = 0; y < frames.first().height(); ++y) {
        for (int x = 0; x < frames.first().width(); ++x) {
            unsigned sum = 0;
            for (const QImage &frame : frames)
                sum += frame.constScanLine(y)[x];
            values.push_back(sum / static_cast<unsigned>(frames.size()));
        }
    }
    const unsigned mean =
        std::accumulate(values.begin(), values.end(), 0u) / static_cast<unsigned>(values.size());
    return static_cast<int>(std::count_if(values.begin(), values.end(),
                                          [&](unsigned value) { return value > mean + threshold; }));
}

} // namespace

class TestHotpixelDetector : public QObject
{
    Q_OBJECT

private slots:
    void theWorkedExampleFindsItsOnePixel();
    void aHotPixelInTheFirstColumnIsReportedTwice();
    void thePixelInTheLastCornerIsNeverRead();
    void atThresholdZeroOnlyElementsAboveTheMeanAreReported();
    void theThresholdIsNotReachedByEquality();
    void aSingleFrameIsEnough();
    void bayerPlanesAreJudgedEachByItsOwnMean();
    void bayerPositionsAreThoseOfTheFullFrame();
    void entriesComePlaneByPlaneAndRowByRow();
    void aBayerFrameOfOddWidthSevenIsWalkedInThreeColumns();
    void detectionMatchesAPlainListOfPlaces_data();
    void detectionMatchesAPlainListOfPlaces();
    void aRealSweepShowsTheConsequenceOfTheWalk_data();
    void aRealSweepShowsTheConsequenceOfTheWalk();
    void placesThatAreListedAlreadyAreNotReportedAgain();
    void foundPixelsAreUserEntries();
    void aSecondFrameOfAnotherSizeAddsNothing();
    void colourModeEightIsNotSupported();
    void finishedIsSignalledOnceWhenAllEntriesAreThere();
    void aFailureOfThePassItselfIsNotSignalledAndKeepsEntries();
    void everyPixelMayBeHot();
    void theSumBehindTheMeanHas32Bits();
    void meanValueIsThatOfTheMonoFrame();
    void meanValueNeedsAMonoFrame();
    void theLimitIsUnsignedArithmetic();
    void aDetectorServesRunAfterRun();
};

void TestHotpixelDetector::theWorkedExampleFindsItsOnePixel()
{
    const QVector<QImage> frames{withPixels(testframes::flat(4, 2, 8), {{2, 1}}, 200),
                                 withPixels(testframes::flat(4, 2, 9), {{2, 1}}, 210),
                                 withPixels(testframes::flat(4, 2, 10), {{2, 1}}, 220)};
    HotpixelDetector detector;
    detector.setThreshold(10);
    detector.setImages(Mono, &frames);
    BadpixelListModel model;
    detector.detect(&model);
    QCOMPARE(detector.meanValue(), 34u);
    QCOMPARE(entries(model), (Points{{2, 1}}));
}

void TestHotpixelDetector::aHotPixelInTheFirstColumnIsReportedTwice()
{
    const QVector<QImage> frames{withPixels(testframes::flat(4, 2, 0), {{0, 1}}, 200)};
    QCOMPARE(found(Mono, frames, 40), (Points{{4, 0}, {0, 1}}));
}

void TestHotpixelDetector::thePixelInTheLastCornerIsNeverRead()
{
    const QVector<QImage> frames{withPixels(testframes::flat(4, 2, 0), {{3, 1}}, 200)};
    QCOMPARE(found(Mono, frames, 0), Points());
}

void TestHotpixelDetector::atThresholdZeroOnlyElementsAboveTheMeanAreReported()
{
    QCOMPARE(found(Mono, {testframes::flat(6, 5, 77)}, 0), Points());
    const QVector<QImage> frames{testframes::frame(4, 1, {10, 11, 9, 10})};
    QCOMPARE(found(Mono, frames, 0), (Points{{1, 0}}));
}

void TestHotpixelDetector::theThresholdIsNotReachedByEquality()
{
    const QVector<QImage> frames{withPixels(testframes::flat(40, 40, 10), {{5, 0}}, 35)};
    QCOMPARE(found(Mono, frames, 25), Points());
    QCOMPARE(found(Mono, frames, 24), (Points{{5, 0}}));
}

void TestHotpixelDetector::aSingleFrameIsEnough()
{
    QCOMPARE(found(Mono, {withPixels(testframes::flat(8, 8, 3), {{5, 0}}, 90)}, 40), (Points{{5, 0}}));
}

void TestHotpixelDetector::bayerPlanesAreJudgedEachByItsOwnMean()
{
    // The green planes read 100 everywhere, the others 0: only a common mean would report them.
    QImage frame = testframes::flat(8, 2, 0);
    for (int x = 0; x < 8; x += 2) {
        frame.scanLine(0)[x + 1] = 100;
        frame.scanLine(1)[x] = 100;
    }
    QCOMPARE(found(RawBayer, {frame}, 5), Points());
    QCOMPARE(found(RawBayer, {withPixels(frame, {{3, 0}, {2, 0}}, 180)}, 50), (Points{{2, 0}, {3, 0}}));
}

void TestHotpixelDetector::bayerPositionsAreThoseOfTheFullFrame()
{
    const Points hot{{4, 0}, {2, 1}, {5, 0}, {3, 1}};
    QCOMPARE(found(RawBayer, {withPixels(testframes::flat(8, 6, 0), hot, 255)}, 40), hot);
}

void TestHotpixelDetector::entriesComePlaneByPlaneAndRowByRow()
{
    const QVector<QImage> frames{
        withPixels(testframes::flat(12, 12, 0), {{3, 2}, {4, 2}, {2, 0}, {6, 0}, {5, 3}, {2, 3}}, 255)};
    QCOMPARE(found(RawBayer, frames, 40), (Points{{2, 0}, {6, 0}, {4, 2}, {2, 3}, {3, 2}, {5, 3}}));
}

void TestHotpixelDetector::aBayerFrameOfOddWidthSevenIsWalkedInThreeColumns()
{
    // A row of the walk has four places, one more than the plane has columns: six elements end at (2, 2).
    QImage frame = testframes::flat(7, 4, 0);
    frame.bits()[6] = 255;
    QCOMPARE(found(RawBayer, {frame}, 40), (Points{{6, 0}}));
    frame.bits()[6] = 0;
    frame.bits()[2 * 7 + 2] = 255;
    QCOMPARE(found(RawBayer, {frame}, 40), (Points{{2, 2}}));
    frame.bits()[2 * 7 + 2] = 0;
    frame.bits()[2 * 7 + 4] = 255; // the seventh, which no element is left for
    QCOMPARE(found(RawBayer, {frame}, 40), Points());
}

void TestHotpixelDetector::detectionMatchesAPlainListOfPlaces_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("smallest");
    QTest::newRow("mono") << Mono << 1;
    QTest::newRow("raw Bayer") << RawBayer << 2;
}

void TestHotpixelDetector::detectionMatchesAPlainListOfPlaces()
{
    QFETCH(int, mode);
    QFETCH(int, smallest);
    QRandomGenerator random(7 + static_cast<quint32>(mode));
    int reported = 0;
    for (int round = 0; round < 400; ++round) {
        const QVector<QImage> frames = testframes::anyFrames(smallest, &random);
        const unsigned threshold = static_cast<unsigned>(random.bounded(60));
        const Points points = found(mode, frames, threshold);
        QCOMPARE(points, expected(mode, frames, threshold));
        reported += static_cast<int>(points.size());
    }
    QVERIFY(reported > 300);
}

void TestHotpixelDetector::aRealSweepShowsTheConsequenceOfTheWalk_data()
{
    QTest::addColumn<uint>("threshold");
    QTest::addColumn<int>("walked");
    QTest::addColumn<int>("plain");
    QTest::newRow("5") << 5u << 19 << 18;
    QTest::newRow("10") << 10u << 10 << 9;
    QTest::newRow("25") << 25u << 5 << 4;
    QTest::newRow("40") << 40u << 3 << 2;
}

void TestHotpixelDetector::aRealSweepShowsTheConsequenceOfTheWalk()
{
    QFETCH(uint, threshold);
    QFETCH(int, walked);
    QFETCH(int, plain);
    const QVector<QImage> frames = sweep(10);
    if (frames.size() != 10)
        QSKIP("The recorded frames are not here.");
    const Points points = found(RawBayer, frames, threshold);
    QCOMPARE(static_cast<int>(points.size()), walked);
    QCOMPARE(points, expected(RawBayer, frames, threshold));
    QCOMPARE(plainCount(frames, threshold), plain);
}

void TestHotpixelDetector::placesThatAreListedAlreadyAreNotReportedAgain()
{
    const QVector<QImage> frames{withPixels(testframes::flat(8, 8, 3), {{5, 0}, {6, 0}}, 90)};
    HotpixelDetector detector;
    detector.setThreshold(10);
    detector.setImages(Mono, &frames);
    BadpixelListModel model;
    model.addBadpixel(QPoint(6, 0));
    QSignalSpy added(&model, &BadpixelListModel::pixelAdded);
    detector.detect(&model);
    QCOMPARE(entries(model), (Points{{6, 0}, {5, 0}}));
    QCOMPARE(added.count(), 1);
}

void TestHotpixelDetector::foundPixelsAreUserEntries()
{
    const QVector<QImage> frames{withPixels(testframes::flat(8, 8, 3), {{5, 0}}, 90)};
    HotpixelDetector detector;
    detector.setImages(Mono, &frames);
    BadpixelListModel model;
    detector.detect(&model);
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(int(model.badpixel(0).pixelclass), int(User));
}

void TestHotpixelDetector::aSecondFrameOfAnotherSizeAddsNothing()
{
    const QVector<QImage> frames{withPixels(testframes::flat(8, 8, 3), {{5, 0}}, 90),
                                 testframes::flat(8, 7, 3)};
    HotpixelDetector detector;
    detector.setImages(Mono, &frames);
    BadpixelListModel model;
    QSignalSpy finished(&detector, &HotpixelDetector::detectionFinished);
    QVERIFY_EXCEPTION_THROWN(detector.detect(&model), std::runtime_error);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(finished.count(), 1);
}

void TestHotpixelDetector::colourModeEightIsNotSupported()
{
    const QVector<QImage> frames{testframes::flat(8, 8, 3)};
    HotpixelDetector detector;
    detector.setImages(8, &frames);
    BadpixelListModel model;
    QSignalSpy finished(&detector, &HotpixelDetector::detectionFinished);
    QByteArray text;
    try {
        detector.detect(&model);
    } catch (const BadpixelDetector::ErrColorMode &failure) {
        text = failure.what();
    }
    QCOMPARE(text, QByteArray("Color mode for hot pixel detection not supported."));
    QCOMPARE(finished.count(), 1);
}

void TestHotpixelDetector::finishedIsSignalledOnceWhenAllEntriesAreThere()
{
    const QVector<QImage> frames{withPixels(testframes::flat(8, 8, 3), {{5, 0}, {6, 0}}, 90)};
    HotpixelDetector detector;
    detector.setImages(Mono, &frames);
    BadpixelListModel model;
    std::vector<int> rowsThen;
    connect(&detector, &HotpixelDetector::detectionFinished, this,
            [&] { rowsThen.push_back(model.rowCount()); });
    detector.detect(&model);
    QCOMPARE(rowsThen, std::vector<int>{2});
}

void TestHotpixelDetector::aFailureOfThePassItselfIsNotSignalledAndKeepsEntries()
{
    const QVector<QImage> frames{withPixels(testframes::flat(8, 8, 3), {{5, 0}, {6, 0}}, 90)};
    HotpixelDetector detector;
    detector.setImages(Mono, &frames);
    BadpixelListModel model;
    connect(&model, &BadpixelListModel::pixelAdded, this, [] { throw std::runtime_error("receiver"); });
    QSignalSpy finished(&detector, &HotpixelDetector::detectionFinished);
    QVERIFY_EXCEPTION_THROWN(detector.detect(&model), std::runtime_error);
    QCOMPARE(finished.count(), 0);
    QCOMPARE(entries(model), (Points{{5, 0}}));
}

void TestHotpixelDetector::meanValueIsThatOfTheMonoFrame()
{
    const QVector<QImage> frames{testframes::frame(4, 1, {1, 2, 3, 5})};
    HotpixelDetector detector;
    detector.setImages(Mono, &frames);
    BadpixelListModel model;
    detector.detect(&model);
    QCOMPARE(detector.meanValue(), 2u);
}

void TestHotpixelDetector::everyPixelMayBeHot()
{
    // 3 + (2^32 - 3) is 0: all 120,000 lie above it.
    const QVector<QImage> frames(10, testframes::flat(400, 300, 3));
    const std::vector<QPoint> walked = testframes::places({0, 0, 1, 400 * 300}, 400);
    QCOMPARE(found(Mono, frames, 0u - 3u), walked);
}

void TestHotpixelDetector::theSumBehindTheMeanHas32Bits()
{
    // 17,220,000 times 254 is 78,912,704 beyond 2^32, which leaves a mean of 4.
    const QVector<QImage> frames{withPixels(testframes::flat(4200, 4100, 254), {{5, 0}}, 255)};
    HotpixelDetector detector;
    detector.setThreshold(250);
    detector.setImages(Mono, &frames);
    BadpixelListModel model;
    detector.detect(&model);
    QCOMPARE(detector.meanValue(), 4u);
    QCOMPARE(entries(model), (Points{{5, 0}}));
}

void TestHotpixelDetector::meanValueNeedsAMonoFrame()
{
    const QVector<QImage> frames{testframes::flat(8, 8, 3)};
    HotpixelDetector detector;
    detector.setImages(RawBayer, &frames);
    BadpixelListModel model;
    detector.detect(&model);
    QByteArray text;
    try {
        detector.meanValue();
    } catch (const std::runtime_error &failure) {
        text = failure.what();
    }
    QCOMPARE(text, QByteArray("Not instanced."));
}

void TestHotpixelDetector::theLimitIsUnsignedArithmetic()
{
    // 3 + (2^32 - 3) is 0: everything lies above.
    const QVector<QImage> frames{testframes::flat(4, 1, 3)};
    QCOMPARE(found(Mono, frames, 0u - 3u).size(), std::size_t(4));
    QCOMPARE(found(Mono, frames, 0u - 4u).size(), std::size_t(0));
}

void TestHotpixelDetector::aDetectorServesRunAfterRun()
{
    const QVector<QImage> first{withPixels(testframes::flat(8, 8, 3), {{5, 0}}, 90)};
    const QVector<QImage> second{withPixels(testframes::flat(6, 4, 3), {{1, 0}}, 90)};
    HotpixelDetector detector;
    BadpixelListModel model;
    detector.setImages(Mono, &first);
    detector.detect(&model);
    detector.setImages(RawBayer, &second);
    detector.detect(&model);
    const QVector<QImage> third{withPixels(testframes::flat(8, 8, 3), {{3, 4}}, 90)};
    const QVector<QImage> fourth{withPixels(testframes::flat(12, 12, 3), {{6, 7}}, 90)};
    detector.setImages(Mono, &third);
    detector.detect(&model);
    detector.setImages(RawBayer, &fourth);
    detector.detect(&model);
    QCOMPARE(entries(model), (Points{{5, 0}, {1, 0}, {3, 4}, {6, 7}}));
}

QTEST_MAIN(TestHotpixelDetector)
#include "tst_hotpixeldetector.moc"
