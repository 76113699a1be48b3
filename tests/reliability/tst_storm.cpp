// SPDX-License-Identifier: MIT
// Ten thousand frames a second, and a view that cannot keep up: the window answers, the memory stays.

#include "liveload.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int HangNet = 120000; // milliseconds

} // namespace

class TestStorm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void tenThousandFramesASecondLeaveTheWindowAnswering_data();
    void tenThousandFramesASecondLeaveTheWindowAnswering();

private:
    QTemporaryDir folder;
};

void TestStorm::initTestCase()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    QVERIFY(QDir::setCurrent(folder.path()));
}

void TestStorm::tenThousandFramesASecondLeaveTheWindowAnswering_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<QString>("zoom");
    QTest::addColumn<double>("signalsPerSecond");
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("shownFrames");
    QTest::newRow("a small camera that is as fast") << 16 << 16 << "1to1" << 0.0 << 10000 << 100;
    QTest::newRow("a view that is slower than the camera") << 800 << 600 << "4to1" << 10000.0 << 100 << 30;
}

void TestStorm::tenThousandFramesASecondLeaveTheWindowAnswering()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(QString, zoom);
    QFETCH(double, signalsPerSecond);
    QFETCH(int, frames);
    QFETCH(int, shownFrames);
    LiveLoad::Plan plan;
    plan.width = width;
    plan.height = height;
    plan.zoom = zoom;
    plan.signalsPerSecond = signalsPerSecond;
    plan.frames = static_cast<std::uint64_t>(frames);
    plan.shownFrames = static_cast<std::uint64_t>(shownFrames);
    plan.mostMilliseconds = HangNet;
    LiveLoad load(plan);
    const LiveLoad::Figures figures = load.run();
    printFigures(figures);
    QVERIFY(!figures.hangs);
    QVERIFY(figures.clicks > 0);
    QCOMPARE(figures.answers, figures.clicks);
    QVERIFY(figures.signalled > 0 || signalsPerSecond <= 0.0);
    // A frame that is shown has its pictures come and go; what piles up goes beyond that.
    const std::int64_t picture = std::int64_t(width) * height * 16 * 4;
    const std::int64_t growth = figures.memory.last().residentBytes - figures.memory.at(5).residentBytes;
    QVERIFY2(growth < 3 * picture + 16 * 1024 * 1024, qPrintable(QString::number(growth)));
}

QTEST_MAIN(TestStorm)
#include "tst_storm.moc"
