// SPDX-License-Identifier: MIT
// Tests exporting and importing the hot pixel table as text files, real ones with real faults.
#include "badpixellistmodel.h"

#include "announcements.h"
#include "badpixellistmodelpeer.h"
#include "modeltext.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <stdexcept>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int never = -1;
int readsBeforeTheFault = never;

const QString cannotWrite = "Can't open file for writing.";
const QString cannotRead = "Can't open file for reading.";

/// Lets no file of this process grow over `bytes` for its time: a disk that fills up in the middle.
class FileSizeLimit final
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before); }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit before{};
};

std::vector<Badpixel> userEntries(int count)
{
    std::vector<Badpixel> list;
    for (int i = 0; i < count; ++i) {
        list.push_back({static_cast<std::uint16_t>(i % 1000), static_cast<std::uint16_t>(i / 1000), User});
    }
    return list;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

template<typename Work>
QString failureOf(const Work &work)
{
    try {
        work();
    } catch (const std::runtime_error &failure) {
        return QString(failure.what());
    }
    return QString();
}

} // namespace

// Stands before that of the C library: a disk that fails while a file is read.
extern "C" ssize_t read(int file, void *data, size_t size)
{
    if (readsBeforeTheFault == 0) {
        errno = EIO;
        return -1;
    }
    if (readsBeforeTheFault > 0) {
        --readsBeforeTheFault;
    }
    return syscall(SYS_read, file, data, size);
}

class TestTextListFiles : public QObject
{
    Q_OBJECT

private slots:
    // File names are in the locale's encoding, and the plain one knows no umlauts.
    static void initMain() { qputenv("LC_ALL", "C.UTF-8"); }
    void initTestCase() { registerLayoutTypes(); }
    void init();
    void cleanup();

    void exportWritesUserEntriesInListOrder();
    void exportOfFactoryEntriesOnlyCreatesAnEmptyFile();
    void exportReplacesAnOlderFile();
    void exportToAPathThatCannotBeOpenedThrows_data();
    void exportToAPathThatCannotBeOpenedThrows();
    void exportToAFullDiskThrows_data();
    void exportToAFullDiskThrows();
    void exportToADiskThatFillsUpThrows();
    void exportKeepsTheList();

    void importAddsAnEntryOfAnyClass();
    void importOfThreeLinesWithAnEmptyOneAddsThree();
    void importOfTheSameLineTwiceAddsTwo();
    void importDropsCarriageReturns();
    void importAddsWhatIsListedAlready();
    void importReplacesUserEntriesAndKeepsTheRest();
    void importAppendsBehindSortedRows();
    void importOfAnUnreadableFileLeavesUserEntriesRemoved_data();
    void importOfAnUnreadableFileLeavesUserEntriesRemoved();
    void importFromADiskThatFailsThrowsAndAddsNothing_data();
    void importFromADiskThatFailsThrowsAndAddsNothing();
    void importAnnouncesItsRowsOnceAndThenTheLayout();
    void importOfAnEmptyFileAnnouncesTheLayoutAlone();
    void importedPixelsAreNotReportedAsAdded();
    void importedEntriesAreFound();
    void importedEntriesShowInATable();
    void manyLinesAreImported();

    void anyFileNameIsExportedAndImported_data();
    void anyFileNameIsExportedAndImported();
    void announcementsAreConsistent();

private:
    QString path(const QString &name = "list.txt") const { return folder->filePath(name); }
    /// A name of the table: in the folder unless it is absolute or empty.
    QString place(const QString &name) const
    {
        return name.isEmpty() || name.startsWith('/') ? name : path(name);
    }
    QString fileOf(const QByteArray &content) const;
    QString exportFailure(const QString &file)
    {
        return failureOf([&] { model->exportAsFile(file); });
    }
    QString importFailure(const QString &file)
    {
        return failureOf([&] { model->importFromFile(file); });
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<BadpixelListModel> model;
};

void TestTextListFiles::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    model = std::make_unique<BadpixelListModel>();
}

void TestTextListFiles::cleanup()
{
    readsBeforeTheFault = never;
    model.reset();
    folder.reset();
}

QString TestTextListFiles::fileOf(const QByteArray &content) const
{
    QFile file(path());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write the test's file");
    }
    return path();
}

void TestTextListFiles::exportWritesUserEntriesInListOrder()
{
    BadpixelListModelPeer::append(
        *model,
        {{12, 345, User}, {5, 5, Factory}, {7, 7, Ignore}, {6, 6, 255}, {65535, 0, User}, {1, 2, User}});
    model->exportAsFile(path());
    QCOMPARE(contentOf(path()), QByteArray("12 345 1\n65535 0 1\n1 2 1\n"));
}

void TestTextListFiles::exportOfFactoryEntriesOnlyCreatesAnEmptyFile()
{
    BadpixelListModelPeer::append(*model, {{5, 5, Factory}, {6, 6, Factory}});
    model->exportAsFile(path());
    QVERIFY(QFile::exists(path()));
    QCOMPARE(contentOf(path()), QByteArray());
}

void TestTextListFiles::exportReplacesAnOlderFile()
{
    const QString file = fileOf("9999 9999 1\n9999 9999 1\n");
    model->addBadpixel({1, 2});
    model->exportAsFile(file);
    QCOMPARE(contentOf(file), QByteArray("1 2 1\n"));
}

void TestTextListFiles::exportToAPathThatCannotBeOpenedThrows_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a folder") << QString(".");
    QTest::newRow("in no folder") << QString("nowhere/list.txt");
    QTest::newRow("below a plain file") << QString("plain/list.txt");
    QTest::newRow("where nobody may write") << QString("/proc/list.txt");
    QTest::newRow("no name") << QString();
    // Opening it would wait for somebody who reads it.
    QTest::newRow("a pipe") << QString("pipe");
    QTest::newRow("name too long") << QString(300, 'x');
}

void TestTextListFiles::exportToAPathThatCannotBeOpenedThrows()
{
    QFETCH(QString, name);
    QVERIFY(QFile(path("plain")).open(QIODevice::WriteOnly));
    QCOMPARE(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    model->addBadpixel({1, 2});
    QCOMPARE(exportFailure(place(name)), cannotWrite);
    QCOMPARE(rowTexts(*model), QStringList{"1 2 user"});
}

void TestTextListFiles::exportToAFullDiskThrows_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("found at the end") << 1;
    QTest::newRow("found on the way") << 100000;
}

void TestTextListFiles::exportToAFullDiskThrows()
{
    QFETCH(int, count);
    BadpixelListModelPeer::append(*model, userEntries(count));
    QCOMPARE(exportFailure("/dev/full"), QString("Can't write file."));
    QCOMPARE(model->rowCount(), count);
}

void TestTextListFiles::exportToADiskThatFillsUpThrows()
{
    BadpixelListModelPeer::append(*model, userEntries(20000));
    {
        const FileSizeLimit limit(40000);
        QCOMPARE(exportFailure(path()), QString("Can't write file."));
    }
    QCOMPARE(exportFailure(path()), QString());
    QCOMPARE(contentOf(path()).count('\n'), 20000);
}

void TestTextListFiles::exportKeepsTheList()
{
    BadpixelListModelPeer::append(*model, {{5, 5, Factory}, {1, 2, User}});
    QSignalSpy layout(model.get(), &QAbstractItemModel::layoutChanged);
    model->exportAsFile(path());
    QCOMPARE(rowTexts(*model), (QStringList{"5 5 ignore", "1 2 user"}));
    QCOMPARE(layout.count(), 0);
}

void TestTextListFiles::importAddsAnEntryOfAnyClass()
{
    model->importFromFile(fileOf("7 9 0\n7 9 2\n3 4 1\n5 6 255\n8 8 257\n"));
    QCOMPARE(rowTexts(*model),
             (QStringList{"7 9 ignore", "7 9 factory", "3 4 user", "5 6 factory", "8 8 user"}));
    QCOMPARE(model->badpixel(0).pixelclass, std::uint8_t(Factory));
    QCOMPARE(model->badpixel(1).pixelclass, std::uint8_t(Ignore));
}

void TestTextListFiles::importOfThreeLinesWithAnEmptyOneAddsThree()
{
    model->importFromFile(fileOf("7 9 1\n\n8 9 1\n"));
    QCOMPARE(rowTexts(*model), (QStringList{"7 9 user", "0 0 ignore", "8 9 user"}));
}

void TestTextListFiles::importOfTheSameLineTwiceAddsTwo()
{
    model->importFromFile(fileOf("7 9 1\n7 9 1\n"));
    QCOMPARE(rowTexts(*model), (QStringList{"7 9 user", "7 9 user"}));
}

// As text mode reads them: wherever they stand.
void TestTextListFiles::importDropsCarriageReturns()
{
    model->importFromFile(fileOf("7 9 1\r\n1 2\r3 1\r\n"));
    QCOMPARE(rowTexts(*model), (QStringList{"7 9 user", "1 23 user"}));
}

void TestTextListFiles::importAddsWhatIsListedAlready()
{
    BadpixelListModelPeer::append(*model, {{7, 9, Factory}});
    model->importFromFile(fileOf("7 9 1\n"));
    QCOMPARE(rowTexts(*model), (QStringList{"7 9 ignore", "7 9 user"}));
}

void TestTextListFiles::importReplacesUserEntriesAndKeepsTheRest()
{
    BadpixelListModelPeer::append(*model, {{1, 1, User}, {5, 5, Factory}, {2, 2, User}, {6, 6, Ignore}});
    model->importFromFile(fileOf("7 9 1\n"));
    QCOMPARE(rowTexts(*model), (QStringList{"5 5 ignore", "6 6 factory", "7 9 user"}));
}

void TestTextListFiles::importAppendsBehindSortedRows()
{
    BadpixelListModelPeer::append(*model, {{8, 8, Factory}, {5, 5, Factory}});
    model->sort(0);
    model->importFromFile(fileOf("7 9 1\n1 1 1\n"));
    QCOMPARE(rowTexts(*model), (QStringList{"5 5 ignore", "8 8 ignore", "7 9 user", "1 1 user"}));
}

void TestTextListFiles::importOfAnUnreadableFileLeavesUserEntriesRemoved_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("none") << QString("none.txt");
    QTest::newRow("a folder") << QString(".");
    QTest::newRow("below a plain file") << QString("plain/list.txt");
    QTest::newRow("a link to nothing") << QString("link");
    // Opening it would wait for somebody who writes into it.
    QTest::newRow("a pipe") << QString("pipe");
    QTest::newRow("a device without end") << QString("/dev/zero");
    QTest::newRow("a file as if it were a folder") << QString("plain/");
}

void TestTextListFiles::importOfAnUnreadableFileLeavesUserEntriesRemoved()
{
    QFETCH(QString, name);
    QVERIFY(QFile(path("plain")).open(QIODevice::WriteOnly));
    QVERIFY(QFile::link(path("nothing"), path("link")));
    QCOMPARE(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    BadpixelListModelPeer::append(*model, {{1, 1, User}, {5, 5, Factory}, {2, 2, User}});
    QSignalSpy layout(model.get(), &QAbstractItemModel::layoutChanged);
    QCOMPARE(importFailure(place(name)), cannotRead);
    QCOMPARE(rowTexts(*model), QStringList{"5 5 ignore"});
    QCOMPARE(layout.count(), 0);
}

void TestTextListFiles::importFromADiskThatFailsThrowsAndAddsNothing_data()
{
    QTest::addColumn<int>("goodReads");
    QTest::newRow("at once") << 0;
    QTest::newRow("in the middle") << 2;
}

void TestTextListFiles::importFromADiskThatFailsThrowsAndAddsNothing()
{
    QFETCH(int, goodReads);
    const QString file = fileOf(QByteArray("7 9 1\n").repeated(50000));
    BadpixelListModelPeer::append(*model, {{5, 5, Factory}, {2, 2, User}});
    readsBeforeTheFault = goodReads;
    QCOMPARE(importFailure(file), QString("Can't read file."));
    QCOMPARE(readsBeforeTheFault, 0);
    QCOMPARE(rowTexts(*model), QStringList{"5 5 ignore"});
}

void TestTextListFiles::importAnnouncesItsRowsOnceAndThenTheLayout()
{
    BadpixelListModelPeer::append(*model, {{5, 5, Factory}, {2, 2, User}});
    QStringList told;
    const auto tell = [&](const QString &what) { told << QString("%1 %2").arg(what).arg(model->rowCount()); };
    connect(model.get(), &QAbstractItemModel::rowsRemoved, [&] { tell("removed:"); });
    connect(model.get(), &QAbstractItemModel::rowsAboutToBeInserted, [&] { tell("before:"); });
    connect(model.get(), &QAbstractItemModel::rowsInserted, [&] { tell("after:"); });
    connect(model.get(), &QAbstractItemModel::layoutChanged, [&] { tell("layout:"); });
    QSignalSpy inserted(model.get(), &QAbstractItemModel::rowsInserted);
    model->importFromFile(fileOf("7 9 1\n8 9 1\n9 9 1\n"));
    QCOMPARE(told, (QStringList{"removed: 1", "before: 1", "after: 4", "layout: 4"}));
    QCOMPARE(ranges(inserted), QStringList{"1-3"});
}

void TestTextListFiles::importOfAnEmptyFileAnnouncesTheLayoutAlone()
{
    QSignalSpy inserted(model.get(), &QAbstractItemModel::rowsInserted);
    QSignalSpy layout(model.get(), &QAbstractItemModel::layoutChanged);
    model->importFromFile(fileOf(""));
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(inserted.count(), 0);
    QCOMPARE(layout.count(), 1);
}

void TestTextListFiles::importedPixelsAreNotReportedAsAdded()
{
    QSignalSpy added(model.get(), &BadpixelListModel::pixelAdded);
    model->importFromFile(fileOf("7 9 1\n"));
    QCOMPARE(model->rowCount(), 1);
    QCOMPARE(added.count(), 0);
}

void TestTextListFiles::importedEntriesAreFound()
{
    model->addBadpixel({1, 2});
    QCOMPARE(model->findBadpixel(1, 2, 1).row(), 0);
    model->importFromFile(fileOf("7 9 1\n8 9 1\n"));
    QVERIFY(!model->findBadpixel(1, 2, 1).isValid());
    QCOMPARE(model->findBadpixel(8, 9, 1).row(), 1);
    QVERIFY(!model->addBadpixel({7, 9}));
}

void TestTextListFiles::importedEntriesShowInATable()
{
    QTableView table;
    table.setModel(model.get());
    BadpixelListModelPeer::append(*model, {{5, 5, Factory}});
    model->importFromFile(fileOf("7 9 1\n8 9 1\n"));
    QCOMPARE(table.verticalHeader()->count(), 3);
    QCOMPARE(table.model()->index(2, 0).data().toInt(), 8);
}

void TestTextListFiles::manyLinesAreImported()
{
    model->importFromFile(fileOf(QByteArray("7 9 1\n").repeated(200000)));
    QCOMPARE(model->rowCount(), 200000);
    model->importFromFile(fileOf("1 2 1\n"));
    QCOMPARE(rowTexts(*model), QStringList{"1 2 user"});
}

void TestTextListFiles::anyFileNameIsExportedAndImported_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QString("list.txt");
    QTest::newRow("no extension") << QString("list");
    QTest::newRow("blanks") << QString(" my hot pixels .txt");
    QTest::newRow("umlauts") << QString::fromUtf8("heiße Pixel für Ölmühle.txt");
    QTest::newRow("other scripts") << QString::fromUtf8("ホットピクセル 🔥.txt");
    QTest::newRow("line end") << QString("a\nb.txt");
}

void TestTextListFiles::anyFileNameIsExportedAndImported()
{
    QFETCH(QString, name);
    model->addBadpixel({12, 345});
    model->exportAsFile(path(name));
    const QByteArray bytes = folder->path().toUtf8() + '/' + name.toUtf8();
    struct stat found;
    QCOMPARE(stat(bytes.constData(), &found), 0);
    BadpixelListModel other;
    other.importFromFile(path(name));
    QCOMPARE(rowTexts(other), QStringList{"12 345 user"});
}

void TestTextListFiles::announcementsAreConsistent()
{
    FlatProxy proxy;
    proxy.setSourceModel(model.get());
    const QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model->importFromFile(fileOf("7 9 0\n7 9 1\n7 9 2\n7 9 1\n"));
    model->importFromFile(fileOf("1 2 1\n3 4 0\n"));
    QCOMPARE(proxy.rowCount(), 4);
    QVERIFY(!importFailure(path("none.txt")).isEmpty());
    model->importFromFile(fileOf(""));
    QCOMPARE(rowTexts(proxy), (QStringList{"7 9 ignore", "7 9 factory", "3 4 ignore"}));
}

QTEST_MAIN(TestTextListFiles)
#include "tst_textlistfiles.moc"
