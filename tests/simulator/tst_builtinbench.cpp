// SPDX-License-Identifier: MIT
// The cameras that are there when nobody says anything, and where their lists are kept.

#include "programside.h"

#include <QDir>
#include <QTemporaryDir>

#include <thread>

using namespace programside;

class TestBuiltinBench : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void thereAreThreeCameras();
    void listsAreKeptInTheDataFolder();
    void exitFindsThreadsStillWaiting();

private:
    QTemporaryDir folder;
};

void TestBuiltinBench::initTestCase()
{
    qunsetenv("KELVOSIM_BENCH");
    qunsetenv("KELVOSIM_STORAGE");
    qputenv("XDG_DATA_HOME", folder.path().toUtf8());
}

void TestBuiltinBench::thereAreThreeCameras()
{
    std::int32_t count = 0;
    QCOMPARE(vx_GetNumberOfCameras(&count), 0);
    QCOMPARE(count, 3);
    const OpenedCamera mono(1);
    const OpenedCamera bayer(2);
    const OpenedCamera plain(3);
    QCOMPARE(mono.width, 1280);
    QCOMPARE(mono.height, 1024);
    QCOMPARE(vx_SetColorMode(mono.handle, 32768), 6);
    QCOMPARE(bayer.width, 2592);
    QCOMPARE(bayer.height, 1944);
    QCOMPARE(vx_SetColorMode(bayer.handle, 32768), 11);
    QCOMPARE(countOf(mono.handle, 32769) & 2, 2u);
    QCOMPARE(countOf(plain.handle, 32769) & 2, 0u);
}

void TestBuiltinBench::listsAreKeptInTheDataFolder()
{
    const OpenedCamera camera(1);
    QCOMPARE(sendList(camera.handle, 33036, {{1, 1}}), 0);
    QCOMPARE(QDir(folder.filePath("kelvo-simulator")).entryList(QDir::Files),
             QStringList{"KV00001280.hotpixels"});
}

/// The process must end quietly although a thread waits in the library and a camera captures.
void TestBuiltinBench::exitFindsThreadsStillWaiting()
{
    static auto *const camera = new OpenedCamera(1);
    camera->capture();
    std::thread([] { waitFor(camera->handle, {128}, 0xFFFFFFFF); }).detach();
    QTRY_COMPARE(kelvosim::waitingThreads(), 1);
}

QTEST_GUILESS_MAIN(TestBuiltinBench)
#include "tst_builtinbench.moc"
