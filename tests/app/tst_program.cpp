// SPDX-License-Identifier: MIT
// The program as it is started: on the simulated library, on another one, and what it says when it cannot.

#include "childprocess.h"

#include <QtTest>

class TestProgram : public QObject
{
    Q_OBJECT

private slots:
    void itStartsOnTheSimulatedLibraryAndEndsWhenAsked();
    void anotherLibraryTakesThePlaceAndAFailureEndsTheProgramWithItsText();
};

void TestProgram::itStartsOnTheSimulatedLibraryAndEndsWhenAsked()
{
    ChildProcess program;
    program.startBuilt(PROGRAM);
    QVERIFY(program.waitForStarted());
    const QString ofProcess = QString("/proc/%1/maps").arg(program.processId());
    const auto loaded = [&] {
        QFile file(ofProcess);
        return file.open(QIODevice::ReadOnly) && file.readAll().contains("/simulator/libkelvo_api.so.1");
    };
    QTRY_VERIFY(loaded());
    QCOMPARE(program.state(), QProcess::Running);
    program.terminate();
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::CrashExit); // the signal ends it, nothing else does
}

void TestProgram::anotherLibraryTakesThePlaceAndAFailureEndsTheProgramWithItsText()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_LIBRARY_PATH", FAILING_LIBRARY_FOLDER);
    ChildProcess program;
    program.setProcessEnvironment(environment);
    program.startBuilt(PROGRAM);
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 1);
    QVERIFY(program.readAllStandardError().contains("Can't get number of cameras."));
}

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
