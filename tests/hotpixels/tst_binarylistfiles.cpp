// SPDX-License-Identifier: MIT
// Tests saving and loading the hot pixel table as binary files, on the simulated camera library.
#include "badpixellistmodel.h"

#include "announcements.h"
#include "badpixellistmodelpeer.h"
#include "camera.h"
#include "modeltext.h"
#include "testcamera.h"

#include <QAbstractItemModelTester>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace {

using Pixels = std::vector<kelvosim::Pixel>;
using Words = std::vector<std::uint16_t>;

const Pixels earlier{{50, 40}, {51, 41}};

QStringList commands()
{
    QStringList list;
    for (const QString &call : testcamera::calls()) {
        list << call.section(' ', 1);
    }
    return list;
}

Words wordsSent(const kelvosim::Call &call)
{
    Words words(call.data.size() / sizeof(std::uint16_t));
    std::memcpy(words.data(), call.data.data(), words.size() * sizeof(std::uint16_t));
    return words;
}

// The lists that the library was given as its current one, in order.
std::vector<Words> listsSet()
{
    std::vector<Words> lists;
    for (const kelvosim::Call &call : testcamera::callsNamed("vx_HotPixel 33027")) {
        lists.push_back(wordsSent(call));
    }
    return lists;
}

// Makes the n-th call of a command fail.
void fail(int command, int nth, int status)
{
    kelvosim::failCall("vx_HotPixel", nth, status, "the library's own text", command);
}

} // namespace

class TestBinaryListFiles : public QObject
{
    Q_OBJECT

private slots:
    // The folder of the test's files is found in the locale's encoding.
    static void initMain() { qputenv("LC_ALL", "C.UTF-8"); }
    void initTestCase() { registerLayoutTypes(); }
    void init();
    void cleanup();

    void savingSendsItsCommandsInOrder();
    void savingWithoutACurrentListRestoresAnEmptyOne();
    void savingRestoresTheLibrarysListEvenWhenTheFileWasWritten();
    void savingTakesUserEntriesInListOrder();
    void savingFactoryEntriesOnlySavesAnEmptyList();
    void savingFailsWithTheCodeOfTheCall_data();
    void savingFailsWithTheCodeOfTheCall();
    void savingDoesNotAskWhetherTheFileWasWritten_data();
    void savingDoesNotAskWhetherTheFileWasWritten();
    void savingCountsModulo32768_data();
    void savingCountsModulo32768();
    void savingKeepsTheList();

    void loadingSendsItsCommandsInOrder();
    void loadingAppendsUserEntriesWithoutDuplicateChecks();
    void loadingFailsWithTheCodeOfTheCall_data();
    void loadingFailsWithTheCodeOfTheCall();
    void loadingWhatCannotBeAskedForAddsNothing();
    void loadingAFileThatIsNoListFails_data();
    void loadingAFileThatIsNoListFails();
    void loadingAHostileListWordTakesWhatIsThere();
    void loadingAnnouncesItsRowsOnceAndThenTheLayout();
    void loadingAnEmptyListAnnouncesTheLayoutAlone();
    void loadingThatCannotRestoreStillAnnouncesTheLayout();
    void loadedPixelsAreNotReportedAsAdded();
    void loadedEntriesAreFound();
    void announcementsAreConsistent();

    void withoutACameraTheLibraryDecides_data();
    void withoutACameraTheLibraryDecides();
    void anyFileNameReachesTheLibrary_data();
    void anyFileNameReachesTheLibrary();
    void theLongestSavedListLoadsAgain();

private:
    QString path(const QString &name = "list.bin") const { return folder->filePath(name); }
    void holdList(const Pixels &list);
    QString savedList(const Pixels &list);
    Pixels currentList() const { return kelvosim::currentUserList(testcamera::Serial); }
    QString saveFailure(const QString &file);
    QString loadFailure(const QString &file);

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<Camera> camera;
    std::unique_ptr<BadpixelListModel> model;
};

void TestBinaryListFiles::init()
{
    testcamera::resetTo(testcamera::small());
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    camera = std::make_unique<Camera>();
    camera->open(testcamera::Device);
    model = std::make_unique<BadpixelListModel>();
    kelvosim::clearLog();
}

void TestBinaryListFiles::cleanup()
{
    model.reset();
    camera.reset();
    folder.reset();
    QCOMPARE(kelvosim::openHandles(), 0);
}

// Lets the library have a current user list.
void TestBinaryListFiles::holdList(const Pixels &list)
{
    Words words{static_cast<std::uint16_t>(list.size())};
    for (const kelvosim::Pixel &pixel : list) {
        words.push_back(pixel.x);
        words.push_back(pixel.y);
    }
    const auto size = static_cast<std::uint32_t>(2 * words.size());
    QCOMPARE(vx_HotPixel(camera->handle(), kelvo::HotpixelSetCurrentUserList, words.data(), size), 0);
    kelvosim::clearLog();
}

// A file of this list, as the library writes it. The library's current list is `earlier` afterwards.
QString TestBinaryListFiles::savedList(const Pixels &list)
{
    holdList(list);
    std::wstring name = path().toStdWString();
    if (vx_HotPixel(camera->handle(), kelvo::HotpixelSaveUserListToFile, &name[0], 0) != kelvo::Success) {
        qFatal("the library cannot save");
    }
    holdList(earlier);
    return path();
}

QString TestBinaryListFiles::saveFailure(const QString &file)
{
    try {
        model->saveAsFile(camera.get(), file);
    } catch (const std::runtime_error &failure) {
        return QString(failure.what());
    }
    return QString();
}

QString TestBinaryListFiles::loadFailure(const QString &file)
{
    try {
        model->loadFromFile(camera.get(), file);
    } catch (const std::runtime_error &failure) {
        return QString(failure.what());
    }
    return QString();
}

void TestBinaryListFiles::savingSendsItsCommandsInOrder()
{
    holdList(earlier);
    model->addBadpixel({1, 2});
    model->saveAsFile(camera.get(), path());
    QCOMPARE(commands(), (QStringList{"33024", "33025", "33026", "33027", "33041", "33027"}));
    std::vector<double> sizes;
    for (const kelvosim::Call &call : testcamera::callsNamed("vx_HotPixel")) {
        sizes.push_back(call.numbers.front());
        QCOMPARE(call.handle, camera->handle());
    }
    QCOMPARE(sizes, (std::vector<double>{0, 4, 4 * 2 + 2, 4 * 1 + 2, 0, 4 * 2 + 2}));
    QCOMPARE(listsSet(), (std::vector<Words>{{1, 1, 2}, {2, 50, 40, 51, 41}}));
}

void TestBinaryListFiles::savingWithoutACurrentListRestoresAnEmptyOne()
{
    model->addBadpixel({1, 2});
    model->saveAsFile(camera.get(), path());
    QCOMPARE(commands(), (QStringList{"33024", "33027", "33041", "33027"}));
    QCOMPARE(listsSet(), (std::vector<Words>{{1, 1, 2}, {0}}));
    QCOMPARE(currentList(), Pixels());
}

void TestBinaryListFiles::savingRestoresTheLibrarysListEvenWhenTheFileWasWritten()
{
    holdList(earlier);
    model->addBadpixel({1, 2});
    model->saveAsFile(camera.get(), path());
    QVERIFY(QFile::exists(path()));
    QCOMPARE(currentList(), earlier);
}

void TestBinaryListFiles::savingTakesUserEntriesInListOrder()
{
    BadpixelListModelPeer::append(
        *model, {{30, 1, User}, {5, 5, Ignore}, {20, 2, User}, {6, 6, Factory}, {10, 3, User}});
    model->saveAsFile(camera.get(), path());
    QCOMPARE(listsSet().front(), (Words{3, 30, 1, 20, 2, 10, 3}));
    BadpixelListModel other;
    other.loadFromFile(camera.get(), path());
    QCOMPARE(rowTexts(other), (QStringList{"30 1 user", "20 2 user", "10 3 user"}));
}

void TestBinaryListFiles::savingFactoryEntriesOnlySavesAnEmptyList()
{
    BadpixelListModelPeer::append(*model, {{6, 6, Factory}});
    model->saveAsFile(camera.get(), path());
    QCOMPARE(listsSet().front(), Words{0});
    model->loadFromFile(camera.get(), path());
    QCOMPARE(rowTexts(*model), QStringList{"6 6 ignore"});
}

void TestBinaryListFiles::savingFailsWithTheCodeOfTheCall_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<int>("nth");
    QTest::addColumn<QString>("failure");
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<bool>("isRestored");
    const QString text = "write to file failed with 42\n";
    const QStringList all{"33024", "33025", "33026", "33027", "33041", "33027"};
    QTest::newRow("query") << 33024 << 1 << QString() << QStringList{"33024", "33027", "33041", "33027"}
                           << false;
    QTest::newRow("count") << 33025 << 1 << text << QStringList(all.mid(0, 2)) << true;
    QTest::newRow("list") << 33026 << 1 << text << QStringList(all.mid(0, 3)) << true;
    QTest::newRow("set") << 33027 << 1 << text << QStringList(all.mid(0, 4)) << true;
    QTest::newRow("save") << 33041 << 1 << QString() << all << true;
    QTest::newRow("restore") << 33027 << 2 << text << all << false;
}

void TestBinaryListFiles::savingFailsWithTheCodeOfTheCall()
{
    QFETCH(int, command);
    QFETCH(int, nth);
    QFETCH(QString, failure);
    QFETCH(QStringList, sent);
    QFETCH(bool, isRestored);
    holdList(earlier);
    BadpixelListModelPeer::append(*model, {{5, 5, Factory}, {1, 2, User}});
    fail(command, nth, 42);
    QCOMPARE(saveFailure(path()), failure);
    QCOMPARE(commands(), sent);
    QCOMPARE(currentList() == earlier, isRestored);
    QCOMPARE(rowTexts(*model), (QStringList{"5 5 ignore", "1 2 user"}));
}

void TestBinaryListFiles::savingDoesNotAskWhetherTheFileWasWritten_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("no folder") << QString("/nowhere/list.bin");
    QTest::newRow("below a device") << QString("/dev/null/list.bin");
    QTest::newRow("where nobody may write") << QString("/proc/list.bin");
}

void TestBinaryListFiles::savingDoesNotAskWhetherTheFileWasWritten()
{
    QFETCH(QString, file);
    holdList(earlier);
    model->addBadpixel({1, 2});
    QCOMPARE(saveFailure(file), QString());
    QVERIFY(testcamera::callsNamed("vx_HotPixel 33041").front().result != kelvo::Success);
    QCOMPARE(currentList(), earlier);
}

void TestBinaryListFiles::savingCountsModulo32768_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("word");
    QTest::newRow("32767") << 32767 << 32767;
    QTest::newRow("32768") << 32768 << 0;
    QTest::newRow("40000") << 40000 << 7232;
    QTest::newRow("65536") << 65536 << 0;
    QTest::newRow("65537") << 65537 << 1;
    QTest::newRow("98304") << 98304 << 0;
}

void TestBinaryListFiles::savingCountsModulo32768()
{
    QFETCH(int, count);
    QFETCH(int, word);
    holdList(earlier);
    BadpixelListModelPeer::append(*model,
                                  std::vector<Badpixel>(static_cast<std::size_t>(count), {3, 4, User}));
    const QString failure = saveFailure(path());
    QCOMPARE(int(listsSet().front().front()), word);
    QCOMPARE(listsSet().front().size(), 2 * static_cast<std::size_t>(count) + 1);
    // The library sees more than the word says and refuses: half a list does not pass for the whole.
    QCOMPARE(failure.isEmpty(), word == count);
    QCOMPARE(QFile::exists(path()), word == count);
    QCOMPARE(currentList(), earlier);
}

void TestBinaryListFiles::savingKeepsTheList()
{
    BadpixelListModelPeer::append(*model, {{6, 6, Factory}, {1, 2, User}});
    QSignalSpy layout(model.get(), &QAbstractItemModel::layoutChanged);
    model->saveAsFile(camera.get(), path());
    QCOMPARE(rowTexts(*model), (QStringList{"6 6 ignore", "1 2 user"}));
    QCOMPARE(layout.count(), 0);
}

void TestBinaryListFiles::loadingSendsItsCommandsInOrder()
{
    const QString file = savedList({{1, 2}, {3, 4}, {5, 6}});
    model->loadFromFile(camera.get(), file);
    QCOMPARE(commands(),
             (QStringList{"33024", "33025", "33026", "33042", "33024", "33025", "33026", "33027"}));
    std::vector<double> sizes;
    for (const kelvosim::Call &call : testcamera::callsNamed("vx_HotPixel")) {
        sizes.push_back(call.numbers.front());
        QCOMPARE(call.handle, camera->handle());
    }
    QCOMPARE(sizes, (std::vector<double>{0, 4, 4 * 2 + 2, 0, 0, 4, 4 * 3 + 2, 4 * 2 + 2}));
    QCOMPARE(rowTexts(*model), (QStringList{"1 2 user", "3 4 user", "5 6 user"}));
    QCOMPARE(currentList(), earlier);
}

void TestBinaryListFiles::loadingAppendsUserEntriesWithoutDuplicateChecks()
{
    const QString file = savedList({{6, 6}, {3, 4}, {3, 4}});
    BadpixelListModelPeer::append(*model, {{1, 1, User}, {6, 6, Factory}, {2, 2, User}, {7, 7, Ignore}});
    model->loadFromFile(camera.get(), file);
    QCOMPARE(rowTexts(*model),
             (QStringList{"6 6 ignore", "7 7 factory", "6 6 user", "3 4 user", "3 4 user"}));
}

void TestBinaryListFiles::loadingFailsWithTheCodeOfTheCall_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<int>("nth");
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<bool>("isAdded");
    // The backup is put back at the end alone: once the file is in, a failure leaves it there.
    QTest::addColumn<bool>("holdsTheFile");
    const QStringList all{"33024", "33025", "33026", "33042", "33024", "33025", "33026", "33027"};
    QTest::newRow("backup count") << 33025 << 1 << QStringList(all.mid(0, 2)) << false << false;
    QTest::newRow("backup list") << 33026 << 1 << QStringList(all.mid(0, 3)) << false << false;
    QTest::newRow("load") << 33042 << 1 << QStringList(all.mid(0, 4)) << false << false;
    QTest::newRow("count") << 33025 << 2 << QStringList(all.mid(0, 6)) << false << true;
    QTest::newRow("list") << 33026 << 2 << QStringList(all.mid(0, 7)) << false << true;
    QTest::newRow("restore") << 33027 << 1 << all << true << true;
}

void TestBinaryListFiles::loadingFailsWithTheCodeOfTheCall()
{
    QFETCH(int, command);
    QFETCH(int, nth);
    QFETCH(QStringList, sent);
    QFETCH(bool, isAdded);
    QFETCH(bool, holdsTheFile);
    const Pixels content{{30, 31}};
    const QString file = savedList(content);
    BadpixelListModelPeer::append(*model, {{5, 5, Factory}, {1, 2, User}});
    fail(command, nth, 42);
    QCOMPARE(loadFailure(file), QString("load from file failed with 42\n"));
    QCOMPARE(commands(), sent);
    const QStringList kept{"5 5 ignore"};
    QCOMPARE(rowTexts(*model), isAdded ? kept + QStringList{"30 31 user"} : kept);
    QCOMPARE(currentList(), holdsTheFile ? content : earlier);
}

void TestBinaryListFiles::loadingWhatCannotBeAskedForAddsNothing()
{
    const QString file = savedList({{30, 31}});
    fail(33024, 2, 42);
    QCOMPARE(loadFailure(file), QString());
    QCOMPARE(commands(), (QStringList{"33024", "33025", "33026", "33042", "33024", "33027"}));
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(currentList(), earlier);
}

void TestBinaryListFiles::loadingAFileThatIsNoListFails_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("failure");
    QTest::newRow("none") << QString("none.bin") << QString("load from file failed with 50\n");
    QTest::newRow("a folder") << QString(".") << QString("load from file failed with 50\n");
    QTest::newRow("text") << QString("text.bin") << QString("load from file failed with 51\n");
}

void TestBinaryListFiles::loadingAFileThatIsNoListFails()
{
    QFETCH(QString, name);
    QFETCH(QString, failure);
    QFile text(path("text.bin"));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write("12 345 1\n") == 9 && text.flush());
    holdList(earlier);
    BadpixelListModelPeer::append(*model, {{5, 5, Factory}, {1, 2, User}});
    QSignalSpy layout(model.get(), &QAbstractItemModel::layoutChanged);
    QCOMPARE(loadFailure(path(name)), failure);
    QCOMPARE(rowTexts(*model), QStringList{"5 5 ignore"});
    QCOMPARE(layout.count(), 0);
    QCOMPARE(currentList(), earlier);
}

void TestBinaryListFiles::loadingAHostileListWordTakesWhatIsThere()
{
    const QString file = savedList({{30, 31}, {32, 33}});
    kelvosim::lieAboutListWord(65535);
    QCOMPARE(loadFailure(file), QString());
    QCOMPARE(rowTexts(*model), (QStringList{"30 31 user", "32 33 user"}));
    QCOMPARE(currentList(), earlier);
}

void TestBinaryListFiles::loadingAnnouncesItsRowsOnceAndThenTheLayout()
{
    const QString file = savedList({{30, 31}, {32, 33}});
    BadpixelListModelPeer::append(*model, {{5, 5, Factory}, {2, 2, User}});
    QStringList told;
    const auto tell = [&](const QString &what) { told << QString("%1 %2").arg(what).arg(model->rowCount()); };
    connect(model.get(), &QAbstractItemModel::rowsRemoved, [&] { tell("removed:"); });
    connect(model.get(), &QAbstractItemModel::rowsAboutToBeInserted, [&] { tell("before:"); });
    connect(model.get(), &QAbstractItemModel::rowsInserted, [&] { tell("after:"); });
    connect(model.get(), &QAbstractItemModel::layoutChanged, [&] { tell("layout:"); });
    QSignalSpy inserted(model.get(), &QAbstractItemModel::rowsInserted);
    model->loadFromFile(camera.get(), file);
    QCOMPARE(told, (QStringList{"removed: 1", "before: 1", "after: 3", "layout: 3"}));
    QCOMPARE(ranges(inserted), QStringList{"1-2"});
}

void TestBinaryListFiles::loadingAnEmptyListAnnouncesTheLayoutAlone()
{
    const QString file = savedList({});
    QSignalSpy inserted(model.get(), &QAbstractItemModel::rowsInserted);
    QSignalSpy layout(model.get(), &QAbstractItemModel::layoutChanged);
    model->loadFromFile(camera.get(), file);
    QCOMPARE(inserted.count(), 0);
    QCOMPARE(layout.count(), 1);
}

void TestBinaryListFiles::loadingThatCannotRestoreStillAnnouncesTheLayout()
{
    const QString file = savedList({{30, 31}});
    QSignalSpy layout(model.get(), &QAbstractItemModel::layoutChanged);
    fail(33027, 1, 42);
    QVERIFY(!loadFailure(file).isEmpty());
    QCOMPARE(layout.count(), 1);
}

void TestBinaryListFiles::loadedPixelsAreNotReportedAsAdded()
{
    const QString file = savedList({{30, 31}});
    QSignalSpy added(model.get(), &BadpixelListModel::pixelAdded);
    model->loadFromFile(camera.get(), file);
    QCOMPARE(model->rowCount(), 1);
    QCOMPARE(added.count(), 0);
}

void TestBinaryListFiles::loadedEntriesAreFound()
{
    const QString file = savedList({{30, 31}});
    model->addBadpixel({1, 2});
    QCOMPARE(model->findBadpixel(1, 2, 1).row(), 0);
    model->loadFromFile(camera.get(), file);
    QVERIFY(!model->findBadpixel(1, 2, 1).isValid());
    QCOMPARE(model->findBadpixel(30, 31, 1).row(), 0);
    QVERIFY(!model->addBadpixel({30, 31}));
}

void TestBinaryListFiles::announcementsAreConsistent()
{
    const QString file = savedList({{30, 31}, {32, 33}});
    FlatProxy proxy;
    proxy.setSourceModel(model.get());
    const QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model->insertRows(0, 2);
    model->setData(model->index(0, 2), "factory");
    model->loadFromFile(camera.get(), file);
    model->loadFromFile(camera.get(), file);
    QVERIFY(!loadFailure(path("none.bin")).isEmpty());
    QCOMPARE(rowTexts(proxy), QStringList{"0 0 ignore"});
}

void TestBinaryListFiles::withoutACameraTheLibraryDecides_data()
{
    QTest::addColumn<bool>("isNull");
    QTest::newRow("closed") << false;
    QTest::newRow("null") << true;
}

void TestBinaryListFiles::withoutACameraTheLibraryDecides()
{
    QFETCH(bool, isNull);
    const QString file = savedList({{30, 31}});
    camera->close();
    if (isNull) {
        camera.reset();
    }
    kelvosim::clearLog();
    model->addBadpixel({1, 2});
    QCOMPARE(saveFailure(file), QString("write to file failed with 1\n"));
    QCOMPARE(rowTexts(*model), QStringList{"1 2 user"});
    QCOMPARE(loadFailure(file), QString("load from file failed with 1\n"));
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(commands(), (QStringList{"33024", "33027", "33024", "33042"}));
    for (const kelvosim::Call &call : testcamera::callsNamed("vx_HotPixel")) {
        QCOMPARE(call.handle, kelvo::NoCamera);
    }
}

void TestBinaryListFiles::anyFileNameReachesTheLibrary_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QString("list.bin");
    QTest::newRow("no extension") << QString("list");
    QTest::newRow("blanks") << QString(" my hot pixels .bin");
    QTest::newRow("umlauts") << QString::fromUtf8("heiße Pixel für Ölmühle.bin");
    // Characters of which a QString needs two are one wide character.
    QTest::newRow("other scripts") << QString::fromUtf8("ホットピクセル 🔥.bin");
}

void TestBinaryListFiles::anyFileNameReachesTheLibrary()
{
    QFETCH(QString, name);
    model->addBadpixel({12, 345});
    model->saveAsFile(camera.get(), path(name));
    const QByteArray bytes = folder->path().toUtf8() + '/' + name.toUtf8();
    QVERIFY(std::filesystem::exists(bytes.toStdString()));
    BadpixelListModel other;
    other.loadFromFile(camera.get(), path(name));
    QCOMPARE(rowTexts(other), QStringList{"12 345 user"});
}

void TestBinaryListFiles::theLongestSavedListLoadsAgain()
{
    std::vector<Badpixel> entries;
    for (int i = 0; i < 32767; ++i) {
        entries.push_back({static_cast<std::uint16_t>(i), static_cast<std::uint16_t>(i / 2), User});
    }
    BadpixelListModelPeer::append(*model, entries);
    const QStringList rows = rowTexts(*model);
    model->saveAsFile(camera.get(), path());
    model->loadFromFile(camera.get(), path());
    QCOMPARE(rowTexts(*model), rows);
}

QTEST_GUILESS_MAIN(TestBinaryListFiles)
#include "tst_binarylistfiles.moc"
