// SPDX-License-Identifier: MIT
// The commands of vx_HotPixel: lists, counts, capacity, storage across runs and list files.

#include "programside.h"

#include <QTemporaryDir>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>
#include <thread>

using namespace programside;
using kelvosim::Pixel;

namespace {

enum Command : std::uint32_t {
    Modes = 32769,
    QueryCurrent = 33024,
    CurrentCount = 33025,
    CurrentList = 33026,
    SetCurrent = 33027,
    FactoryCount = 33031,
    FactoryList = 33032,
    UserCount = 33034,
    UserList = 33035,
    WriteUser = 33036,
    MaxUserCount = 33037,
    DeleteUser = 33038,
    SaveFile = 33041,
    LoadFile = 33042,
};

const std::vector<Pixel> SomeList{{1, 2}, {65535, 0}, {1, 2}, {300, 400}};

std::int32_t fileCommand(std::uint32_t handle, Command command, const QString &path)
{
    std::wstring wide = path.toStdWString();
    return vx_HotPixel(handle, command, &wide[0], 0);
}

/// Not through QFile, whose file names depend on the locale.
QByteArray contentOf(const QString &path)
{
    std::ifstream in(path.toUtf8().constData(), std::ios::binary);
    return QByteArray::fromStdString({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
}

bool writeContent(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size();
}

std::vector<Pixel> currentList(std::uint32_t handle)
{
    return receiveList(handle, CurrentCount, CurrentList);
}

} // namespace

class TestHotPixelMemory : public QObject
{
    Q_OBJECT

private slots:
    void init() { kelvosim::reset(); }

    void theFactoryListHoldsTheStrongest();
    void aGivenFactoryListIsKept();
    void theCurrentListIsThereOnlyOnceSet();
    void theStoredListIsWrittenAndRead();
    void theStoredListIsDeleted();
    void capacityBoundsTheStoredList();
    void camerasWithoutMemoryStoreNothing();
    void sizesAreCheckedExactly();
    void aLyingCountWord();
    void lyingCounts();
    void listsOutliveClosing();
    void listsOutliveTheProgramInTheirFolder();
    void unstorableListsAreReported();
    void damagedStoredListsCountAsNone();
    void serialNumbersMakeSafeFileNames();
    void listFilesGoRoundWithWidePaths();
    void aMissingOrUnwritableListFileIsReported();
    void everyDamagedByteOfAListFileIsFound();
    void shortenedAndLengthenedListFilesAreRefused();
    void arbitraryListFilesNeverPass();
    void savingNeedsACurrentList();
    void threadsShareTheMemory();
};

void TestHotPixelMemory::theFactoryListHoldsTheStrongest()
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.hotPixels = 40;
    kelvosim::addCamera(spec);
    const OpenedCamera camera;
    const std::vector<kelvosim::HotPixel> planted = kelvosim::plantedHotPixels(Serial);
    const std::vector<Pixel> list = receiveList(camera.handle, FactoryCount, FactoryList);
    QCOMPARE(list, (std::vector<Pixel>{planted[0].at, planted[1].at, planted[2].at, planted[3].at}));
    QCOMPARE(countOf(camera.handle, UserCount), 0u);
    QVERIFY(receiveList(camera.handle, UserCount, UserList).empty());
}

void TestHotPixelMemory::aGivenFactoryListIsKept()
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.factoryList = SomeList;
    kelvosim::addCamera(spec);
    const OpenedCamera camera;
    QCOMPARE(receiveList(camera.handle, FactoryCount, FactoryList), SomeList);
    kelvosim::setFactoryList(Serial, {});
    QCOMPARE(countOf(camera.handle, FactoryCount), 0u);
}

void TestHotPixelMemory::theCurrentListIsThereOnlyOnceSet()
{
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    std::uint32_t count = 0;
    QVERIFY(vx_HotPixel(camera.handle, QueryCurrent, nullptr, 0) != 0);
    QVERIFY(vx_HotPixel(camera.handle, CurrentCount, &count, 4) != 0);
    QCOMPARE(sendList(camera.handle, SetCurrent, SomeList), 0);
    QCOMPARE(vx_HotPixel(camera.handle, QueryCurrent, nullptr, 0), 0);
    QCOMPARE(currentList(camera.handle), SomeList);
    QCOMPARE(kelvosim::currentUserList(Serial), SomeList);
    QCOMPARE(sendList(camera.handle, SetCurrent, {}), 0);
    QCOMPARE(vx_HotPixel(camera.handle, QueryCurrent, nullptr, 0), 0);
    QVERIFY(currentList(camera.handle).empty());
}

void TestHotPixelMemory::theStoredListIsWrittenAndRead()
{
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    QCOMPARE(sendList(camera.handle, WriteUser, SomeList), 0);
    QCOMPARE(receiveList(camera.handle, UserCount, UserList), SomeList);
    QCOMPARE(kelvosim::storedUserList(Serial), SomeList);
    QVERIFY(vx_HotPixel(camera.handle, QueryCurrent, nullptr, 0) != 0);
}

void TestHotPixelMemory::theStoredListIsDeleted()
{
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    sendList(camera.handle, WriteUser, SomeList);
    QCOMPARE(vx_HotPixel(camera.handle, DeleteUser, nullptr, 0), 0);
    QCOMPARE(countOf(camera.handle, UserCount), 0u);
}

void TestHotPixelMemory::capacityBoundsTheStoredList()
{
    kelvosim::CameraSpec spec = smallCamera();
    spec.capacity = 4;
    kelvosim::addCamera(spec);
    const OpenedCamera camera;
    QCOMPARE(countOf(camera.handle, MaxUserCount), 4u);
    QCOMPARE(sendList(camera.handle, WriteUser, SomeList), 0);
    std::vector<Pixel> longer = SomeList;
    longer.push_back({9, 9});
    QVERIFY(sendList(camera.handle, WriteUser, longer) != 0);
    QCOMPARE(errorText(camera.handle), std::string("The camera can't store so many hot pixels."));
    QCOMPARE(kelvosim::storedUserList(Serial), SomeList);
}

void TestHotPixelMemory::camerasWithoutMemoryStoreNothing()
{
    kelvosim::CameraSpec spec = smallCamera();
    kelvosim::addCamera(spec);
    spec.serial = "B";
    spec.deviceId = 8;
    spec.storesLists = false;
    kelvosim::addCamera(spec);
    const OpenedCamera storing;
    const OpenedCamera camera(8);
    QCOMPARE(countOf(storing.handle, Modes) & 2, 2u);
    QCOMPARE(countOf(camera.handle, Modes) & 2, 0u);
    QCOMPARE(countOf(camera.handle, MaxUserCount), 0u);
    QCOMPARE(countOf(camera.handle, FactoryCount), 0u);
    QCOMPARE(countOf(camera.handle, UserCount), 0u);
    QVERIFY(sendList(camera.handle, WriteUser, {{1, 1}}) != 0);
    QVERIFY(vx_HotPixel(camera.handle, DeleteUser, nullptr, 0) != 0);
    QCOMPARE(vx_HotPixel(camera.handle, 2, nullptr, 0), 0);
    QCOMPARE(vx_HotPixel(camera.handle, 0, nullptr, 0), 0);
}

void TestHotPixelMemory::sizesAreCheckedExactly()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::setStoredUserList(Serial, SomeList);
    const OpenedCamera camera;
    std::vector<std::uint16_t> words(100, 3);
    for (const std::uint32_t size : {0u, 2u, 16u, 17u, 20u})
        QVERIFY(vx_HotPixel(camera.handle, UserList, words.data(), size) != 0);
    QCOMPARE(words, std::vector<std::uint16_t>(100, 3));
    for (const std::uint32_t size : {0u, 1u, 2u, 13u, 16u})
        QVERIFY(vx_HotPixel(camera.handle, SetCurrent, words.data(), size) != 0);
    QCOMPARE(vx_HotPixel(camera.handle, SetCurrent, words.data(), 14), 0);
    QVERIFY(vx_HotPixel(camera.handle, UserCount, words.data(), 2) != 0);
    QVERIFY(vx_HotPixel(camera.handle, UserCount, nullptr, 4) != 0);
    QVERIFY(vx_HotPixel(camera.handle, UserList, nullptr, 18) != 0);
    QVERIFY(vx_HotPixel(camera.handle, DeleteUser, words.data(), 2) != 0);
    QVERIFY(vx_HotPixel(camera.handle, LoadFile, nullptr, 0) != 0);
    QVERIFY(vx_HotPixel(camera.handle, 1, nullptr, 0) != 0);
}

void TestHotPixelMemory::aLyingCountWord()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::setStoredUserList(Serial, {{1, 2}});
    const OpenedCamera camera;
    kelvosim::lieAboutListWord(60000);
    std::uint16_t words[4] = {0, 0, 0, 77};
    QCOMPARE(vx_HotPixel(camera.handle, UserList, words, 6), 0);
    QCOMPARE(words[0], std::uint16_t(60000));
    QCOMPARE(words[2], std::uint16_t(2));
    QCOMPARE(words[3], std::uint16_t(77));
    kelvosim::lieAboutListWord(-1);
    QCOMPARE(receiveList(camera.handle, UserCount, UserList), (std::vector<Pixel>{{1, 2}}));
}

void TestHotPixelMemory::lyingCounts()
{
    kelvosim::addCamera(smallCamera());
    kelvosim::setFactoryList(Serial, {{3, 4}, {5, 6}});
    kelvosim::setStoredUserList(Serial, {{1, 2}});
    const OpenedCamera camera;
    for (const std::int32_t lie : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        kelvosim::lieAboutCounts(lie);
        QCOMPARE(static_cast<std::int32_t>(countOf(camera.handle, FactoryCount)), lie);
        QCOMPARE(static_cast<std::int32_t>(countOf(camera.handle, UserCount)), lie);
    }
    std::uint16_t words[3] = {};
    QCOMPARE(vx_HotPixel(camera.handle, UserList, words, 6), 0);
    QCOMPARE(words[0], std::uint16_t(1));
    kelvosim::lieAboutCounts(std::nullopt);
    QCOMPARE(countOf(camera.handle, FactoryCount), 2u);
    QCOMPARE(countOf(camera.handle, UserCount), 1u);
    kelvosim::lieAboutCounts(-1);
    kelvosim::reset();
    kelvosim::addCamera(smallCamera());
    const OpenedCamera next;
    QCOMPARE(countOf(next.handle, UserCount), 0u);
}

void TestHotPixelMemory::listsOutliveClosing()
{
    kelvosim::addCamera(smallCamera());
    {
        const OpenedCamera camera;
        sendList(camera.handle, WriteUser, SomeList);
        sendList(camera.handle, SetCurrent, SomeList);
    }
    const OpenedCamera camera;
    QCOMPARE(receiveList(camera.handle, UserCount, UserList), SomeList);
    QVERIFY(vx_HotPixel(camera.handle, QueryCurrent, nullptr, 0) != 0);
}

void TestHotPixelMemory::listsOutliveTheProgramInTheirFolder()
{
    const QTemporaryDir folder;
    const std::string place = folder.filePath("new/folder").toStdString();
    kelvosim::setStorageFolder(place);
    kelvosim::addCamera(smallCamera());
    {
        const OpenedCamera camera;
        QCOMPARE(sendList(camera.handle, WriteUser, SomeList), 0);
    }
    kelvosim::reset();
    kelvosim::addCamera(smallCamera());
    QVERIFY(kelvosim::storedUserList(Serial).empty());
    kelvosim::setStorageFolder(place);
    QCOMPARE(kelvosim::storedUserList(Serial), SomeList);
    const OpenedCamera camera;
    QCOMPARE(receiveList(camera.handle, UserCount, UserList), SomeList);
}

void TestHotPixelMemory::unstorableListsAreReported()
{
    const QTemporaryDir folder;
    const QString obstacle = folder.filePath("file");
    QVERIFY(writeContent(obstacle, "no folder"));
    kelvosim::setStorageFolder(obstacle.toStdString());
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    QVERIFY(sendList(camera.handle, WriteUser, SomeList) != 0);
    QCOMPARE(countOf(camera.handle, UserCount), 0u);
}

void TestHotPixelMemory::damagedStoredListsCountAsNone()
{
    const QTemporaryDir folder;
    kelvosim::setStorageFolder(folder.path().toStdString());
    kelvosim::addCamera(smallCamera());
    kelvosim::setStoredUserList(Serial, SomeList);
    const QString path = folder.filePath(QString(Serial) + ".hotpixels");
    QVERIFY(writeContent(path, contentOf(path).replace(20, 1, "?")));
    const OpenedCamera camera;
    QCOMPARE(countOf(camera.handle, UserCount), 0u);
    QCOMPARE(sendList(camera.handle, WriteUser, SomeList), 0);
    QCOMPARE(receiveList(camera.handle, UserCount, UserList), SomeList);
}

void TestHotPixelMemory::serialNumbersMakeSafeFileNames()
{
    const QTemporaryDir folder;
    kelvosim::setStorageFolder(folder.path().toStdString());
    kelvosim::CameraSpec spec = smallCamera();
    spec.serial = "../a/b";
    kelvosim::addCamera(spec);
    kelvosim::setStoredUserList("../a/b", SomeList);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList{"%2E%2E%2Fa%2Fb.hotpixels"});
}

void TestHotPixelMemory::listFilesGoRoundWithWidePaths()
{
    const QTemporaryDir folder;
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    sendList(camera.handle, SetCurrent, SomeList);
    const QString path = folder.filePath(QString::fromUtf8("h\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\xA5.bin"));
    QCOMPARE(fileCommand(camera.handle, SaveFile, path), 0);
    QCOMPARE(contentOf(path).size(), 12 + 4 * 4 + 4);
    QVERIFY(contentOf(path).startsWith("KVHP"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    sendList(camera.handle, SetCurrent, {});
    QCOMPARE(fileCommand(camera.handle, LoadFile, path), 0);
    QCOMPARE(currentList(camera.handle), SomeList);
    QCOMPARE(countOf(camera.handle, UserCount), 0u);
    QCOMPARE(std::remove(path.toUtf8().constData()), 0);
}

void TestHotPixelMemory::aMissingOrUnwritableListFileIsReported()
{
    const QTemporaryDir folder;
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    sendList(camera.handle, SetCurrent, SomeList);
    QCOMPARE(fileCommand(camera.handle, LoadFile, folder.filePath("none.bin")), 50);
    QCOMPARE(fileCommand(camera.handle, LoadFile, folder.path()), 50);
    QVERIFY(fileCommand(camera.handle, SaveFile, folder.filePath("none/file.bin")) != 0);
    QVERIFY(fileCommand(camera.handle, SaveFile, folder.path()) != 0);
    QCOMPARE(currentList(camera.handle), SomeList);
    QVERIFY(QDir(folder.path()).entryList(QDir::Files).isEmpty());
}

void TestHotPixelMemory::everyDamagedByteOfAListFileIsFound()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("list.bin");
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    sendList(camera.handle, SetCurrent, {{7, 8}, {9, 10}});
    QCOMPARE(fileCommand(camera.handle, SaveFile, path), 0);
    const QByteArray sound = contentOf(path);
    sendList(camera.handle, SetCurrent, SomeList);
    for (int at = 0; at < sound.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            QByteArray damaged = sound;
            damaged[at] = static_cast<char>(damaged[at] ^ (1 << bit));
            QVERIFY(writeContent(path, damaged));
            QCOMPARE(fileCommand(camera.handle, LoadFile, path), 51);
            QCOMPARE(kelvosim::currentUserList(Serial), SomeList);
        }
    }
}

void TestHotPixelMemory::shortenedAndLengthenedListFilesAreRefused()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("list.bin");
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    sendList(camera.handle, SetCurrent, SomeList);
    fileCommand(camera.handle, SaveFile, path);
    const QByteArray sound = contentOf(path);
    for (int length = 0; length < sound.size(); ++length) {
        QVERIFY(writeContent(path, sound.left(length)));
        QCOMPARE(fileCommand(camera.handle, LoadFile, path), 51);
    }
    for (const QByteArray &more : {sound + '\0', sound + sound, sound + QByteArray(1 << 20, 'x')}) {
        QVERIFY(writeContent(path, more));
        QCOMPARE(fileCommand(camera.handle, LoadFile, path), 51);
    }
    QCOMPARE(currentList(camera.handle), SomeList);
}

void TestHotPixelMemory::arbitraryListFilesNeverPass()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("list.bin");
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    quint32 random = 12345;
    for (int round = 0; round < 300; ++round) {
        QByteArray bytes("KVHP\1\0\0\0", 8);
        for (int i = round % 60; i > 0; --i) {
            random = random * 1664525 + 1013904223;
            bytes.append(static_cast<char>(random >> 24));
        }
        QVERIFY(writeContent(path, bytes));
        QCOMPARE(fileCommand(camera.handle, LoadFile, path), 51);
    }
    QVERIFY(vx_HotPixel(camera.handle, QueryCurrent, nullptr, 0) != 0);
}

void TestHotPixelMemory::savingNeedsACurrentList()
{
    const QTemporaryDir folder;
    kelvosim::addCamera(smallCamera());
    const OpenedCamera camera;
    QVERIFY(fileCommand(camera.handle, SaveFile, folder.filePath("list.bin")) != 0);
    QVERIFY(!QFile::exists(folder.filePath("list.bin")));
}

void TestHotPixelMemory::threadsShareTheMemory()
{
    kelvosim::addCamera(smallCamera(true));
    kelvosim::overrideFrameRate(Serial, 1000);
    OpenedCamera camera;
    camera.capture();
    vx_HotPixel(camera.handle, 2, nullptr, 0);
    std::thread writer([&camera] {
        for (std::uint16_t i = 0; i < 200; ++i)
            sendList(camera.handle, i % 2 ? WriteUser : SetCurrent, std::vector<Pixel>(i % 7, Pixel{i, 3}));
    });
    for (int i = 0; i < 200; ++i)
        countOf(camera.handle, UserCount);
    writer.join();
    QCOMPARE(countOf(camera.handle, UserCount), 199u % 7);
}

QTEST_GUILESS_MAIN(TestHotPixelMemory)
#include "tst_hotpixelmemory.moc"
