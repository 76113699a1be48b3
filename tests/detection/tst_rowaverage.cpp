// SPDX-License-Identifier: MIT
// Tests of the arithmetic of averaging.
#include "rowaverage.h"

#include "testframes.h"

#include <QtTest>

class TestRowAverage : public QObject
{
    Q_OBJECT

private slots:
    void everySumOfEveryNumberOfBytesIsDividedLikeAnyNumber();
    void averagesBytesAtTheSamePlace();
    void takesEverySecondByteFromTheFirstOn();
    void summariesHoldTheSumAndTheHighest();
    void whatIsReadNextReplacesWhatWasRead();
};

void TestRowAverage::everySumOfEveryNumberOfBytesIsDividedLikeAnyNumber()
{
    int wrong = 0;
    for (unsigned count = 1; count <= ByteAverage::MostBytes; ++count) {
        const ByteAverage average(static_cast<int>(count));
        for (unsigned sum = 0; sum <= 255 * count; ++sum)
            wrong += average.of(static_cast<std::uint16_t>(sum)) != sum / count;
    }
    QCOMPARE(wrong, 0);
    QCOMPARE(255 * ByteAverage::MostBytes, 65535); // the most that 16 bits hold
}

void TestRowAverage::averagesBytesAtTheSamePlace()
{
    const QVector<QImage> frames{testframes::frame(4, 2, {0, 1, 2, 3, 4, 5, 6, 7}),
                                 testframes::frame(4, 2, {9, 9, 9, 9, 0, 3, 8, 255})};
    RowAverage average(frames, 5);
    average.read(3, 5);
    std::vector<unsigned> found(5);
    average.write(0, 1, 5, found.data());
    QCOMPARE(found, (std::vector<unsigned>{6, 2, 4, 7, 131}));
}

void TestRowAverage::takesEverySecondByteFromTheFirstOn()
{
    const QVector<QImage> frames{testframes::frame(8, 1, {0, 10, 20, 30, 40, 50, 60, 70})};
    RowAverage average(frames, 8);
    average.read(0, 8);
    std::vector<unsigned> found(4);
    average.write(1, 2, 4, found.data());
    QCOMPARE(found, (std::vector<unsigned>{10, 30, 50, 70}));
    average.write(2, 2, 3, found.data());
    QCOMPARE(found, (std::vector<unsigned>{20, 40, 60, 70}));
}

void TestRowAverage::summariesHoldTheSumAndTheHighest()
{
    QRandomGenerator random(5);
    for (int width = 1; width < 100; ++width) {
        const QVector<QImage> frames{testframes::noise(width, 1, &random)};
        RowAverage average(frames, width);
        average.read(0, width);
        std::vector<unsigned> values(static_cast<std::size_t>(width));
        const RowSummary summary = average.write(0, 1, width, values.data());
        unsigned sum = 0;
        for (const unsigned value : values)
            sum += value;
        QCOMPARE(summary.sum, sum);
        QCOMPARE(summary.highest, *std::max_element(values.begin(), values.end()));
        QCOMPARE(summaryOf(values.data(), width).sum, sum);
        QCOMPARE(summaryOf(values.data(), width).highest, summary.highest);
    }
}

void TestRowAverage::whatIsReadNextReplacesWhatWasRead()
{
    const QVector<QImage> frames(11, testframes::frame(4, 1, {1, 2, 3, 4}));
    RowAverage average(frames, 4);
    average.read(0, 4);
    average.read(2, 2);
    std::vector<unsigned> found(2);
    average.write(0, 1, 2, found.data());
    QCOMPARE(found, (std::vector<unsigned>{3, 4}));
}

QTEST_APPLESS_MAIN(TestRowAverage)
#include "tst_rowaverage.moc"
