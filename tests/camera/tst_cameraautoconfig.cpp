// SPDX-License-Identifier: MIT
// The settings that a camera starts with: those of the parameter file, or the ones for finding hot pixels.

#include "camera.h"
#include "diary.h"
#include "testcamera.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <stdexcept>

namespace {

constexpr std::uint16_t SensorId = 0x1F;
const QString FileName = "cameraparameter.xml";
const QString Message = "Can't open camera parameter file. (2000)";
const QByteArray Timing = R"(<Timing exposure="12.5" pixelclock="24" framerate="50"/>)";
const QByteArray Gain = R"(<Gain master="40" red="1" green="2" blue="3"/>)";

QByteArray sensor(const QByteArray &id, const QByteArray &children = Timing + Gain)
{
    return "<Sensor ID=\"" + id + "\">" + children + "</Sensor>";
}

QByteArray inRoot(const QByteArray &content)
{
    return "<CameraSettings>" + content + "</CameraSettings>";
}

void writeFile(const QByteArray &content)
{
    QFile file(FileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

kelvosim::CameraSpec withSensor(std::uint16_t sensorId)
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.sensorId = sensorId;
    return spec;
}

/// So wide that a frame of one second and more is possible at the default pixel clock.
kelvosim::CameraSpec wide()
{
    kelvosim::CameraSpec spec = withSensor(SensorId);
    spec.width = 5000;
    spec.height = 16;
    return spec;
}

QStringList pixelclockSet(int value)
{
    return QStringList{QString("pixelclock %1").arg(value), QString("vx_SetPixelClock %1").arg(value)} +
           framerateRefresh();
}

const QStringList FramerateSet = QStringList{"vx_SetFrameRate", "framerate"} + exposureRefresh();
const QStringList ExposureSet{"exposure", "vx_SetExposureTime"};

} // namespace

class TestCameraAutoConfig : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theDefaultsAreAppliedInOrder();
    void theDefaultsAreCutToTheRanges();
    void theValuesOfTheFileAreAppliedInOrder();
    void theSlotIsReachableByName();
    void everyFileHasItsResult_data();
    void everyFileHasItsResult();
    void theFileMayBeUnreadable();
    void theFileIsClosedBeforeAnythingIsApplied();

    void theIdIsHexadecimal();
    void anIdBeyondSixteenBitsMatchesNoSensor();
    void onlyTheFirstOfTwoEntriesIsUsed();
    void aMissingFrameRateIsCutToTheMinimum();
    void missingAttributesAreZeroAndCutBySetters();
    void aMasterGainBeyondTheRangeReachesTheCameraUncut();
    void theMasterGainOfTheFileIsAnnouncedOnlyWhenItDiffers();

    void aCameraThatIsSlowEnoughKeepsItsPixelClock();
    void thePixelClockIsHalvedUntilOneFrameASecondIsPossible();
    void thePixelClockIsNeverHalvedDownToItsMinimum();
    void halvingEndsWhileThePixelClockIsBusy();
    void halvingEndsAtANegativeMinimum();
    void halvingEndsWhenAReceiverTakesItBack();

    void busySettingsAreSkippedByTheDefaults();
    void busySettingsAreSkippedByTheFile();
    void theGainsOfTheFileGoOutWhileTheGainIsBusy();
    void failuresOfTheLibraryAreIgnored();
    void anExceptionOfAReceiverLeavesTheSettersUsable();

private:
    QString home;
    QScopedPointer<QTemporaryDir> folder;
};

void TestCameraAutoConfig::init()
{
    home = QDir::currentPath();
    folder.reset(new QTemporaryDir);
    QVERIFY(QDir::setCurrent(folder->path()));
    testcamera::resetTo(withSensor(SensorId));
}

void TestCameraAutoConfig::cleanup()
{
    QVERIFY(QDir::setCurrent(home));
    folder.reset();
}

void TestCameraAutoConfig::theDefaultsAreAppliedInOrder()
{
    testcamera::resetTo(wide());
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setAutoConfig();
    const QStringList expected = QStringList{Message} + FramerateSet + ExposureSet +
                                 QStringList{"mastergain 50", "vx_SetHardwareGain 50"};
    QCOMPARE(diary.entries(), expected);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{1.0});
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{300.0});
    QCOMPARE(lastCall("vx_SetHardwareGain").numbers, (std::vector<double>{-1, -1, -1}));
}

void TestCameraAutoConfig::theDefaultsAreCutToTheRanges()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setAutoConfig();
    QVERIFY(diary.framerate.min > 1.0 && diary.exposure.max < 300.0);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{diary.framerate.min});
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{diary.exposure.max});
}

void TestCameraAutoConfig::theValuesOfTheFileAreAppliedInOrder()
{
    writeFile(inRoot(sensor("1F")));
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setAutoConfig();
    const QStringList expected = pixelclockSet(24) + FramerateSet + ExposureSet +
                                 QStringList{"mastergain 40", "vx_SetHardwareGain 40"};
    QCOMPARE(diary.entries(), expected);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{50.0});
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{12.5});
    QCOMPARE(lastCall("vx_SetHardwareGain").numbers, (std::vector<double>{1, 2, 3}));
}

void TestCameraAutoConfig::theSlotIsReachableByName()
{
    Camera camera;
    camera.open(testcamera::Device);
    kelvosim::clearLog();
    QVERIFY(QMetaObject::invokeMethod(&camera, "setAutoConfig"));
    QCOMPARE(lastCall("vx_SetHardwareGain").command, 50);
}

void TestCameraAutoConfig::everyFileHasItsResult_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isReported");
    QTest::addColumn<bool>("isApplied");
    QTest::newRow("empty") << QByteArray() << true << false;
    QTest::newRow("not well-formed") << QByteArray("<CameraSettings>" + sensor("1F")) << true << false;
    QTest::newRow("fault behind the entry") << inRoot(sensor("1F") + "<") << true << false;
    QTest::newRow("another root") << QByteArray("<Settings>" + sensor("1F") + "</Settings>") << false
                                  << false;
    QTest::newRow("no sensor") << inRoot("") << false << false;
    QTest::newRow("another sensor") << inRoot(sensor("20")) << false << false;
    QTest::newRow("no timing") << inRoot(sensor("1F", Gain)) << false << false;
    QTest::newRow("no gain") << inRoot(sensor("1F", Timing)) << false << false;
    QTest::newRow("no attributes") << inRoot(sensor("1F", "<Timing/><Gain/>")) << false << true;
    QTest::newRow("complete") << inRoot(sensor("1F")) << false << true;
}

void TestCameraAutoConfig::everyFileHasItsResult()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isReported);
    QFETCH(bool, isApplied);
    writeFile(content);
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setAutoConfig();
    QCOMPARE(diary.entries().count(Message), isReported ? 1 : 0);
    QCOMPARE(diary.entries().first() == Message, isReported);
    // Only the file sets the gains of the colours.
    const kelvosim::Call gain = lastCall("vx_SetHardwareGain");
    QCOMPARE(gain.numbers.front() != -1, isApplied);
    QCOMPARE(gain.command == 50, !isApplied);
}

void TestCameraAutoConfig::theFileMayBeUnreadable()
{
    QVERIFY(QDir().mkdir(FileName)); // a folder can be read by nobody, whoever runs this
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    camera.setAutoConfig();
    QCOMPARE(diary.entries().count(Message), 1);
    QCOMPARE(lastCall("vx_SetHardwareGain").command, 50);
}

void TestCameraAutoConfig::theFileIsClosedBeforeAnythingIsApplied()
{
    writeFile(inRoot(sensor("1F")));
    Camera camera;
    camera.open(testcamera::Device);
    QStringList openFiles;
    connect(&camera, &Camera::pixelclockChanged, [&] {
        for (const QFileInfo &link : QDir("/proc/self/fd").entryInfoList(QDir::Files | QDir::System))
            openFiles << QFileInfo(link.symLinkTarget()).fileName();
    });
    camera.setAutoConfig();
    QVERIFY(!openFiles.isEmpty());
    QVERIFY2(!openFiles.contains(FileName), qPrintable(openFiles.join(' ')));
}

void TestCameraAutoConfig::theIdIsHexadecimal()
{
    const QByteArray other = R"(<Timing pixelclock="31"/><Gain/>)";
    writeFile(inRoot(sensor("31", other) + sensor("1F")));
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setAutoConfig();
    QCOMPARE(diary.pixelclock.value, 24);

    testcamera::resetTo(withSensor(49));
    Camera next;
    Diary nextDiary(next);
    next.open(testcamera::Device);
    next.setAutoConfig();
    QCOMPARE(nextDiary.pixelclock.value, 31);
}

void TestCameraAutoConfig::anIdBeyondSixteenBitsMatchesNoSensor()
{
    writeFile(inRoot(sensor("1001F")));
    Camera camera;
    camera.open(testcamera::Device);
    camera.setAutoConfig();
    QCOMPARE(lastCall("vx_SetHardwareGain").command, 50);
}

void TestCameraAutoConfig::onlyTheFirstOfTwoEntriesIsUsed()
{
    const QByteArray second = R"(<Timing pixelclock="60"/><Gain master="60"/>)";
    writeFile(inRoot(sensor("1F") + sensor("1F", second)));
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    diary.begin();
    camera.setAutoConfig();
    QCOMPARE(diary.entries().count("vx_SetPixelClock 24"), 1);
    QCOMPARE(diary.entries().filter("vx_SetPixelClock").size(), 1);
    QCOMPARE(diary.mastergain.value, 40);
}

void TestCameraAutoConfig::aMissingFrameRateIsCutToTheMinimum()
{
    writeFile(inRoot(sensor("1F", R"(<Timing exposure="12.5" pixelclock="24"/>)" + Gain)));
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setAutoConfig();
    QVERIFY(diary.framerate.min > 1.0);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{diary.framerate.min});
}

void TestCameraAutoConfig::missingAttributesAreZeroAndCutBySetters()
{
    writeFile(
        inRoot(sensor("1F", R"(<Timing pixelclock="nan" exposure="inf"/><Gain master="x" red="1e3"/>)")));
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    camera.setAutoConfig();
    QCOMPARE(diary.pixelclock.value, 5);
    QCOMPARE(lastCall("vx_SetFrameRate").numbers, std::vector<double>{diary.framerate.min});
    QCOMPARE(lastCall("vx_SetExposureTime").numbers, std::vector<double>{diary.exposure.min});
    QCOMPARE(lastCall("vx_SetHardwareGain").command, 0);
    QCOMPARE(lastCall("vx_SetHardwareGain").numbers, (std::vector<double>{0, 0, 0}));
}

void TestCameraAutoConfig::aMasterGainBeyondTheRangeReachesTheCameraUncut()
{
    writeFile(inRoot(sensor("1F", Timing + R"(<Gain master="500" red="-7" green="900" blue="3"/>)")));
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    diary.begin();
    camera.setAutoConfig();
    QCOMPARE(diary.entries().mid(diary.entries().size() - 2),
             (QStringList{"mastergain 100", "vx_SetHardwareGain 500"}));
    QCOMPARE(diary.mastergain.value, 100);
    QCOMPARE(lastCall("vx_SetHardwareGain").numbers, (std::vector<double>{-7, 900, 3}));
}

void TestCameraAutoConfig::theMasterGainOfTheFileIsAnnouncedOnlyWhenItDiffers()
{
    writeFile(inRoot(sensor("1F")));
    Camera camera;
    camera.open(testcamera::Device);
    camera.setMastergain(40);
    Diary diary(camera);
    diary.begin();
    camera.setAutoConfig();
    QVERIFY(diary.entries().filter("mastergain").isEmpty());
    QCOMPARE(diary.entries().last(), QString("vx_SetHardwareGain 40"));
}

void TestCameraAutoConfig::aCameraThatIsSlowEnoughKeepsItsPixelClock()
{
    testcamera::resetTo(wide());
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    QVERIFY(diary.framerate.min <= 1.0);
    diary.begin();
    camera.setAutoConfig();
    QVERIFY(diary.entries().filter("vx_SetPixelClock").isEmpty());
    QCOMPARE(vx_SetPixelClock(camera.handle(), 32768), 40);
}

void TestCameraAutoConfig::thePixelClockIsHalvedUntilOneFrameASecondIsPossible()
{
    kelvosim::CameraSpec spec = wide();
    spec.width = 2000; // a frame takes up to 0.88 s at 20 MHz and 1.77 s at 10 MHz
    testcamera::resetTo(spec);
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    diary.begin();
    camera.setAutoConfig();
    const QStringList expected = QStringList{Message} + pixelclockSet(20) + pixelclockSet(10) + FramerateSet +
                                 ExposureSet + QStringList{"mastergain 50", "vx_SetHardwareGain 50"};
    QCOMPARE(diary.entries(), expected);
    QVERIFY(diary.framerate.min <= 1.0);
}

void TestCameraAutoConfig::thePixelClockIsNeverHalvedDownToItsMinimum()
{
    Camera camera;
    Diary diary(camera);
    camera.open(testcamera::Device);
    diary.begin();
    camera.setAutoConfig(); // the half of 10 would be the minimum, 5
    QCOMPARE(diary.entries().filter("vx_SetPixelClock"),
             (QStringList{"vx_SetPixelClock 20", "vx_SetPixelClock 10"}));
    QVERIFY(diary.framerate.min > 1.0);

    camera.setPixelclock(13);
    diary.begin();
    camera.setAutoConfig(); // 6 is still above it
    QCOMPARE(diary.entries().filter("vx_SetPixelClock"), QStringList{"vx_SetPixelClock 6"});
}

void TestCameraAutoConfig::halvingEndsWhileThePixelClockIsBusy()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    connect(&camera, &Camera::pixelclockChanged, [&] { camera.setAutoConfig(); });
    diary.begin();
    camera.setPixelclock(60);
    QCOMPARE(diary.entries().filter("vx_SetPixelClock"), QStringList{"vx_SetPixelClock 60"});
    QCOMPARE(diary.entries().count("vx_SetHardwareGain 50"), 1); // the other defaults came
}

void TestCameraAutoConfig::halvingEndsAtANegativeMinimum()
{
    Camera camera;
    camera.open(testcamera::Device);
    connect(&camera, &Camera::pixelclockChanged, [](CameraParameter<int> &param) { param.min = -100; });
    camera.updatePixelclock();
    Diary diary(camera);
    diary.begin();
    camera.setAutoConfig();
    QCOMPARE(diary.entries().filter("pixelclock"),
             (QStringList{"pixelclock 20", "pixelclock 10", "pixelclock 5", "pixelclock 2", "pixelclock 1",
                          "pixelclock 0"}));
    QCOMPARE(lastCall("vx_SetHardwareGain").command, 50);
}

/// As when a receiver reads the pixel clock back from a camera that refuses the half.
void TestCameraAutoConfig::halvingEndsWhenAReceiverTakesItBack()
{
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    connect(&camera, &Camera::pixelclockChanged, [](CameraParameter<int> &param) { param.value = 40; });
    diary.begin();
    camera.setAutoConfig();
    QCOMPARE(diary.entries().filter("pixelclock"), QStringList{"pixelclock 20"});
    QCOMPARE(lastCall("vx_SetHardwareGain").command, 50);
}

void TestCameraAutoConfig::busySettingsAreSkippedByTheDefaults()
{
    Camera camera;
    camera.open(testcamera::Device);
    int callsOfGain = 0;
    connect(&camera, &Camera::mastergainChanged, [&] {
        camera.setAutoConfig();
        callsOfGain = int(testcamera::calls().filter("vx_SetHardwareGain").size());
    });
    kelvosim::clearLog();
    camera.setMastergain(10);
    QCOMPARE(callsOfGain, 0);
    QCOMPARE(testcamera::calls().filter("vx_SetHardwareGain"), QStringList{"vx_SetHardwareGain 10"});
    QVERIFY(!testcamera::calls().filter("vx_SetFrameRate").isEmpty()); // the others are not
}

void TestCameraAutoConfig::busySettingsAreSkippedByTheFile()
{
    writeFile(inRoot(sensor("1F")));
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    bool isFirst = true;
    connect(&camera, &Camera::framerateChanged, [&] {
        if (!isFirst)
            return;
        isFirst = false;
        diary.begin();
        camera.setAutoConfig();
    });
    camera.setFramerate(60.0);
    // The frame rate is refreshed with the pixel clock but not set.
    const QStringList expected = pixelclockSet(24) + ExposureSet +
                                 QStringList{"mastergain 40", "vx_SetHardwareGain 40"} + exposureRefresh();
    QCOMPARE(diary.entries(), expected);
}

void TestCameraAutoConfig::theGainsOfTheFileGoOutWhileTheGainIsBusy()
{
    writeFile(inRoot(sensor("1F")));
    Camera camera;
    camera.open(testcamera::Device);
    bool isFirst = true;
    connect(&camera, &Camera::mastergainChanged, [&] {
        if (isFirst) {
            isFirst = false;
            camera.setAutoConfig();
        }
    });
    kelvosim::clearLog();
    camera.setMastergain(10);
    QCOMPARE(testcamera::calls().filter("vx_SetHardwareGain"),
             (QStringList{"vx_SetHardwareGain 40", "vx_SetHardwareGain 40"})); // the setter goes on with it
}

void TestCameraAutoConfig::failuresOfTheLibraryAreIgnored()
{
    writeFile(inRoot(sensor("1F")));
    Camera camera;
    camera.open(testcamera::Device);
    Diary diary(camera);
    kelvosim::failNthCall(1, true, 1, "unplugged");
    diary.begin();
    camera.setAutoConfig();
    QCOMPARE(diary.entries().first(), QString("pixelclock 24"));
    QCOMPARE(diary.entries().last(), QString("vx_SetHardwareGain 40"));
    QVERIFY(QFile::remove(FileName));
    camera.setAutoConfig();
    QCOMPARE(diary.entries().count(Message), 1);
    QCOMPARE(diary.entries().last(), QString("vx_SetHardwareGain 50"));
    kelvosim::clearFaults();
}

void TestCameraAutoConfig::anExceptionOfAReceiverLeavesTheSettersUsable()
{
    Camera camera;
    camera.open(testcamera::Device);
    bool throws = true;
    connect(&camera, &Camera::exposureChanged, [&] {
        if (throws)
            throw std::runtime_error("receiver");
    });
    QVERIFY_EXCEPTION_THROWN(camera.setAutoConfig(), std::runtime_error);
    throws = false;
    kelvosim::clearLog();
    camera.setAutoConfig();
    QVERIFY(testcamera::calls().contains("vx_SetPixelClock 10"));
    QCOMPARE(lastCall("vx_SetHardwareGain").command, 50);
}

QTEST_GUILESS_MAIN(TestCameraAutoConfig)
#include "tst_cameraautoconfig.moc"
