// SPDX-License-Identifier: MIT
// The program as its main() starts it in a German environment: it installs no translator.

#include <QAction>
#include <QDir>
#include <QHeaderView>
#include <QLocale>
#include <QMenuBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#define main startProgram
#include "main.cpp" // of the program; NOLINT(bugprone-suspicious-include)
#undef main

namespace {

struct Seen
{
    QStringList menus;
    QString action;
    QString header;
} seen;

void look(const MainWindow &window)
{
    for (const QAction *menu : window.menuBar()->actions())
        seen.menus << menu->text();
    seen.action = window.findChild<QAction *>("detectAction")->text();
    seen.header =
        window.findChild<QTableView *>("badpixelTable")->model()->headerData(2, Qt::Horizontal).toString();
}

/// Looks at the window once it is there, and closes it, which ends the program.
void lookSoon()
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, [] {
        for (QWidget *top : QApplication::topLevelWidgets()) {
            const auto *window = qobject_cast<MainWindow *>(top);
            if (window && window->isVisible()) {
                look(*window);
                top->close();
            }
        }
    });
    timer->start(10);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(lookSoon)

class TestGermanEnvironment : public QObject
{
    Q_OBJECT

private slots:
    void theProgramStaysEnglish();
};

void TestGermanEnvironment::theProgramStaysEnglish()
{
    // ctest says so; a process reads its environment's language but once, and before this line.
    QCOMPARE(QLocale::system().language(), QLocale::German);
    QTemporaryDir folder; // not even a compiled translation in the folder that it is started in is taken
    QVERIFY(QFile::copy(GERMAN_SHIPPED, folder.filePath("speckmend_de.qm")));
    QVERIFY(QDir::setCurrent(folder.path()));

    int argc = 1;
    char name[] = "speckmend";
    char *argv[] = {name, nullptr};
    QCOMPARE(startProgram(argc, argv), 0);
    QCOMPARE(seen.menus, (QStringList{"&File", "&View", "&Help"}));
    QCOMPARE(seen.action, QString("Detec&t hot pixel"));
    QCOMPARE(seen.header, QString("class"));
}

QTEST_APPLESS_MAIN(TestGermanEnvironment)
#include "tst_germanenvironment.moc"
