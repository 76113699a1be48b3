// SPDX-License-Identifier: MIT
// The installed program: what is where, and how it starts with and without a camera library.

#include "installedtree.h"

#include <QFileInfo>
#include <QImageReader>
#include <QtTest>

#include <csignal>

class TestInstall : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everythingIsInTheGnuFolders();
    void iconsHaveTheSizesOfTheirFolders();
    void theSimulatedLibraryIsInNoFolderThatTheLoaderSearches();
    void withoutACameraLibraryTheTextSaysWhatIsMissingAndWhereItWasLookedFor();
    void whatIsWrongWithAnUnusableLibraryIsSaid_data();
    void whatIsWrongWithAnUnusableLibraryIsSaid();
    void withACameraLibraryTheLauncherBecomesTheProgram();
    void simulatedCamerasStartWithABenchFileOfTheUsersOwnAndThePanelEndsWithThem();
    void aBenchFileOfTheUsersOwnStaysAsItIs();
    void anUnwritableHomeStillGetsSimulatedCameras();

private:
    QByteArray failureOn(const QString &libraryFolder);

    InstalledTree m_tree;
};

namespace {

const QString launcher = BINDIR "/speckmend";
const QString program = LIBEXECDIR "/speckmend/speckmend";
const QString simulated = BINDIR "/speckmend-simulated";
const QString panel = BINDIR "/kelvo-bench";
const QString libraryFolder = LIBDIR "/speckmend-simulator";
const QString defaultBench = DATADIR "/speckmend-simulator/default.bench";

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool hasInEnvironment(qint64 process, const QByteArray &variable)
{
    return contents(QString("/proc/%1/environ").arg(process)).split('\0').contains(variable);
}

// Less the one that merely lists its libraries.
QList<qint64> processesOf(const QString &executable)
{
    QList<qint64> found;
    for (const QString &name : QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs)) {
        const qint64 process = name.toLongLong();
        if (QFile::symLinkTarget("/proc/" + name + "/exe") == executable &&
            !hasInEnvironment(process, "LD_TRACE_LOADED_OBJECTS=1"))
            found.append(process);
    }
    return found;
}

bool uses(const QList<qint64> &processes, const QString &file)
{
    return processes.size() == 1 &&
           contents(QString("/proc/%1/maps").arg(processes.first())).contains(QFile::encodeName(file));
}

// A user without anything of the simulation's.
QProcessEnvironment environmentOf(const QString &dataFolder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("KELVOSIM_BENCH");
    environment.insert("XDG_DATA_HOME", dataFolder);
    return environment;
}

// The running program on simulated cameras; ended with the script that started it.
class SimulatedSession final
{
public:
    SimulatedSession(const InstalledTree &tree, const QString &dataFolder)
        : m_tree(tree)
    {
        m_script.setProcessEnvironment(environmentOf(dataFolder));
        m_script.start(tree.path(simulated), QStringList());
    }

    ~SimulatedSession()
    {
        end();
        endAll(panels());
    }

    QList<qint64> programs() const { return processesOf(m_tree.path(program)); }
    QList<qint64> panels() const { return processesOf(m_tree.path(panel)); }
    bool isRunning() const { return uses(programs(), m_tree.path(libraryFolder)) && panels().size() == 1; }

    /// Ends the program; the script then ends by itself.
    bool end()
    {
        endAll(programs());
        return m_script.state() == QProcess::NotRunning || m_script.waitForFinished();
    }

private:
    static void endAll(const QList<qint64> &processes)
    {
        for (const qint64 process : processes)
            ::kill(static_cast<pid_t>(process), SIGTERM);
    }

    const InstalledTree &m_tree;
    QProcess m_script;
};

} // namespace

void TestInstall::initTestCase()
{
    QVERIFY(m_tree.isComplete());
}

void TestInstall::everythingIsInTheGnuFolders()
{
    const QString data = DATADIR;
    const QString manual = MANDIR;
    QStringList expected{launcher,
                         program,
                         simulated,
                         panel,
                         libraryFolder + "/libkelvo_api.so.1",
                         libraryFolder + "/libkelvo_api.so.1.0",
                         defaultBench,
                         data + "/applications/speckmend.desktop",
                         data + "/applications/speckmend-simulated.desktop",
                         data + "/metainfo/org.example.speckmend.metainfo.xml",
                         manual + "/man1/speckmend.1",
                         manual + "/man1/speckmend-simulated.1",
                         manual + "/man1/kelvo-bench.1",
                         data + "/icons/hicolor/scalable/apps/speckmend.svg",
                         data + "/doc/speckmend/README.md",
                         data + "/doc/speckmend/CHANGELOG.md",
                         data + "/doc/speckmend/CONTRIBUTING.md",
                         data + "/doc/speckmend-simulator/simulator.md"};
    for (const int size : {16, 22, 24, 32, 48, 64, 96, 128, 256, 512})
        expected.append(QString(data + "/icons/hicolor/%1x%1/apps/speckmend.png").arg(size));
    expected.sort();

    QStringList found = m_tree.files();
    const QStringList pages = found.filter(data + "/doc/speckmend/docs/");
    QVERIFY(pages.contains(data + "/doc/speckmend/docs/cameraparameter.xml"));
    QVERIFY(pages.contains(data + "/doc/speckmend/docs/screenshots/entry.png"));
    for (const QString &page : pages)
        found.removeOne(page);
    QCOMPARE(found, expected);
}

void TestInstall::iconsHaveTheSizesOfTheirFolders()
{
    const QDir theme(m_tree.path(DATADIR "/icons/hicolor"));
    const QStringList folders = theme.entryList({"*x*"}, QDir::Dirs);
    QVERIFY(!folders.isEmpty());
    for (const QString &folder : folders) {
        const QSize size = QImageReader(theme.filePath(folder + "/apps/speckmend.png")).size();
        QCOMPARE(QString("%1x%2").arg(size.width()).arg(size.height()), folder);
    }
}

void TestInstall::theSimulatedLibraryIsInNoFolderThatTheLoaderSearches()
{
    const QStringList libraries = m_tree.files().filter("libkelvo_api");
    QVERIFY(!libraries.isEmpty());
    for (const QString &library : libraries)
        QCOMPARE(QFileInfo(library).path(), libraryFolder);
}

QByteArray TestInstall::failureOn(const QString &folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_LIBRARY_PATH", folder);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(m_tree.path(launcher), QStringList());
    const bool failed =
        process.waitForFinished() && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 1;
    return failed ? process.readAllStandardError() : QByteArray("it did not end with exit status 1");
}

void TestInstall::withoutACameraLibraryTheTextSaysWhatIsMissingAndWhereItWasLookedFor()
{
    if (machineHasCameraLibrary())
        QSKIP("this machine has a camera library");
    const QByteArray text = failureOn("/no/such/folder");
    QVERIFY2(text.contains("the camera library libkelvo_api.so.1 was not found"), text);
    QVERIFY2(text.contains("LD_LIBRARY_PATH: /no/such/folder"), text);
    QVERIFY2(text.contains("/etc/ld.so.conf"), text);
    QVERIFY2(text.contains("/usr/lib"), text);
    QVERIFY2(text.contains("speckmend-simulator"), text);
}

void TestInstall::whatIsWrongWithAnUnusableLibraryIsSaid_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QByteArray>("complaint");

    const QString damaged = m_tree.path("damaged");
    QVERIFY(QDir().mkpath(damaged));
    QFile file(damaged + "/libkelvo_api.so.1");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("no library");
    QTest::newRow("damaged") << damaged << QByteArray("libkelvo_api.so.1: file too short");
    QTest::newRow("lacks functions") << LACKING_LIBRARY_FOLDER << QByteArray("undefined symbol: vx_HotPixel");
}

void TestInstall::whatIsWrongWithAnUnusableLibraryIsSaid()
{
    QFETCH(QString, folder);
    QFETCH(QByteArray, complaint);
    const QByteArray text = failureOn(folder);
    QVERIFY2(text.startsWith("Speckmend cannot start with the libraries that were found:"), text);
    QVERIFY2(text.contains(complaint), text);
    QVERIFY2(!text.contains("vx_GetNumberOfCameras"), text);
}

void TestInstall::withACameraLibraryTheLauncherBecomesTheProgram()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_LIBRARY_PATH", m_tree.path(libraryFolder));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(m_tree.path(launcher), {"-style", "fusion"});
    QTRY_COMPARE(processesOf(m_tree.path(program)), QList<qint64>{process.processId()});
    QCOMPARE(contents(QString("/proc/%1/cmdline").arg(process.processId())),
             QFile::encodeName(m_tree.path(launcher)) + QByteArray("\0-style\0fusion\0", 15));
    QTRY_VERIFY(uses({process.processId()}, m_tree.path(libraryFolder)));
    process.terminate();
    QVERIFY(process.waitForFinished());
}

void TestInstall::simulatedCamerasStartWithABenchFileOfTheUsersOwnAndThePanelEndsWithThem()
{
    const QTemporaryDir data;
    SimulatedSession session(m_tree, data.path());
    QTRY_VERIFY_WITH_TIMEOUT(session.isRunning(), 30000);
    const QString bench = data.filePath("kelvo-simulator/cameras.bench");
    QCOMPARE(contents(bench), contents(m_tree.path(defaultBench)));
    QVERIFY(hasInEnvironment(session.programs().first(), QFile::encodeName("KELVOSIM_BENCH=" + bench)));
    QVERIFY(session.end());
    QTRY_VERIFY(session.panels().isEmpty());
}

void TestInstall::aBenchFileOfTheUsersOwnStaysAsItIs()
{
    const QTemporaryDir data;
    QVERIFY(QDir(data.path()).mkdir("kelvo-simulator"));
    const QString bench = data.filePath("kelvo-simulator/cameras.bench");
    QFile file(bench);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("# none\n");
    file.close();
    SimulatedSession session(m_tree, data.path());
    QTRY_VERIFY_WITH_TIMEOUT(session.isRunning(), 30000);
    QCOMPARE(contents(bench), QByteArray("# none\n"));
}

void TestInstall::anUnwritableHomeStillGetsSimulatedCameras()
{
    SimulatedSession session(m_tree, "/dev/null");
    QTRY_VERIFY_WITH_TIMEOUT(session.isRunning(), 30000);
    const QString bench = QDir::cleanPath(m_tree.path(BINDIR)) + "/" +
                          QDir(m_tree.path(BINDIR)).relativeFilePath(m_tree.path(defaultBench));
    QVERIFY(hasInEnvironment(session.programs().first(), QFile::encodeName("KELVOSIM_BENCH=" + bench)));
}

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_install.moc"
