// SPDX-License-Identifier: MIT
// A bench file that is edited while the program runs.

#include "benchfile.h"
#include "programside.h"

#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

using namespace programside;

namespace {

/// The library reads the environment at its first call, so the folder lives as long as the program.
QTemporaryDir &folder()
{
    static QTemporaryDir dir;
    return dir;
}

QString benchPath()
{
    return folder().filePath("my.bench");
}

const std::string Start = "[camera A]\nsize = 64 x 48\nhot pixels = 0\nlens cap = on\n\n"
                          "[camera B]\nsize = 32 x 16\nattached = no\n";

void writeBench(const std::string &text)
{
    QFile file(benchPath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(text.data(), qint64(text.size())) < 0)
        throw std::runtime_error("cannot write the bench file");
}

void edit(const std::string &serial, const std::string &key, const std::string &value)
{
    QFile file(benchPath());
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read the bench file");
    writeBench(benchfile::setValue(file.readAll().toStdString(), serial, key, value));
}

/// What the library has written on standard error.
QByteArray complaints()
{
    QFile file(folder().filePath("complaints.txt"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int cameraCount()
{
    std::int32_t count = -1;
    vx_GetNumberOfCameras(&count);
    return count;
}

bool isInUse(std::size_t index)
{
    std::vector<std::uint32_t> list(1 + 28 * 8);
    list[0] = 8;
    vx_GetCameraList(list.data());
    return list[1 + 28 * index + 3] != 0;
}

int brightest(OpenedCamera &camera)
{
    const std::vector<std::uint8_t> pixels = camera.frame();
    return *std::max_element(pixels.begin(), pixels.end());
}

} // namespace

class TestLiveBench : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void theFileSaysWhichCamerasThereAre();
    void pluggingIsTakenUp();
    void changesAreTakenUpWithinHalfASecond();
    void theLensCapIsTakenUpByAnOpenCamera();
    void inUseIsTakenUp();
    void aBurstOfFailedFrames();
    void aResetOfTheStoredList();
    void aNewSizeActsAtTheNextOpen();
    void aCameraLeavingTheFileIsUnplugged();
    void aBrokenFileLeavesTheLastGoodState();
    void aFileThatIsBeingWrittenUnplugsNothing();
    void aFirmwareUploadIsAskedForAgain();
    void replayFoldersAreRelativeToTheFile();
    void nothingIsLogged();
};

void TestLiveBench::initTestCase()
{
    QVERIFY(std::freopen(folder().filePath("complaints.txt").toLocal8Bit().constData(), "w", stderr));
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    writeBench(Start);
    qputenv("KELVOSIM_BENCH", benchPath().toUtf8());
    qputenv("KELVOSIM_STORAGE", folder().filePath("storage").toUtf8());
}

void TestLiveBench::cleanup()
{
    writeBench(Start);
    QTRY_COMPARE(cameraCount(), 1);
    QTRY_VERIFY(!isInUse(0));
}

/// The watcher ends and the library is left as a test leaves it.
void TestLiveBench::cleanupTestCase()
{
    kelvosim::reset();
    QCOMPARE(cameraCount(), 0);
}

void TestLiveBench::theFileSaysWhichCamerasThereAre()
{
    QCOMPARE(cameraCount(), 1);
    const OpenedCamera camera(1);
    QCOMPARE(camera.width, 64);
    QVERIFY_EXCEPTION_THROWN(OpenedCamera(2), std::runtime_error);
}

void TestLiveBench::pluggingIsTakenUp()
{
    enableEvents(0, {129, 130});
    edit("B", "attached", "yes");
    QCOMPARE(waitFor(0, {129, 130}, Patience), 130u);
    QCOMPARE(cameraCount(), 2);
    const OpenedCamera camera(2);
    enableEvents(camera.handle, {9, 128});
    edit("B", "attached", "no");
    QCOMPARE(waitFor(camera.handle, {9, 128}, Patience), 128u);
    QCOMPARE(waitFor(0, {129, 130}, Patience), 129u);
    QCOMPARE(cameraCount(), 1);
    std::uint32_t codes[] = {129, 130};
    vx_Event(0, 2, codes, sizeof codes);
}

void TestLiveBench::changesAreTakenUpWithinHalfASecond()
{
    QElapsedTimer timer;
    qint64 fastest = 100000;
    for (int round = 0; round < 3; ++round) {
        timer.start();
        edit("B", "attached", round % 2 ? "no" : "yes");
        QTRY_COMPARE(cameraCount(), round % 2 ? 1 : 2);
        fastest = std::min(fastest, timer.elapsed());
    }
    QVERIFY2(fastest < 500, qPrintable(QString::number(fastest)));
}

void TestLiveBench::theLensCapIsTakenUpByAnOpenCamera()
{
    OpenedCamera camera(1);
    QVERIFY(brightest(camera) < 20);
    edit("A", "lens cap", "off");
    QTRY_VERIFY(brightest(camera) > 50);
    edit("A", "lens cap", "on");
    QTRY_VERIFY(brightest(camera) < 20);
}

void TestLiveBench::inUseIsTakenUp()
{
    edit("A", "in use", "yes");
    QTRY_VERIFY(isInUse(0));
    QVERIFY_EXCEPTION_THROWN(OpenedCamera(1), std::runtime_error);
}

void TestLiveBench::aBurstOfFailedFrames()
{
    OpenedCamera camera(1);
    camera.capture();
    edit("A", "failed frames", "3");
    for (int i = 0; i < 3; ++i)
        QCOMPARE(waitFor(camera.handle, {8}, Patience), 8u);
    QCOMPARE(waitFor(camera.handle, {8}, 100), 0u);
}

void TestLiveBench::aResetOfTheStoredList()
{
    const OpenedCamera camera(1);
    QCOMPARE(sendList(camera.handle, 33036, {{1, 1}, {2, 2}}), 0);
    QVERIFY(QFile::exists(folder().filePath("storage/A.hotpixels")));
    QCOMPARE(countOf(camera.handle, 33034), 2u);
    edit("A", "list resets", "1");
    QTRY_COMPARE(countOf(camera.handle, 33034), 0u);
}

void TestLiveBench::aNewSizeActsAtTheNextOpen()
{
    {
        OpenedCamera camera(1);
        edit("A", "size", "128 x 48");
        edit("A", "lens cap", "off");
        QTRY_VERIFY(brightest(camera) > 50);
        std::int32_t size[2] = {};
        QCOMPARE(vx_AOI(camera.handle, 16, size, 8), 0);
        QCOMPARE(size[0], 64);
    }
    const OpenedCamera camera(1);
    QCOMPARE(camera.width, 128);
}

void TestLiveBench::aCameraLeavingTheFileIsUnplugged()
{
    writeBench("[camera C]\nsize = 16 x 16\n\n[camera D]\nsize = 16 x 16\n");
    QTRY_COMPARE(cameraCount(), 2);
    QVERIFY_EXCEPTION_THROWN(OpenedCamera(1), std::runtime_error);
    const OpenedCamera camera(3);
    QCOMPARE(camera.width, 16);
}

void TestLiveBench::aBrokenFileLeavesTheLastGoodState()
{
    edit("B", "attached", "yes");
    QTRY_COMPARE(cameraCount(), 2);
    writeBench("[camera A]\nattached = perhaps\n");
    QTRY_VERIFY(complaints().contains("my.bench: line 2: attached"));
    QCOMPARE(cameraCount(), 2);
    QVERIFY(QFile::remove(benchPath()));
    QTRY_VERIFY(complaints().contains("my.bench: cannot be read"));
    QCOMPARE(cameraCount(), 2);
    QCOMPARE(complaints().count('\n'), 2);
}

/// The complaint tells that the library has looked at the empty file twice.
void TestLiveBench::aFileThatIsBeingWrittenUnplugsNothing()
{
    enableEvents(0, {129, 130});
    writeBench("");
    QTRY_VERIFY(complaints().contains("my.bench: is empty"));
    QCOMPARE(cameraCount(), 1);
    writeBench(Start + "\n[camera C]\nsize = 16 x 16\n");
    QCOMPARE(waitFor(0, {129, 130}, Patience), 130u);
    QCOMPARE(cameraCount(), 2);
    QCOMPARE(waitFor(0, {129}, 0), 0u);
    std::uint32_t codes[] = {129, 130};
    vx_Event(0, 2, codes, sizeof codes);
}

void TestLiveBench::aFirmwareUploadIsAskedForAgain()
{
    edit("A", "firmware upload", "20 ms");
    std::uint32_t handle = 0;
    const auto open = [&handle](std::uint32_t flags) {
        handle = 1 | flags;
        const std::int32_t status = vx_InitCamera(&handle, nullptr);
        if (status == 0)
            vx_ExitCamera(handle);
        return status;
    };
    QTRY_COMPARE(open(DeviceFlag), 184);
    QCOMPARE(open(DeviceFlag | UploadFlag), 0);
    edit("A", "in use", "yes");
    QTRY_VERIFY(isInUse(0));
    edit("A", "in use", "no");
    QTRY_VERIFY(!isInUse(0));
    QCOMPARE(open(DeviceFlag), 0);
    edit("A", "firmware upload", "30 ms");
    QTRY_COMPARE(open(DeviceFlag), 184);
    edit("A", "firmware upload", "no");
    QTRY_COMPARE(open(DeviceFlag), 0);
}

void TestLiveBench::replayFoldersAreRelativeToTheFile()
{
    QVERIFY(QDir(folder().path()).mkdir("frames"));
    QFile frame(folder().filePath("frames/1.pgm"));
    QVERIFY(frame.open(QIODevice::WriteOnly));
    frame.write("P5 20 20 255\n" + QByteArray(400, '\x21'));
    frame.close();
    edit("A", "replay", "frames");
    edit("A", "in use", "yes");
    QTRY_VERIFY(isInUse(0));
    edit("A", "in use", "no");
    QTRY_VERIFY(!isInUse(0));
    OpenedCamera camera(1);
    QCOMPARE(camera.width, 20);
    QCOMPARE(brightest(camera), 0x21);
}

void TestLiveBench::nothingIsLogged()
{
    cameraCount();
    QVERIFY(kelvosim::log().empty());
}

QTEST_GUILESS_MAIN(TestLiveBench)
#include "tst_livebench.moc"
