// SPDX-License-Identifier: MIT
// Hot pixel lists in files, through the real window: dialogues, round trips, failures, what the window shows.

#include "windowfixture.h"

#include "displaywidget.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QtTest>

namespace {

/// What a message box was like.
struct Box
{
    int count = 0;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QList<QMessageBox::StandardButton> buttons;
    QWidget *parent = nullptr;
};

/// Keeps what the next message box is like, and ends it with its first button.
void keepNextBox(Box &kept)
{
    WindowDriver::whenModal([&kept](QWidget *modal) {
        auto *box = qobject_cast<QMessageBox *>(modal);
        QVERIFY2(box, modal->metaObject()->className());
        ++kept.count;
        kept.text = box->text();
        kept.icon = box->icon();
        for (QAbstractButton *button : box->buttons())
            kept.buttons << box->standardButton(button);
        kept.parent = box->parentWidget();
        box->buttons().first()->click();
    });
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QList<QPair<int, int>> pairs(const std::vector<kelvosim::Pixel> &list)
{
    QList<QPair<int, int>> all;
    for (const kelvosim::Pixel &pixel : list)
        all << qMakePair(int(pixel.x), int(pixel.y));
    return all;
}

} // namespace

class TestListFiles : public QObject
{
    Q_OBJECT

public:
    /// Names of files beyond ASCII depend on the locale.
    static void initMain() { qputenv("LC_ALL", "C.UTF-8"); }

private slots:
    void init();
    void cleanup();

    void eachCommandAsksForAFile_data();
    void eachCommandAsksForAFile();
    void cancellingDoesNothing_data();
    void cancellingDoesNothing();

    void aListOfOneCameraLoadsIntoAnother();
    void anExportedListCanBeEditedAndImported();
    void aListOfFactoryEntriesExportsAnEmptyFile();
    void exportingAndImportingNeedNoCamera();
    void pathsMayHoldBlanksAndUmlauts_data();
    void pathsMayHoldBlanksAndUmlauts();
    void existingFilesAreOverwrittenAfterAQuestion_data();
    void existingFilesAreOverwrittenAfterAQuestion();

    void failuresAreShownInABox_data();
    void failuresAreShownInABox();
    void anUncheckedFailureOfWritingTheFileStaysSilent();
    void aDialogueMayOutliveTheCamera_data();
    void aDialogueMayOutliveTheCamera();

    void anImportOverASelectedUserEntryUnselectsIt();
    void anImportKeepsASelectedFactoryEntry();
    void anImportedUserEntryCanBeDeleted();
    void theViewShowsWhatWasImported();
    void theViewShowsWhatAFailureLeaves();
    void twoHundredThousandLinesAreImportedAndShown();

private:
    QString path(const QString &name) const { return folder->filePath(name); }
    void choose(const char *action, const QString &file, const std::function<void()> &look = {}) const;
    Box chooseAndReadBox(const char *action, const QString &file,
                         const std::function<void()> &look = {}) const;
    void add(int x, int y) const;
    QStringList list() const;
    int selectedRow() const;

    mutable WindowFixture bench;
    std::unique_ptr<QTemporaryDir> folder;
};

void TestListFiles::init()
{
    folder = std::make_unique<QTemporaryDir>();
    bench.openOnFreshBench(bench.mono);
    QTRY_VERIFY(bench.enabled("saveListAction"));
    add(33, 44);
    add(50, 61);
    QCOMPARE(list(), (QStringList{"10 10 ignore", "20 30 ignore", "33 44 user", "50 61 user"}));
    bench.window->statusBar()->clearMessage();
}

void TestListFiles::cleanup()
{
    bench.window.reset();
    QVERIFY(testcamera::nothingHeld());
}

/// Triggers a command and chooses a file; an empty path cancels.
void TestListFiles::choose(const char *action, const QString &file, const std::function<void()> &look) const
{
    WindowDriver::chooseFile(file, [&look](const QFileDialog &) {
        if (look)
            look();
    });
    bench.driver->trigger(action);
    QVERIFY(!QApplication::activeModalWidget());
}

/// As choose(), where a message box follows.
Box TestListFiles::chooseAndReadBox(const char *action, const QString &file,
                                    const std::function<void()> &look) const
{
    Box box;
    choose(action, file, [&] {
        if (look)
            look();
        keepNextBox(box);
    });
    return box;
}

void TestListFiles::add(int x, int y) const
{
    bench.moveTo(QPoint(x, y));
    bench.invoke("addNewBadpixel");
}

QStringList TestListFiles::list() const
{
    QStringList rows;
    for (int row = 0; row < bench.rows(); ++row)
        rows << QStringList{bench.cell(row, 0), bench.cell(row, 1), bench.cell(row, 2)}.join(' ');
    return rows;
}

int TestListFiles::selectedRow() const
{
    const QModelIndexList rows = bench.driver->badpixelTable()->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void TestListFiles::eachCommandAsksForAFile_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<bool>("saves");
    QTest::newRow("saveListAction") << "Save hot pixel list"
                                    << "Binary files (*.bin)" << true;
    QTest::newRow("loadListAction") << "Open hot pixel list"
                                    << "Binary files (*.bin)" << false;
    QTest::newRow("exportListAction") << "Export hot pixel list"
                                      << "Text files (*.txt)" << true;
    QTest::newRow("importListAction") << "Import hot pixel list"
                                      << "Text files (*.txt)" << false;
}

void TestListFiles::eachCommandAsksForAFile()
{
    QFETCH(QString, title);
    QFETCH(QString, filter);
    QFETCH(bool, saves);
    bool seen = false;
    WindowDriver::chooseFile(QString(), [&](const QFileDialog &dialogue) {
        seen = true;
        QCOMPARE(dialogue.windowTitle(), title);
        QCOMPARE(dialogue.nameFilters(), QStringList{filter});
        QCOMPARE(dialogue.acceptMode(), saves ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        QCOMPARE(dialogue.fileMode(), saves ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
        QCOMPARE(dialogue.directory().absolutePath(), QDir::homePath());
        QCOMPARE(dialogue.selectedFiles().value(0, QDir::homePath()), QDir::homePath()); // no name is offered
        QCOMPARE(dialogue.parentWidget(), static_cast<QWidget *>(bench.window.get()));
        QVERIFY(dialogue.isModal());
    });
    bench.driver->trigger(QTest::currentDataTag());
    QVERIFY(seen);
}

void TestListFiles::cancellingDoesNothing_data()
{
    eachCommandAsksForAFile_data();
}

void TestListFiles::cancellingDoesNothing()
{
    bench.driver->badpixelTable()->selectRow(2);
    const QStringList before = list();
    kelvosim::clearLog();
    choose(QTest::currentDataTag(), QString());
    QCOMPARE(list(), before);
    QCOMPARE(testcamera::callsNamed("vx_HotPixel").size(), std::size_t(0));
    QCOMPARE(selectedRow(), 2);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
    QCOMPARE(bench.driver->message(), QString());
}

void TestListFiles::aListOfOneCameraLoadsIntoAnother()
{
    choose("saveListAction", path("mono.bin"));
    QVERIFY(QFileInfo(path("mono.bin")).size() > 0);
    QVERIFY(list().contains("33 44 user"));
    bench.driver->trigger("closeCameraAction");
    QTRY_COMPARE(bench.driver->cameraStatus(bench.mono), QString("free"));

    kelvosim::setStoredUserList("KVBAYER", {{70, 71}});
    bench.open(bench.bayer);
    QTRY_VERIFY(bench.enabled("loadListAction"));
    QCOMPARE(list(), (QStringList{"10 10 ignore", "20 30 ignore", "70 71 user"}));
    const auto before = pairs(kelvosim::currentUserList("KVBAYER"));
    choose("loadListAction", path("mono.bin"));
    QCOMPARE(list(), (QStringList{"10 10 ignore", "20 30 ignore", "33 44 user", "50 61 user"}));
    QCOMPARE(pairs(kelvosim::currentUserList("KVBAYER")), before);
    QCOMPARE(pairs(kelvosim::storedUserList("KVBAYER")), (QList<QPair<int, int>>{{70, 71}}));
}

void TestListFiles::anExportedListCanBeEditedAndImported()
{
    choose("exportListAction", path("list.txt"));
    QCOMPARE(contentOf(path("list.txt")), QByteArray("33 44 1\n50 61 1\n"));
    QVERIFY(write(path("list.txt"), contentOf(path("list.txt")).replace("44", "45") + "7 9 0\n7 9 2\n\n"));
    choose("importListAction", path("list.txt"));
    QCOMPARE(list(), (QStringList{"10 10 ignore", "20 30 ignore", "33 45 user", "50 61 user", "7 9 ignore",
                                  "7 9 factory", "0 0 ignore"}));
    // Entries of other classes are not the user's: they are not exported, and stay through another import.
    choose("exportListAction", path("again.txt"));
    QCOMPARE(contentOf(path("again.txt")), QByteArray("33 45 1\n50 61 1\n"));
    choose("importListAction", path("again.txt"));
    QCOMPARE(bench.rows(), 7);
}

void TestListFiles::aListOfFactoryEntriesExportsAnEmptyFile()
{
    bench.driver->trigger("clearBadpixelAction");
    choose("exportListAction", path("list.txt"));
    QVERIFY(QFileInfo::exists(path("list.txt")));
    QCOMPARE(contentOf(path("list.txt")), QByteArray());
}

void TestListFiles::exportingAndImportingNeedNoCamera()
{
    bench.driver->trigger("closeCameraAction");
    QVERIFY(write(path("list.txt"), "5 6 1\n"));
    choose("importListAction", path("list.txt"));
    QCOMPARE(list(), QStringList{"5 6 user"});
    choose("exportListAction", path("other.txt"));
    QCOMPARE(contentOf(path("other.txt")), QByteArray("5 6 1\n"));
}

void TestListFiles::pathsMayHoldBlanksAndUmlauts_data()
{
    QTest::addColumn<QString>("store");
    QTest::addColumn<QString>("fetch");
    QTest::newRow("binary") << "saveListAction"
                            << "loadListAction";
    QTest::newRow("text") << "exportListAction"
                          << "importListAction";
}

void TestListFiles::pathsMayHoldBlanksAndUmlauts()
{
    QFETCH(QString, store);
    QFETCH(QString, fetch);
    const QString name = QString::fromUtf8("heiße Pixel, Gerät №3 (für Ölmühle)");
    QVERIFY(QDir(folder->path()).mkdir(name));
    const QString file = path(name + "/" + name);
    choose(qPrintable(store), file);
    QCOMPARE(QDir(path(name)).entryList(QDir::Files), QStringList{name});
    bench.driver->trigger("clearBadpixelAction");
    QCOMPARE(bench.rows(), 2);
    choose(qPrintable(fetch), file);
    QCOMPARE(list().mid(2), (QStringList{"33 44 user", "50 61 user"}));
}

void TestListFiles::existingFilesAreOverwrittenAfterAQuestion_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("saveListAction") << "list.bin";
    QTest::newRow("exportListAction") << "list.txt";
}

void TestListFiles::existingFilesAreOverwrittenAfterAQuestion()
{
    QFETCH(QString, file);
    QVERIFY(write(path(file), "old"));
    const auto answer = [this, &file](QMessageBox::StandardButton button) {
        int questions = 0;
        choose(QTest::currentDataTag(), path(file), [&] {
            WindowDriver::whenModal([&, button](QWidget *modal) {
                auto *box = qobject_cast<QMessageBox *>(modal);
                QVERIFY(box);
                QVERIFY2(box->text().contains(file), qPrintable(box->text()));
                ++questions;
                if (button == QMessageBox::No)
                    WindowDriver::chooseFile(QString()); // the dialogue stays open
                box->button(button)->click();
            });
        });
        return questions;
    };
    QCOMPARE(answer(QMessageBox::No), 1);
    QCOMPARE(contentOf(path(file)), QByteArray("old"));
    QCOMPARE(answer(QMessageBox::Yes), 1);
    QVERIFY(contentOf(path(file)) != "old");
    QCOMPARE(bench.rows(), 4);
}

void TestListFiles::failuresAreShownInABox_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("command"); // of vx_HotPixel, that fails
    QTest::addColumn<int>("nth");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("keepsUserEntries");
    QTest::newRow("saving: no backup") << "saveListAction" << 33026 << 1 << "new.bin"
                                       << "write to file failed with 57\n"
                                       << true;
    QTest::newRow("saving: list refused") << "saveListAction" << 33027 << 1 << "new.bin"
                                          << "write to file failed with 57\n"
                                          << true;
    QTest::newRow("saving: not put back") << "saveListAction" << 33027 << 2 << "new.bin"
                                          << "write to file failed with 57\n"
                                          << true;
    QTest::newRow("loading: no backup") << "loadListAction" << 33026 << 1 << "old.bin"
                                        << "load from file failed with 57\n"
                                        << false;
    QTest::newRow("loading: file refused") << "loadListAction" << 33042 << 1 << "old.bin"
                                           << "load from file failed with 57\n"
                                           << false;
    QTest::newRow("loading: not read") << "loadListAction" << 33026 << 2 << "old.bin"
                                       << "load from file failed with 57\n"
                                       << false;
    QTest::newRow("exporting") << "exportListAction" << 0 << 0 << "no folder/new.txt"
                               << "Can't open file for writing." << true;
    QTest::newRow("importing") << "importListAction" << 0 << 0 << "gone.txt"
                               << "Can't open file for reading." << false;
}

/// User entries that a load or an import has removed stay removed when it fails.
void TestListFiles::failuresAreShownInABox()
{
    QFETCH(QString, action);
    QFETCH(int, command);
    QFETCH(int, nth);
    QFETCH(QString, file);
    QFETCH(QString, text);
    QFETCH(bool, keepsUserEntries);
    kelvosim::setStoredUserList("KVMONO", {{1, 2}});
    choose("saveListAction", path("old.bin"));
    QVERIFY(write(path("gone.txt"), "1 2 1\n"));
    const QStringList before = list();
    if (nth > 0)
        kelvosim::failCall("vx_HotPixel", nth, 57, "", command);

    const Box box = chooseAndReadBox(qPrintable(action), path(file), [this] {
        auto *dialogue = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        connect(dialogue, &QDialog::finished, this, [this] { QFile::remove(path("gone.txt")); });
    });
    QCOMPARE(box.count, 1);
    QCOMPARE(box.text, text);
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.buttons, QList<QMessageBox::StandardButton>{QMessageBox::Ok});
    QCOMPARE(box.parent, static_cast<QWidget *>(bench.window.get()));
    QCOMPARE(bench.driver->message(), QString());
    QCOMPARE(list(), keepsUserEntries ? before : QStringList(before.mid(0, 2)));
    QVERIFY(bench.enabled(qPrintable(action)));
}

/// Kept: whether the library wrote the file is not asked.
void TestListFiles::anUncheckedFailureOfWritingTheFileStaysSilent()
{
    kelvosim::failCall("vx_HotPixel", 1, 57, "", 33041);
    choose("saveListAction", path("list.bin"));
    QVERIFY(!QFileInfo::exists(path("list.bin")));
    QCOMPARE(bench.driver->message(), QString());
}

void TestListFiles::aDialogueMayOutliveTheCamera_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("closed");
    for (const bool closed : {false, true}) {
        const char *how = closed ? "closed" : "unplugged";
        QTest::addRow("save, %s", how) << "saveListAction"
                                       << "new.bin" << closed;
        QTest::addRow("load, %s", how) << "loadListAction"
                                       << "old.bin" << closed;
        QTest::addRow("export, %s", how) << "exportListAction"
                                         << "new.txt" << closed;
        QTest::addRow("import, %s", how) << "importListAction"
                                         << "old.txt" << closed;
    }
}

/// Only what needs a camera that is closed says so: the library keeps the current list of an unplugged one.
void TestListFiles::aDialogueMayOutliveTheCamera()
{
    QFETCH(QString, action);
    QFETCH(QString, file);
    QFETCH(bool, closed);
    choose("saveListAction", path("old.bin"));
    QVERIFY(write(path("old.txt"), "5 6 1\n"));
    const auto loseTheCamera = [&] {
        if (closed)
            return bench.invoke("closeCamera");
        kelvosim::unplug("KVMONO");
        QVERIFY(WindowDriver::waitFor([this] { return bench.driver->cameraStatus(bench.mono).isEmpty(); }));
    };
    if (closed && file.endsWith(".bin")) {
        const Box box = chooseAndReadBox(qPrintable(action), path(file), loseTheCamera);
        const bool saves = action == "saveListAction";
        QVERIFY2(box.text.startsWith(saves ? "write to file failed with " : "load from file failed with "),
                 qPrintable(box.text));
        QVERIFY(!QFileInfo::exists(path("new.bin")));
    } else {
        choose(qPrintable(action), path(file), loseTheCamera);
        QVERIFY(QFileInfo::exists(path(file)));
    }
    QStringList expected;
    if (!closed)
        expected << "10 10 ignore"
                 << "20 30 ignore";
    if (action == "importListAction")
        expected << "5 6 user";
    else if (!closed)
        expected << "33 44 user"
                 << "50 61 user";
    QCOMPARE(list(), expected);
    if (action == "exportListAction")
        QCOMPARE(contentOf(path(file)), QByteArray(closed ? "" : "33 44 1\n50 61 1\n"));
}

void TestListFiles::anImportOverASelectedUserEntryUnselectsIt()
{
    bench.driver->badpixelTable()->selectRow(3);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
    QVERIFY(write(path("list.txt"), "5 6 1\n7 8 1\n9 9 1\n"));
    choose("importListAction", path("list.txt"));
    QCOMPARE(selectedRow(), -1);
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
}

void TestListFiles::anImportKeepsASelectedFactoryEntry()
{
    bench.driver->badpixelTable()->selectRow(1);
    QVERIFY(write(path("list.txt"), "5 6 1\n"));
    choose("importListAction", path("list.txt"));
    QCOMPARE(selectedRow(), 1);
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
}

void TestListFiles::anImportedUserEntryCanBeDeleted()
{
    QVERIFY(write(path("list.txt"), "5 6 1\n7 8 0\n"));
    choose("importListAction", path("list.txt"));
    bench.driver->badpixelTable()->selectRow(3);
    QVERIFY(!bench.enabled("deleteBadpixelAction"));
    bench.driver->badpixelTable()->selectRow(2);
    QVERIFY(bench.enabled("deleteBadpixelAction"));
    bench.driver->trigger("deleteBadpixelAction");
    QCOMPARE(list(), (QStringList{"10 10 ignore", "20 30 ignore", "7 8 ignore"}));
}

/// At once, not with the next frame.
void TestListFiles::theViewShowsWhatWasImported()
{
    QVERIFY(bench.pushFlat(bench.mono, 40));
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    QVERIFY(bench.isCircledAsUsers(QPoint(33, 44)));
    QVERIFY(write(path("list.txt"), "70 20 1\n"));
    choose("importListAction", path("list.txt"));
    QVERIFY(bench.isCircledAsUsers(QPoint(70, 20)));
    QVERIFY(!bench.isCircledAsUsers(QPoint(33, 44)));
    QVERIFY(!bench.isCircledAsUsers(QPoint(50, 61)));
}

void TestListFiles::theViewShowsWhatAFailureLeaves()
{
    QVERIFY(bench.pushFlat(bench.mono, 40));
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    QVERIFY(bench.isCircledAsUsers(QPoint(33, 44)));
    choose("saveListAction", path("old.bin"));
    kelvosim::failCall("vx_HotPixel", 1, 57, "", 33042);
    QCOMPARE(chooseAndReadBox("loadListAction", path("old.bin")).count, 1);
    QVERIFY(!bench.isCircledAsUsers(QPoint(33, 44)));
}

void TestListFiles::twoHundredThousandLinesAreImportedAndShown()
{
    constexpr int Lines = 200000;
    QByteArray text;
    for (int i = 0; i < Lines; ++i)
        text += QByteArray::number(100 + i % 1000) + ' ' + QByteArray::number(100 + i / 1000) + " 1\n";
    QVERIFY(write(path("long.txt"), text));
    choose("importListAction", path("long.txt"));
    QCOMPARE(bench.rows(), 2 + Lines);
    QTableView *table = bench.driver->badpixelTable();
    QCOMPARE(table->verticalHeader()->count(), bench.rows());
    table->scrollToBottom();
    const QModelIndex last = table->model()->index(bench.rows() - 1, 0);
    QVERIFY(!table->visualRect(last).isEmpty());
    QCOMPARE(last.data().toInt(), 1099);
    // The window goes on: the next frame shows, and clearing leaves the factory's entries.
    QVERIFY(bench.pushFlat(bench.mono, 40));
    QTRY_VERIFY_WITH_TIMEOUT(!bench.driver->shownImage().isNull(), 60000);
    bench.driver->trigger("clearBadpixelAction");
    QCOMPARE(bench.rows(), 2);
    QCOMPARE(table->verticalHeader()->count(), 2);
}

QTEST_MAIN(TestListFiles)
#include "tst_listfiles.moc"
