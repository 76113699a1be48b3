// SPDX-License-Identifier: MIT
// The program is closed at any moment: it ends by itself and in good order, and says nothing.

#include "childprocess.h"

#include <QElapsedTimer>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

namespace {

const char *const Moments[] = {"idle", "live", "unplugged", "inside-open", "inside-close", "upload",
                               "detection", "capturing", "light-leak", "write-question", "usage", "about",
                               "about-qt", "save", "load", "import", "camera-menu", "hotpixel-menu",
                               "zoom-menu", "no-storage-warning", "slow-calls",
#ifndef SPECKMEND_ADDRESS_SANITIZER
                               // A thread that is ended in the middle of a call unwinds through frames which
                               // the sanitizer's own interceptor stumbles over.
                               "delayed-threads",
#endif
                               "blocked-threads"};

constexpr int HangNet = 60000; // milliseconds

/// Neither is of the program's words: what the platform without a display says of itself, nor that the window
/// manager has done away with a frame that the platform plug-in still asks for.
QByteArray withoutPlatformTexts(const QByteArray &text)
{
    QByteArray rest;
    for (const QByteArray &line : text.split('\n')) {
        if (!line.isEmpty() && !line.startsWith("This plugin does not support ") &&
            !line.startsWith("qt.qpa.xcb: QXcbConnection: XCB error"))
            rest += line + '\n';
    }
    return rest;
}

} // namespace

class TestShutdown : public QObject
{
    Q_OBJECT

private slots:
    void theProgramEndsWheneverItIsClosed_data();
    void theProgramEndsWheneverItIsClosed();
    void cleanupTestCase();

private:
    int closed = 0;
    qint64 longest = 0;
    QString slowest;
};

void TestShutdown::theProgramEndsWheneverItIsClosed_data()
{
    QTest::addColumn<QString>("moment");
    QTest::addColumn<QString>("way");
    for (const char *moment : Moments) {
        for (const char *way : {"top", "window", "all", "quit"})
            QTest::newRow((QByteArray(moment) + ", " + way).constData()) << moment << way;
    }
}

void TestShutdown::theProgramEndsWheneverItIsClosed()
{
    QFETCH(QString, moment);
    QFETCH(QString, way);
    const QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", home.path());
    environment.insert("XDG_CONFIG_HOME", home.path());
    environment.insert("XDG_RUNTIME_DIR", home.path());
    ChildProcess program;
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(home.path());
    QElapsedTimer timer;
    timer.start();
    program.startBuilt(CLOSING_PROGRAM, {moment, way});
    const bool ended = program.waitForFinished(HangNet);
    if (!ended)
        program.kill();
    program.waitForFinished();
    const QByteArray said = withoutPlatformTexts(program.readAllStandardError());
    QVERIFY2(ended, "it does not end");
    QVERIFY2(said.isEmpty(), said.constData());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    const QSettings settings(home.filePath("Kelvo/Kelvo.conf"), QSettings::IniFormat);
    QVERIFY(!settings.value("Speckmend/mainWindow/geometry").toByteArray().isEmpty());
    QVERIFY(!settings.value("Speckmend/mainWindow/state").toByteArray().isEmpty());
    ++closed;
    if (timer.elapsed() > longest) {
        longest = timer.elapsed();
        slowest = QTest::currentDataTag();
    }
}

void TestShutdown::cleanupTestCase()
{
    std::printf("closed %d times; the longest run took %lld ms from start to end: %s\n", closed,
                static_cast<long long>(longest), qPrintable(slowest));
}

QTEST_GUILESS_MAIN(TestShutdown)
#include "tst_shutdown.moc"
