// SPDX-License-Identifier: MIT
// Tests the exchange of hot pixel lists with a camera's memory, through the list that people see.
#include "badpixelstorage.h"

#include "announcements.h"
#include "badpixellistmodelpeer.h"
#include "camera.h"
#include "modeltext.h"
#include "testcamera.h"

#include <QSignalSpy>
#include <QtTest>

#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>

namespace {

using Pixels = std::vector<kelvosim::Pixel>;

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

Pixels pixels(int count)
{
    Pixels list;
    for (int i = 0; i < count; ++i) {
        list.push_back({static_cast<std::uint16_t>(i % 64), static_cast<std::uint16_t>(i / 64)});
    }
    return list;
}

std::vector<Badpixel> entries(int count, Pixelclass kind)
{
    std::vector<Badpixel> list;
    for (const kelvosim::Pixel &pixel : pixels(count)) {
        list.push_back({pixel.x, pixel.y, kind});
    }
    return list;
}

std::vector<kelvosim::Call> hotpixelCalls()
{
    std::vector<kelvosim::Call> calls;
    for (const kelvosim::Call &call : kelvosim::log()) {
        if (call.function == "vx_HotPixel") {
            calls.push_back(call);
        }
    }
    return calls;
}

// The commands sent, in order.
std::vector<int> commands()
{
    std::vector<int> list;
    for (const kelvosim::Call &call : hotpixelCalls()) {
        list.push_back(static_cast<int>(call.command));
    }
    return list;
}

// The size argument of the last call of a command; -1 when there was none.
int sizeOf(kelvo::HotpixelCommand command)
{
    int size = -1;
    for (const kelvosim::Call &call : hotpixelCalls()) {
        if (call.command == command) {
            size = static_cast<int>(call.numbers.back());
        }
    }
    return size;
}

// The words of the list last sent with a command.
std::vector<std::uint16_t> wordsSent(kelvo::HotpixelCommand command)
{
    std::vector<std::uint16_t> words;
    for (const kelvosim::Call &call : hotpixelCalls()) {
        if (call.command == command) {
            words.resize(call.data.size() / sizeof(std::uint16_t));
            std::memcpy(words.data(), call.data.data(), words.size() * sizeof(std::uint16_t));
        }
    }
    return words;
}

} // namespace

class TestBadpixelStorage : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void readingSendsItsCommandsInOrder();
    void readingListsFactoryThenUserEntries();
    void readingReplacesWhateverWasShown();
    void readingWithoutACameraEmptiesTheList();
    void readingFromAClosedCameraEmptiesTheList();
    void readingFromAClosedCameraAsksWithoutAHandle();
    void readingFollowsTheOpeningOfACamera();
    void readingTakesAThousandEntriesOfEachKind();
    void emptyListsAreNotRead();
    void negativeCountsReadNoList_data();
    void negativeCountsReadNoList();
    void moreThanAThousandFactoryEntriesAreSkippedSilently();
    void moreThanAThousandUserEntriesAreSkippedSilently();
    void failingListCommandsSkipTheirList_data();
    void failingListCommandsSkipTheirList();
    void failingCountsKeepWhatWasThere();
    void cameraWithoutStorageHasNoLists();
    void userRowsAreAnnouncedFromZero();
    void eachListIsAnnouncedAroundItsRows();
    void aListWordTooLargeIsCut();
    void aListWordTooSmallIsBelieved();
    void aListWordOfZeroAnnouncesNothing();

    void aListThatFillsTheMemoryIsRefused();
    void aListOneShortOfTheMemoryIsWritten();
    void allRowsButFactoryOnesCountAgainstTheCapacity();
    void aFactoryListThatWasSkippedCountsAgainstTheRows();
    void aNegativeFactoryCountAddsToTheRows_data();
    void aNegativeFactoryCountAddsToTheRows();
    void aListOfFactoryEntriesDeletesTheStoredList();
    void onlyUserEntriesAreWrittenInListOrder();
    void refusedCommandsThrow_data();
    void refusedCommandsThrow();
    void aFailedWriteLeavesTheListUnchanged();
    void aListTooLongForItsCountWordIsNotSent();
    void writingWithoutACameraThrows();
    void writtenListsSurviveClosingAndOpening();

private:
    void openCamera(const Pixels &factory, const Pixels &user, std::uint32_t capacity = 5000);
    QString writeFailure();

    std::unique_ptr<Camera> camera;
    std::unique_ptr<BadpixelListModel> model;
};

void TestBadpixelStorage::cleanup()
{
    model.reset();
    camera.reset();
    QCOMPARE(kelvosim::openHandles(), 0);
}

void TestBadpixelStorage::openCamera(const Pixels &factory, const Pixels &user, std::uint32_t capacity)
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.capacity = capacity;
    testcamera::resetTo(spec);
    kelvosim::setFactoryList(testcamera::Serial, factory);
    kelvosim::setStoredUserList(testcamera::Serial, user);
    camera = std::make_unique<Camera>();
    model = std::make_unique<BadpixelListModel>();
    camera->open(testcamera::Device);
    kelvosim::clearLog();
}

QString TestBadpixelStorage::writeFailure()
{
    try {
        model->writeBadpixelList(camera.get());
    } catch (const std::runtime_error &failure) {
        return QString(failure.what());
    }
    return QString();
}

void TestBadpixelStorage::readingSendsItsCommandsInOrder()
{
    openCamera(pixels(3), pixels(5));
    model->getBadpixelList(camera.get());
    QCOMPARE(commands(), (std::vector<int>{33037, 33031, 33032, 33034, 33035}));
    QCOMPARE(sizeOf(kelvo::HotpixelGetMaxUserListCount), 4);
    QCOMPARE(sizeOf(kelvo::HotpixelGetFactoryListCount), 4);
    QCOMPARE(sizeOf(kelvo::HotpixelGetFactoryList), 4 * 3 + 2);
    QCOMPARE(sizeOf(kelvo::HotpixelGetUserListCount), 4);
    QCOMPARE(sizeOf(kelvo::HotpixelGetUserList), 4 * 5 + 2);
}

void TestBadpixelStorage::readingListsFactoryThenUserEntries()
{
    openCamera({{9, 8}, {7, 6}}, {{60, 40}, {1, 2}}, 123);
    model->getBadpixelList(camera.get());
    QCOMPARE(rowTexts(*model), (QStringList{"9 8 ignore", "7 6 ignore", "60 40 user", "1 2 user"}));
    QCOMPARE(model->badpixel(1).pixelclass, std::uint8_t(Factory));
    QCOMPARE(model->badpixel(2).pixelclass, std::uint8_t(User));
    QCOMPARE(model->maximumUserEntries(), 123);
    QCOMPARE(model->factoryEntries(), 2);
    QCOMPARE(model->findBadpixel(60, 40, 1).row(), 2);
    QVERIFY(!model->addBadpixel({9, 8}));
}

void TestBadpixelStorage::readingReplacesWhateverWasShown()
{
    openCamera({}, {{1, 2}});
    model->addBadpixel({30, 30});
    QSignalSpy removed(model.get(), &QAbstractItemModel::rowsRemoved);
    model->getBadpixelList(camera.get());
    model->getBadpixelList(camera.get());
    QCOMPARE(rowTexts(*model), QStringList{"1 2 user"});
    QCOMPARE(ranges(removed), (QStringList{"0-0", "0-0"}));
}

void TestBadpixelStorage::readingWithoutACameraEmptiesTheList()
{
    openCamera({{9, 8}}, {{1, 2}}, 77);
    model->getBadpixelList(camera.get());
    kelvosim::clearLog();
    model->getBadpixelList(nullptr);
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(model->maximumUserEntries(), 77);
    QCOMPARE(model->factoryEntries(), 1);
    QVERIFY(commands().empty());
}

void TestBadpixelStorage::readingFromAClosedCameraEmptiesTheList()
{
    openCamera({{9, 8}}, {{1, 2}});
    model->getBadpixelList(camera.get());
    camera->close();
    model->getBadpixelList(camera.get());
    QCOMPARE(model->rowCount(), 0);
}

void TestBadpixelStorage::readingFromAClosedCameraAsksWithoutAHandle()
{
    openCamera({{9, 8}}, {{1, 2}});
    model->getBadpixelList(camera.get());
    camera->close();
    kelvosim::clearLog();
    model->getBadpixelList(camera.get());
    // All calls fail, so the factory count of before is still there to ask for the list.
    QCOMPARE(commands(), (std::vector<int>{33037, 33031, 33032, 33034}));
    for (const kelvosim::Call &call : hotpixelCalls()) {
        QCOMPARE(call.handle, kelvo::NoCamera);
        QVERIFY(call.result != kelvo::Success);
    }
    QCOMPARE(model->maximumUserEntries(), 5000);
    QCOMPARE(model->factoryEntries(), 1);
}

void TestBadpixelStorage::readingFollowsTheOpeningOfACamera()
{
    openCamera({{9, 8}}, {{1, 2}});
    camera->close();
    connect(camera.get(), &Camera::cameraOpened, model.get(), &BadpixelListModel::getBadpixelList);
    connect(camera.get(), &Camera::cameraClosed, model.get(), &BadpixelListModel::clearBadpixelList);
    camera->open(testcamera::Device);
    QCOMPARE(model->rowCount(), 2);
    camera->close();
    QCOMPARE(model->rowCount(), 0);
}

void TestBadpixelStorage::readingTakesAThousandEntriesOfEachKind()
{
    openCamera(pixels(1000), pixels(1000));
    model->getBadpixelList(camera.get());
    QCOMPARE(model->rowCount(), 2000);
    QCOMPARE(model->badpixel(999).pixelclass, std::uint8_t(Factory));
    QCOMPARE(model->badpixel(1999).pixelclass, std::uint8_t(User));
    QCOMPARE(model->badpixel(1999).y, std::uint16_t(999 / 64));
}

void TestBadpixelStorage::emptyListsAreNotRead()
{
    openCamera({}, {});
    model->getBadpixelList(camera.get());
    QCOMPARE(commands(), (std::vector<int>{33037, 33031, 33034}));
    QCOMPARE(model->rowCount(), 0);
}

void TestBadpixelStorage::negativeCountsReadNoList_data()
{
    QTest::addColumn<std::int32_t>("count");
    QTest::newRow("-1") << std::int32_t(-1);
    QTest::newRow("lowest") << lowest;
}

void TestBadpixelStorage::negativeCountsReadNoList()
{
    QFETCH(std::int32_t, count);
    openCamera({{9, 8}}, {{1, 2}});
    kelvosim::lieAboutCounts(count);
    model->getBadpixelList(camera.get());
    QCOMPARE(commands(), (std::vector<int>{33037, 33031, 33034}));
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(model->factoryEntries(), count);
}

void TestBadpixelStorage::moreThanAThousandFactoryEntriesAreSkippedSilently()
{
    openCamera(pixels(1001), {{1, 2}});
    model->getBadpixelList(camera.get());
    QCOMPARE(rowTexts(*model), QStringList{"1 2 user"});
    QCOMPARE(model->factoryEntries(), 1001);
    QCOMPARE(commands(), (std::vector<int>{33037, 33031, 33034, 33035}));
}

void TestBadpixelStorage::moreThanAThousandUserEntriesAreSkippedSilently()
{
    openCamera({{9, 8}}, pixels(1001));
    model->getBadpixelList(camera.get());
    QCOMPARE(rowTexts(*model), QStringList{"9 8 ignore"});
    QCOMPARE(commands(), (std::vector<int>{33037, 33031, 33032, 33034}));
}

void TestBadpixelStorage::failingListCommandsSkipTheirList_data()
{
    const QString factory = "9 8 ignore";
    const QString user = "1 2 user";
    QTest::addColumn<int>("command");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("factory count") << 33031 << QStringList{user};
    QTest::newRow("factory list") << 33032 << QStringList{user};
    QTest::newRow("user count") << 33034 << QStringList{factory};
    QTest::newRow("user list") << 33035 << QStringList{factory};
    QTest::newRow("capacity") << 33037 << QStringList{factory, user};
}

void TestBadpixelStorage::failingListCommandsSkipTheirList()
{
    QFETCH(int, command);
    QFETCH(QStringList, rows);
    openCamera({{9, 8}}, {{1, 2}});
    kelvosim::failCall("vx_HotPixel", kelvosim::EveryCall, 1, "refused", command);
    model->getBadpixelList(camera.get());
    QCOMPARE(rowTexts(*model), rows);
}

void TestBadpixelStorage::failingCountsKeepWhatWasThere()
{
    openCamera({{9, 8}, {7, 6}}, {}, 55);
    model->getBadpixelList(camera.get());
    kelvosim::failCall("vx_HotPixel", kelvosim::EveryCall, 1, "refused");
    model->getBadpixelList(camera.get());
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(model->maximumUserEntries(), 55);
    QCOMPARE(model->factoryEntries(), 2);
}

void TestBadpixelStorage::cameraWithoutStorageHasNoLists()
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.storesLists = false;
    testcamera::resetTo(spec);
    camera = std::make_unique<Camera>();
    model = std::make_unique<BadpixelListModel>();
    camera->open(testcamera::Device);
    model->getBadpixelList(camera.get());
    QCOMPARE(model->rowCount(), 0);
    QVERIFY(!writeFailure().isEmpty());
}

void TestBadpixelStorage::userRowsAreAnnouncedFromZero()
{
    openCamera(pixels(3), pixels(5));
    QSignalSpy inserted(model.get(), &QAbstractItemModel::rowsInserted);
    model->getBadpixelList(camera.get());
    QCOMPARE(ranges(inserted), (QStringList{"0-2", "0-4"}));
    QCOMPARE(model->rowCount(), 8);
}

void TestBadpixelStorage::eachListIsAnnouncedAroundItsRows()
{
    openCamera(pixels(3), pixels(5));
    QStringList told;
    const auto tell = [&](const QString &what) { told << QString("%1 %2").arg(what).arg(model->rowCount()); };
    connect(model.get(), &QAbstractItemModel::rowsAboutToBeInserted, [&] { tell("before:"); });
    connect(model.get(), &QAbstractItemModel::rowsInserted, [&] { tell("after:"); });
    model->getBadpixelList(camera.get());
    QCOMPARE(told, (QStringList{"before: 0", "after: 3", "before: 3", "after: 8"}));
}

void TestBadpixelStorage::aListWordTooLargeIsCut()
{
    openCamera({{9, 8}, {7, 6}}, {{1, 2}});
    kelvosim::lieAboutListWord(65535);
    model->getBadpixelList(camera.get());
    QCOMPARE(rowTexts(*model), (QStringList{"9 8 ignore", "7 6 ignore", "1 2 user"}));
}

void TestBadpixelStorage::aListWordTooSmallIsBelieved()
{
    openCamera({{9, 8}, {7, 6}}, {{1, 2}, {3, 4}});
    kelvosim::lieAboutListWord(1);
    QSignalSpy inserted(model.get(), &QAbstractItemModel::rowsInserted);
    model->getBadpixelList(camera.get());
    QCOMPARE(rowTexts(*model), (QStringList{"9 8 ignore", "1 2 user"}));
    QCOMPARE(ranges(inserted), (QStringList{"0-0", "0-0"}));
}

void TestBadpixelStorage::aListWordOfZeroAnnouncesNothing()
{
    openCamera({{9, 8}}, {{1, 2}});
    kelvosim::lieAboutListWord(0);
    QSignalSpy inserted(model.get(), &QAbstractItemModel::rowsInserted);
    model->getBadpixelList(camera.get());
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(inserted.count(), 0);
}

void TestBadpixelStorage::aListThatFillsTheMemoryIsRefused()
{
    openCamera(pixels(20), {}, 100);
    model->getBadpixelList(camera.get());
    BadpixelListModelPeer::append(*model, entries(100, User));
    kelvosim::clearLog();
    QCOMPARE(model->rowCount(), 120);
    QCOMPARE(writeFailure(), QString("Can't write more than 100 hot pixel entries."));
    QVERIFY(commands().empty());
}

void TestBadpixelStorage::aListOneShortOfTheMemoryIsWritten()
{
    openCamera(pixels(20), {}, 100);
    model->getBadpixelList(camera.get());
    BadpixelListModelPeer::append(*model, entries(99, User));
    QCOMPARE(model->rowCount(), 119);
    QCOMPARE(writeFailure(), QString());
    QCOMPARE(kelvosim::storedUserList(testcamera::Serial), pixels(99));
}

void TestBadpixelStorage::allRowsButFactoryOnesCountAgainstTheCapacity()
{
    openCamera({}, {}, 3);
    model->getBadpixelList(camera.get());
    BadpixelListModelPeer::append(*model, entries(2, Ignore));
    model->addBadpixel({50, 40});
    QCOMPARE(writeFailure(), QString("Can't write more than 3 hot pixel entries."));
    // What counts as a factory row is what the camera said, whatever became of the rows since.
    model->clearBadpixelList();
    BadpixelListModelPeer::append(*model, entries(3, Factory));
    QCOMPARE(writeFailure(), QString("Can't write more than 3 hot pixel entries."));
}

void TestBadpixelStorage::aFactoryListThatWasSkippedCountsAgainstTheRows()
{
    openCamera(pixels(1001), {}, 10);
    model->getBadpixelList(camera.get());
    BadpixelListModelPeer::append(*model, entries(20, User));
    kelvosim::clearLog();
    // 20 rows less 1001 are under the capacity, so it is left to the camera to refuse them.
    QCOMPARE(writeFailure(), QString("Error writing hotpixel list"));
    QCOMPARE(commands(), std::vector<int>{33036});
    QCOMPARE(wordsSent(kelvo::HotpixelWriteUserList).front(), std::uint16_t(20));
}

void TestBadpixelStorage::aNegativeFactoryCountAddsToTheRows_data()
{
    QTest::addColumn<std::int32_t>("count");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("failure");
    const QString refused = "Can't write more than 10 hot pixel entries.";
    QTest::newRow("-1, room left") << std::int32_t(-1) << 8 << QString();
    QTest::newRow("-1, full") << std::int32_t(-1) << 9 << refused;
    QTest::newRow("lowest, no row") << lowest << 0 << refused;
    QTest::newRow("lowest, a row") << lowest << 1 << refused;
}

void TestBadpixelStorage::aNegativeFactoryCountAddsToTheRows()
{
    QFETCH(std::int32_t, count);
    QFETCH(int, rows);
    QFETCH(QString, failure);
    openCamera({}, {}, 10);
    kelvosim::lieAboutCounts(count);
    model->getBadpixelList(camera.get());
    BadpixelListModelPeer::append(*model, entries(rows, User));
    kelvosim::clearLog();
    QCOMPARE(writeFailure(), failure);
    QCOMPARE(commands(), failure.isEmpty() ? std::vector<int>{33036} : std::vector<int>{});
}

void TestBadpixelStorage::aListOfFactoryEntriesDeletesTheStoredList()
{
    openCamera(pixels(4), {{1, 2}}, 100);
    model->getBadpixelList(camera.get());
    model->clearUserBadpixelList();
    kelvosim::clearLog();
    QCOMPARE(writeFailure(), QString());
    QCOMPARE(commands(), std::vector<int>{33038});
    QCOMPARE(sizeOf(kelvo::HotpixelDeleteUserList), 0);
    QCOMPARE(kelvosim::storedUserList(testcamera::Serial), Pixels());
}

void TestBadpixelStorage::onlyUserEntriesAreWrittenInListOrder()
{
    openCamera({{9, 8}}, {}, 100);
    model->getBadpixelList(camera.get());
    BadpixelListModelPeer::append(*model,
                                  {{30, 1, User}, {5, 5, Ignore}, {20, 2, User}, {6, 6, 255}, {10, 3, User}});
    kelvosim::clearLog();
    QCOMPARE(writeFailure(), QString());
    QCOMPARE(commands(), std::vector<int>{33036});
    QCOMPARE(wordsSent(kelvo::HotpixelWriteUserList), (std::vector<std::uint16_t>{3, 30, 1, 20, 2, 10, 3}));
    QCOMPARE(sizeOf(kelvo::HotpixelWriteUserList), 4 * 3 + 2);
    QCOMPARE(kelvosim::storedUserList(testcamera::Serial), (Pixels{{30, 1}, {20, 2}, {10, 3}}));
}

void TestBadpixelStorage::refusedCommandsThrow_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<bool>("withUserEntry");
    QTest::newRow("write") << 33036 << true;
    QTest::newRow("delete") << 33038 << false;
}

void TestBadpixelStorage::refusedCommandsThrow()
{
    QFETCH(int, command);
    QFETCH(bool, withUserEntry);
    openCamera({}, {}, 100);
    model->getBadpixelList(camera.get());
    if (withUserEntry) {
        model->addBadpixel({1, 2});
    }
    kelvosim::failCall("vx_HotPixel", 1, 42, "the library's own text", command);
    QCOMPARE(writeFailure(), QString("Error writing hotpixel list"));
    QCOMPARE(writeFailure(), QString());
}

void TestBadpixelStorage::aFailedWriteLeavesTheListUnchanged()
{
    openCamera({{9, 8}}, {{1, 2}}, 100);
    model->getBadpixelList(camera.get());
    model->addBadpixel({3, 4});
    kelvosim::failCall("vx_HotPixel", kelvosim::EveryCall, 42, "refused");
    QVERIFY(!writeFailure().isEmpty());
    QCOMPARE(rowTexts(*model), (QStringList{"9 8 ignore", "1 2 user", "3 4 user"}));
    QCOMPARE(kelvosim::storedUserList(testcamera::Serial), (Pixels{{1, 2}}));
}

void TestBadpixelStorage::aListTooLongForItsCountWordIsNotSent()
{
    openCamera({}, {{1, 2}}, 100000);
    model->getBadpixelList(camera.get());
    BadpixelListModelPeer::append(*model, entries(65535, User));
    kelvosim::clearLog();
    QCOMPARE(writeFailure(), QString("Error writing hotpixel list"));
    QVERIFY(commands().empty());
    model->removeUserBadpixel(0);
    QCOMPARE(writeFailure(), QString());
    QCOMPARE(kelvosim::storedUserList(testcamera::Serial).size(), std::size_t(65535));
}

void TestBadpixelStorage::writingWithoutACameraThrows()
{
    openCamera({}, {}, 100);
    model->getBadpixelList(camera.get());
    model->addBadpixel({1, 2});
    camera->close();
    QCOMPARE(writeFailure(), QString("Error writing hotpixel list"));
    camera.reset();
    QCOMPARE(writeFailure(), QString("Error writing hotpixel list"));
}

void TestBadpixelStorage::writtenListsSurviveClosingAndOpening()
{
    openCamera({{9, 8}}, {{1, 2}}, 100);
    model->getBadpixelList(camera.get());
    model->addBadpixel({30, 40});
    model->removeUserBadpixel(1);
    QCOMPARE(writeFailure(), QString());
    camera->close();
    model->clearBadpixelList();

    camera->open(testcamera::Device);
    model->getBadpixelList(camera.get());
    QCOMPARE(rowTexts(*model), (QStringList{"9 8 ignore", "30 40 user"}));
}

QTEST_GUILESS_MAIN(TestBadpixelStorage)
#include "tst_badpixelstorage.moc"
