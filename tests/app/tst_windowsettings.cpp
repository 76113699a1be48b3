// SPDX-License-Identifier: MIT
// What the window remembers from run to run, when it writes that down, and stores that hold nonsense.

#include "windowfixture.h"

#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QScreen>
#include <QSettings>
#include <QSignalSpy>
#include <QTabBar>
#include <QToolBar>
#include <QtTest>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace {

const QString GeometryKey = "Speckmend/mainWindow/geometry";
const QString StateKey = "Speckmend/mainWindow/state";
const char *const DockNames[] = {"CameraListDock", "BadpixelListDock", "MagnifierDock", "CameraSliderDock"};

/// The window's store, opened anew, so that it tells what is written.
class Store
{
public:
    QStringList keys() const { return settings.allKeys(); }
    QString fileName() const { return settings.fileName(); }
    QVariant value(const QString &key) const { return settings.value(key); }
    void set(const QString &key, const QVariant &value) { settings.setValue(key, value); }

private:
    QSettings settings{"Kelvo", "Kelvo"};
};

void storeBoth(const QVariant &geometry, const QVariant &state)
{
    Store store;
    store.set(GeometryKey, geometry);
    store.set(StateKey, state);
}

QStringList warnings;

void keepWarning(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type != QtDebugMsg)
        warnings << text;
}

} // namespace

class TestWindowSettings : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.resetBench(); }
    void cleanup() { bench.window.reset(); }

    void settingsHaveTheirPlaceAndTwoKeys();
    void aRunWritesAtItsEndAlone();
    void everyNormalEndWrites_data();
    void everyNormalEndWrites();
    void aWindowThatCannotBeBuiltWritesNothing();

    void theFirstRunShowsTheDefaultLayout();
    void aDockThatIsMovedRightAndClosedStaysSo();
    void aDockThatIsAloneStaysAlone();
    void aFloatingDockGoesOnFloating();
    void theToolBarStaysWhereItIs();
    void aToolBarThatFloatedOnALostScreenIsFetched_data();
    void aToolBarThatFloatedOnALostScreenIsFetched();
    void sizeAndPlaceComeBack();
    void aMaximisedWindowComesBackMaximised();
    void theCameraListIsRaisedWhateverWasInFront();
    void aStateOfAnotherVersionIsIgnored();
    void docksAndToolBarAreFoundByTheirNames();

    void valuesOfOtherTypesAreIgnored_data();
    void valuesOfOtherTypesAreIgnored();
    void brokenBytesDoNoHarm_data();
    void brokenBytesDoNoHarm();
    void aFileThatHoldsNoSettingsIsIgnored();
    void aStoreThatCannotBeReadOrWrittenIsIgnored_data();
    void aStoreThatCannotBeReadOrWrittenIsIgnored();

private:
    QDockWidget *dock(const char *name) const { return bench.window->findChild<QDockWidget *>(name); }
    QToolBar *toolBar() const { return bench.window->findChild<QToolBar *>("mainToolBar"); }
    bool isWhole() const;
    bool hasDefaultLayout() const;
    void storeOfAnArrangedWindow();

    WindowFixture bench;
};

/// The window has all its parts, and works.
bool TestWindowSettings::isWhole() const
{
    for (const char *name : DockNames) {
        if (!dock(name))
            return false;
    }
    return toolBar() && bench.driver->cameraTable() && bench.driver->badpixelTable() &&
           bench.window->centralWidget() && bench.driver->cameraTable()->model()->rowCount() == 3;
}

bool TestWindowSettings::hasDefaultLayout() const
{
    for (const char *name : DockNames) {
        if (bench.window->dockWidgetArea(dock(name)) != Qt::LeftDockWidgetArea ||
            !dock(name)->isVisibleTo(bench.window.get()) || dock(name)->isFloating())
            return false;
    }
    return bench.window->tabifiedDockWidgets(dock("CameraListDock")) ==
               QList<QDockWidget *>{dock("BadpixelListDock")} &&
           bench.window->tabifiedDockWidgets(dock("MagnifierDock")).isEmpty() &&
           bench.window->toolBarArea(toolBar()) == Qt::TopToolBarArea && !toolBar()->isHidden();
}

/// Lets a run write settings that have something of everything.
void TestWindowSettings::storeOfAnArrangedWindow()
{
    bench.showWindow();
    bench.window->resize(760, 640);
    bench.window->addDockWidget(Qt::RightDockWidgetArea, dock("MagnifierDock"));
    dock("CameraSliderDock")->setFloating(true);
    dock("CameraSliderDock")->move(40, 50);
    bench.window->addToolBar(Qt::BottomToolBarArea, toolBar());
    bench.window.reset();
}

void TestWindowSettings::settingsHaveTheirPlaceAndTwoKeys()
{
    bench.showWindow();
    bench.window.reset();
    QCOMPARE(Store().keys(), (QStringList{GeometryKey, StateKey}));
    for (const QString &key : {GeometryKey, StateKey})
        QCOMPARE(static_cast<QMetaType::Type>(Store().value(key).type()), QMetaType::QByteArray);

    const QFileInfo file(Store().fileName());
    QCOMPARE(file.fileName(), QString("Kelvo.conf"));
    QCOMPARE(file.dir().dirName(), QString("Kelvo"));
    QDir root = file.dir();
    QVERIFY(root.cdUp());
    QCOMPARE(root.entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"Kelvo"});
    QCOMPARE(file.dir().entryList(QDir::Files), QStringList{"Kelvo.conf"});
}

void TestWindowSettings::aRunWritesAtItsEndAlone()
{
    bench.showWindow();
    bench.open(bench.mono);
    QVERIFY(bench.pushFlat(bench.mono, 40));
    QTRY_VERIFY(!bench.driver->shownImage().isNull());
    bench.window->resize(760, 640);
    dock("MagnifierDock")->close();
    bench.driver->trigger("closeCameraAction");
    bench.window->close();
    testcamera::turnEventLoop();
    QCOMPARE(Store().keys(), QStringList());
    bench.window.reset();
    QCOMPARE(Store().keys().size(), 2);
}

void TestWindowSettings::everyNormalEndWrites_data()
{
    QTest::addColumn<QString>("end");
    QTest::newRow("the exit command") << "exitAction";
    QTest::newRow("the window's own button") << "close";
    QTest::newRow("quitting the program") << "quit";
}

void TestWindowSettings::everyNormalEndWrites()
{
    QFETCH(QString, end);
    bench.showWindow();
    dock("MagnifierDock")->close();
    QTimer::singleShot(0, [&] {
        if (end == "exitAction")
            bench.driver->trigger("exitAction");
        else if (end == "close")
            bench.window->close();
        else
            QCoreApplication::quit();
    });
    QCOMPARE(QApplication::exec(), 0);
    QCOMPARE(Store().keys(), QStringList());
    bench.window.reset();
    QCOMPARE(Store().keys(), (QStringList{GeometryKey, StateKey}));
    bench.showWindow();
    QVERIFY(!dock("MagnifierDock")->isVisible());
    QVERIFY(dock("CameraSliderDock")->isVisible());
}

void TestWindowSettings::aWindowThatCannotBeBuiltWritesNothing()
{
    kelvosim::failCall("vx_GetNumberOfCameras", 1, 3, "bus error");
    QVERIFY_EXCEPTION_THROWN(MainWindow(), std::runtime_error);
    QCOMPARE(Store().keys(), QStringList());
}

void TestWindowSettings::theFirstRunShowsTheDefaultLayout()
{
    bench.showWindow();
    QVERIFY(hasDefaultLayout());
    QTRY_VERIFY(!dock("CameraListDock")->visibleRegion().isEmpty());
    QVERIFY(dock("BadpixelListDock")->visibleRegion().isEmpty());
}

void TestWindowSettings::aDockThatIsMovedRightAndClosedStaysSo()
{
    bench.showWindow();
    bench.window->addDockWidget(Qt::RightDockWidgetArea, dock("MagnifierDock"));
    dock("MagnifierDock")->close();
    bench.showWindow();
    QCOMPARE(bench.window->dockWidgetArea(dock("MagnifierDock")), Qt::RightDockWidgetArea);
    QVERIFY(!dock("MagnifierDock")->isVisible());
    for (const char *name : {"CameraListDock", "BadpixelListDock", "CameraSliderDock"}) {
        QVERIFY2(dock(name)->isVisible(), name);
        QCOMPARE(bench.window->dockWidgetArea(dock(name)), Qt::LeftDockWidgetArea);
    }
    // It is still there to be shown.
    bench.driver->trigger("showMagnifierAction");
    QVERIFY(dock("MagnifierDock")->isVisible());
    bench.showWindow();
    QVERIFY(dock("MagnifierDock")->isVisible());
}

void TestWindowSettings::aDockThatIsAloneStaysAlone()
{
    bench.showWindow();
    bench.window->addDockWidget(Qt::RightDockWidgetArea, dock("BadpixelListDock"));
    bench.showWindow();
    QCOMPARE(bench.window->dockWidgetArea(dock("BadpixelListDock")), Qt::RightDockWidgetArea);
    QVERIFY(bench.window->tabifiedDockWidgets(dock("CameraListDock")).isEmpty());
    QTRY_VERIFY(!dock("BadpixelListDock")->visibleRegion().isEmpty());
}

void TestWindowSettings::aFloatingDockGoesOnFloating()
{
    bench.showWindow();
    dock("CameraSliderDock")->setFloating(true);
    dock("CameraSliderDock")->setGeometry(210, 120, 330, 260);
    bench.showWindow();
    QVERIFY(dock("CameraSliderDock")->isFloating());
    QVERIFY(dock("CameraSliderDock")->isVisible());
    QTRY_COMPARE(dock("CameraSliderDock")->geometry(), QRect(210, 120, 330, 260));
    QVERIFY(!dock("MagnifierDock")->isFloating());
}

void TestWindowSettings::theToolBarStaysWhereItIs()
{
    bench.showWindow();
    bench.window->addToolBar(Qt::BottomToolBarArea, toolBar());
    bench.showWindow();
    QCOMPARE(bench.window->toolBarArea(toolBar()), Qt::BottomToolBarArea);
    toolBar()->hide();
    bench.showWindow();
    QVERIFY(!toolBar()->isVisible());
}

void TestWindowSettings::aToolBarThatFloatedOnALostScreenIsFetched_data()
{
    QTest::addColumn<QRect>("place");
    QTest::addColumn<bool>("stays");
    QTest::newRow("far right and below") << QRect(20000, 20000, 300, 50) << false;
    QTest::newRow("far left and above") << QRect(-20000, -20000, 300, 50) << false;
    QTest::newRow("giant") << QRect(0, 0, 30000, 30000) << true;
    QTest::newRow("where it can be seen") << QRect(60, 70, 300, 50) << true;
}

void TestWindowSettings::aToolBarThatFloatedOnALostScreenIsFetched()
{
    QFETCH(QRect, place);
    QFETCH(bool, stays);
    bench.showWindow();
    toolBar()->setWindowFlags(Qt::Tool |
                              Qt::FramelessWindowHint); // as one that was dragged out by its handle
    toolBar()->setGeometry(place);
    toolBar()->show();
    bench.showWindow();
    QVERIFY(toolBar()->isFloating());
    const QRect room = bench.window->screen()->availableGeometry();
    QVERIFY(room.contains(toolBar()->geometry()));
    QCOMPARE(toolBar()->pos() == place.topLeft(), stays);
}

void TestWindowSettings::sizeAndPlaceComeBack()
{
    bench.showWindow();
    for (const char *name : {"MagnifierDock", "CameraSliderDock"})
        dock(name)->close(); // the rest fits on a small screen
    const QRect wanted(13, 37, 613, 471);
    QVERIFY(QGuiApplication::primaryScreen()->availableGeometry().contains(wanted));
    QTRY_VERIFY(bench.window->minimumHeight() < wanted.height());
    bench.window->setGeometry(wanted);
    QTRY_COMPARE(bench.window->geometry(), wanted);
    bench.showWindow();
    QTRY_COMPARE(bench.window->geometry(), wanted);
}

void TestWindowSettings::aMaximisedWindowComesBackMaximised()
{
    bench.showWindow();
    bench.window->showMaximized();
    QTRY_VERIFY(bench.window->isMaximized());
    bench.showWindow();
    QVERIFY(bench.window->isMaximized());
    bench.window->showNormal();
    bench.showWindow();
    QVERIFY(!bench.window->isMaximized());
}

void TestWindowSettings::theCameraListIsRaisedWhateverWasInFront()
{
    bench.showWindow();
    dock("BadpixelListDock")->raise();
    QTRY_VERIFY(!dock("BadpixelListDock")->visibleRegion().isEmpty());
    bench.showWindow();
    QTRY_VERIFY(!dock("CameraListDock")->visibleRegion().isEmpty());
    QVERIFY(dock("BadpixelListDock")->visibleRegion().isEmpty());
}

void TestWindowSettings::aStateOfAnotherVersionIsIgnored()
{
    bench.showWindow();
    dock("MagnifierDock")->close();
    const QByteArray other = bench.window->saveState(1);
    bench.window.reset();
    const QByteArray written = Store().value(StateKey).toByteArray();

    Store().set(StateKey, other);
    bench.showWindow();
    QVERIFY(hasDefaultLayout());

    // What a run writes is of version 0.
    QVERIFY(!bench.window->restoreState(written, 1));
    QVERIFY(bench.window->restoreState(written, 0));
    QVERIFY(!dock("MagnifierDock")->isVisible());
}

void TestWindowSettings::docksAndToolBarAreFoundByTheirNames()
{
    storeOfAnArrangedWindow();
    const QByteArray state = Store().value(StateKey).toByteArray();
    const auto mentions = [&](const char *name) { // names are kept as UTF-16 with the high byte first
        QByteArray wide;
        for (const char *letter = name; *letter; ++letter)
            wide.append('\0').append(*letter);
        return state.contains(wide);
    };
    for (const char *name : DockNames)
        QVERIFY2(mentions(name), name);
    QVERIFY(mentions("mainToolBar"));

    // Qt warns of docks and tool bars without a name.
    bench.showWindow();
    warnings.clear();
    const QtMessageHandler before = qInstallMessageHandler(keepWarning);
    bench.window.reset();
    qInstallMessageHandler(before);
    QCOMPARE(warnings.filter("saveState"), QStringList());
}

void TestWindowSettings::valuesOfOtherTypesAreIgnored_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("empty bytes") << QVariant(QByteArray());
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("a text") << QVariant("left of the other one");
    QTest::newRow("a number") << QVariant(1180);
    QTest::newRow("a switch") << QVariant(true);
    QTest::newRow("a list") << QVariant(QVariantList{1, "two", QByteArray("three")});
    QTest::newRow("a map") << QVariant(QVariantMap{{"x", 1}, {"y", QByteArray("two")}});
    QTest::newRow("a rectangle") << QVariant(QRect(1, 2, 3, 4));
    QTest::newRow("text beyond ASCII") << QVariant(QString::fromUtf8("größer"));
}

void TestWindowSettings::valuesOfOtherTypesAreIgnored()
{
    QFETCH(QVariant, value);
    bench.showWindow();
    const QSize usual = bench.window->size();
    bench.window.reset();
    storeBoth(value, value);
    bench.showWindow();
    QVERIFY(isWhole());
    QVERIFY(hasDefaultLayout());
    QCOMPARE(bench.window->size(), usual);
    // The next end writes proper ones over them.
    bench.window.reset();
    for (const QString &key : {GeometryKey, StateKey})
        QVERIFY(Store().value(key).toByteArray().size() > 20);
}

void TestWindowSettings::brokenBytesDoNoHarm_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"cut short", "one byte changed", "many bytes changed", "random"})
        QTest::newRow(kind) << kind;
}

/// Every length and every byte of values that a window wrote itself, and others without any sense.
void TestWindowSettings::brokenBytesDoNoHarm()
{
    QFETCH(QString, kind);
    storeOfAnArrangedWindow();
    const QByteArray geometry = Store().value(GeometryKey).toByteArray();
    const QByteArray state = Store().value(StateKey).toByteArray();
    QVERIFY(geometry.size() > 20 && state.size() > 100);
    const unsigned seed = 20240607;
    std::mt19937 random(seed);
    const auto change = [&](QByteArray bytes, int at) {
        if (at < bytes.size())
            bytes[at] = static_cast<char>(bytes[at] ^ static_cast<char>(1 + random() % 255));
        return bytes;
    };
    const auto broken = [&](QByteArray bytes, int at) {
        if (kind == "cut short")
            return bytes.left(at);
        if (kind == "one byte changed")
            return change(bytes, at);
        if (kind == "random")
            std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
        for (int i = 0; i < 8 && kind == "many bytes changed"; ++i)
            bytes = change(bytes, static_cast<int>(random() % static_cast<unsigned>(bytes.size())));
        return bytes;
    };
    const int rounds = kind == "random" ? 40 : kind == "many bytes changed" ? 120 : state.size();
    for (int round = 0; round < rounds; ++round) {
        bench.window.reset(); // it writes its own
        storeBoth(broken(geometry, round), broken(state, round));
        bench.showWindow();
        QVERIFY2(isWhole(), qPrintable(QString("round %1 of seed %2").arg(round).arg(seed)));
    }
}

void TestWindowSettings::aFileThatHoldsNoSettingsIsIgnored()
{
    const QString path = Store().fileName();
    QVERIFY(QFileInfo(path).dir().mkpath("."));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("\0\377]=[\n%%%=@ByteArray(\\x\n[Speckmend\nmainWindow\\state=@Invalid", 60));
    file.close();
    bench.showWindow();
    QVERIFY(isWhole());
    QVERIFY(hasDefaultLayout());
}

void TestWindowSettings::aStoreThatCannotBeReadOrWrittenIsIgnored_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("a file in the folder's place") << "Kelvo";
    QTest::newRow("a folder in the file's place") << "Kelvo/Kelvo.conf/folder/file";
}

void TestWindowSettings::aStoreThatCannotBeReadOrWrittenIsIgnored()
{
    QFETCH(QString, obstacle);
    QTemporaryDir blocked;
    const QFileInfo inTheWay(blocked.filePath(obstacle));
    QVERIFY(inTheWay.dir().mkpath("."));
    QFile file(inTheWay.filePath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    const QString usual = QFileInfo(QFileInfo(Store().fileName()).path()).path();
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, blocked.path());
    bench.showWindow();
    const bool whole = isWhole() && hasDefaultLayout();
    bench.window.reset();
    const bool written = QFileInfo(Store().fileName()).isFile();
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, usual);
    QVERIFY(whole);
    QVERIFY(!written);
    QCOMPARE(QFileInfo(file).size(), 0);
}

QTEST_MAIN(TestWindowSettings)
#include "tst_windowsettings.moc"
