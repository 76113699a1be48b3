// SPDX-License-Identifier: MIT
// Which bytes are taken for a saved arrangement of docks and tool bars: all that Qt writes, and nothing else.

#include "savedlayout.h"

#include <QDataStream>
#include <QDockWidget>
#include <QMainWindow>
#include <QToolBar>
#include <QtTest>

namespace {

/// A main window with five docks and two tool bars.
class ArrangedWindow
{
public:
    ArrangedWindow()
    {
        for (int i = 0; i < 5; ++i) {
            auto *dock = new QDockWidget(QString("dock %1").arg(i), &window);
            dock->setObjectName(QString("dock%1").arg(i));
            dock->setWidget(new QWidget);
            window.addDockWidget(i < 3 ? Qt::LeftDockWidgetArea : Qt::RightDockWidgetArea, dock);
            docks << dock;
        }
        for (const char *name : {"first", "second"}) {
            QToolBar *bar = window.addToolBar(name);
            bar->setObjectName(name);
            bars << bar;
        }
        window.setCentralWidget(new QWidget);
    }

    QByteArray state()
    {
        window.show();
        return window.saveState(0);
    }

    QMainWindow window;
    QList<QDockWidget *> docks;
    QList<QToolBar *> bars;
};

QByteArray number(qint32 value)
{
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << value;
    return bytes;
}

/// The first bytes of a state: marker, version, marker of the docks.
const int HeadSize = 9;

} // namespace

class TestSavedLayout : public QObject
{
    Q_OBJECT

private slots:
    void everyArrangementIsTaken_data();
    void everyArrangementIsTaken();
    void aCutOrLengthenedStateIsNot();
    void anImpossiblePlaceIsNot_data();
    void anImpossiblePlaceIsNot();
    void anImpossibleCornerIsNot();
    void anotherVersionIsNot();
    void endlessNestingIsNot();
};

void TestSavedLayout::everyArrangementIsTaken_data()
{
    using Arrange = void (*)(ArrangedWindow &);
    QTest::addColumn<void *>("arrange");
    const auto add = [](const char *name, Arrange arrange) {
        QTest::newRow(name) << reinterpret_cast<void *>(arrange);
    };
    add("as it comes", [](ArrangedWindow &) {});
    add("tabs", [](ArrangedWindow &w) { w.window.tabifyDockWidget(w.docks[0], w.docks[1]); });
    add("nested", [](ArrangedWindow &w) {
        w.window.splitDockWidget(w.docks[0], w.docks[1], Qt::Horizontal);
        w.window.splitDockWidget(w.docks[1], w.docks[2], Qt::Vertical);
    });
    add("floating", [](ArrangedWindow &w) { w.docks[3]->setFloating(true); });
    add("hidden", [](ArrangedWindow &w) {
        w.docks[2]->hide();
        w.bars[0]->hide();
    });
    add("bars at two sides", [](ArrangedWindow &w) {
        w.window.addToolBar(Qt::LeftToolBarArea, w.bars[0]);
        w.window.addToolBar(Qt::BottomToolBarArea, w.bars[1]);
    });
    add("bars in two lines", [](ArrangedWindow &w) { w.window.insertToolBarBreak(w.bars[1]); });
    add("a floating bar", [](ArrangedWindow &w) {
        w.window.show();
        w.bars[0]->setWindowFlags(Qt::Tool | Qt::FramelessWindowHint); // as its handle has it, dragged out
        w.bars[0]->setGeometry(100, 50, 80, 30);
        w.bars[0]->show();
    });
    add("corners", [](ArrangedWindow &w) {
        w.window.setCorner(Qt::TopLeftCorner, Qt::LeftDockWidgetArea);
        w.window.setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    });
    add("no docks", [](ArrangedWindow &w) {
        for (QDockWidget *dock : w.docks)
            w.window.removeDockWidget(dock);
    });
    add("nothing", [](ArrangedWindow &w) {
        qDeleteAll(w.docks);
        qDeleteAll(w.bars);
    });
}

void TestSavedLayout::everyArrangementIsTaken()
{
    QFETCH(void *, arrange);
    ArrangedWindow arranged;
    reinterpret_cast<void (*)(ArrangedWindow &)>(arrange)(arranged);
    QVERIFY(isSavedLayout(arranged.state()));
    QVERIFY(arranged.window.restoreState(arranged.state(), 0));
    QVERIFY(isSavedLayout(arranged.state()));
}

void TestSavedLayout::aCutOrLengthenedStateIsNot()
{
    ArrangedWindow arranged;
    const QByteArray state = arranged.state();
    for (int length = 0; length < state.size(); ++length)
        QVERIFY2(!isSavedLayout(state.left(length)), qPrintable(QString::number(length)));
    QVERIFY(!isSavedLayout(state + '\0'));
}

void TestSavedLayout::anImpossiblePlaceIsNot_data()
{
    QTest::addColumn<int>("side");
    for (const int side : {-1, 4, 5, 1 << 30})
        QTest::newRow(qPrintable(QString::number(side))) << side;
}

/// Qt would take the number for a place in an array.
void TestSavedLayout::anImpossiblePlaceIsNot()
{
    QFETCH(int, side);
    ArrangedWindow arranged;
    QByteArray docks = arranged.state();
    const int first = HeadSize + 4;           // behind how many sides there are
    QCOMPARE(docks.mid(first, 4), number(0)); // left
    QVERIFY(!isSavedLayout(docks.replace(first, 4, number(side))));

    QByteArray bars = arranged.state();
    const int line = bars.lastIndexOf('\xfc') + 1 + 4; // behind the marker and how many lines there are
    QCOMPARE(bars.mid(line, 4), number(2));            // top
    QVERIFY(!isSavedLayout(bars.replace(line, 4, number(side))));
}

void TestSavedLayout::anImpossibleCornerIsNot()
{
    ArrangedWindow arranged;
    QByteArray state = arranged.state();
    const int corner = state.lastIndexOf('\xfc') - 4;
    QCOMPARE(state.mid(corner, 4), number(Qt::BottomDockWidgetArea));
    QVERIFY(!isSavedLayout(state.replace(corner, 4, number(3))));
}

void TestSavedLayout::anotherVersionIsNot()
{
    ArrangedWindow arranged;
    arranged.window.show();
    QVERIFY(!isSavedLayout(arranged.window.saveState(1)));
}

/// A group in a group in a group: each level of the reading, Qt's too, takes a piece of the stack.
void TestSavedLayout::endlessNestingIsNot()
{
    const QByteArray group = QByteArray("\xfc\x02", 2) + number(1) + '\xfc' + QByteArray(16, '\0');
    const QByteArray head = QByteArray("\0\0\0\xff\0\0\0\0\xfd", HeadSize) + number(1) + QByteArray(12, '\0');
    QVERIFY(!isSavedLayout(head + group.repeated(1000000)));
}

QTEST_MAIN(TestSavedLayout)
#include "tst_savedlayout.moc"
