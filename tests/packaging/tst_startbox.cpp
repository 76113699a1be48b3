// SPDX-License-Identifier: MIT
// Who starts the installed program from the desktop sees why it cannot start. Meant for a display: without
// one, it is the other way round.

#include "installedtree.h"

#include <QtTest>

class TestStartBox : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_tree.isComplete()); }
    void whatIsMissingIsShownInABox();
    void aCameraLibraryThatFailsIsShownInABox();

private:
    void startsInVain(const QString &libraryFolder, const QByteArray &text);

    InstalledTree m_tree;
};

namespace {

bool hasWindow(const QString &title)
{
    QProcess xwininfo;
    xwininfo.start("xwininfo", {"-name", title});
    xwininfo.waitForFinished();
    return xwininfo.exitCode() == 0 && xwininfo.readAllStandardOutput().contains("Map State: IsViewable");
}

} // namespace

void TestStartBox::startsInVain(const QString &libraryFolder, const QByteArray &text)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_LIBRARY_PATH", libraryFolder);
    QProcess launcher;
    launcher.setProcessEnvironment(environment);
    launcher.start(m_tree.path(BINDIR "/speckmend"), QStringList());
    if (qgetenv("QT_QPA_PLATFORM") != "offscreen") {
        QTRY_VERIFY_WITH_TIMEOUT(hasWindow("Speckmend"), 60000);
        QCOMPARE(launcher.state(), QProcess::Running);
        launcher.terminate();
    }
    QVERIFY(launcher.waitForFinished());
    QVERIFY(launcher.readAllStandardError().contains(text));
}

void TestStartBox::whatIsMissingIsShownInABox()
{
    if (machineHasCameraLibrary())
        QSKIP("this machine has a camera library");
    startsInVain("/no/such/folder", "libkelvo_api.so.1 was not found");
}

void TestStartBox::aCameraLibraryThatFailsIsShownInABox()
{
    startsInVain(FAILING_LIBRARY_FOLDER, "Can't get number of cameras.");
}

QTEST_GUILESS_MAIN(TestStartBox)
#include "tst_startbox.moc"
