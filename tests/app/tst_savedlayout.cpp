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

QByteArray numbers(std::initializer_list<qint32> values)
{
    QByteArray bytes;
    for (const qint32 value : values)
        bytes += number(value);
    return bytes;
}

// Pieces of a state, as Qt writes them.

QByteArray dock(quint8 flags = 1, qint32 length = 50)
{
    QByteArray name;
    QDataStream stream(&name, QIODevice::WriteOnly);
    stream << QString("dock");
    return '\xfb' + name + static_cast<char>(flags) + numbers({0, length, 10, 1000});
}

QByteArray sideBySide(const QByteArray &items, qint32 count, char orientation = Qt::Vertical)
{
    return QByteArray("\xfc") + orientation + number(count) + items;
}

QByteArray tabs(const QByteArray &items, qint32 count, qint32 front)
{
    return '\xfa' + number(front) + char(Qt::Vertical) + number(count) + items;
}

/// A group as an item of another.
QByteArray inside(const QByteArray &group)
{
    return '\xfc' + numbers({0, 50, 10, 1000}) + group;
}

QByteArray insideOfMany(QByteArray group, int depth)
{
    for (int i = 0; i < depth; ++i)
        group = sideBySide(inside(group), 1);
    return group;
}

QByteArray side(qint32 place, const QByteArray &group)
{
    return numbers({place, 50, 60}) + group;
}

QByteArray state(const QByteArray &sides, qint32 count)
{
    return numbers({0xff, 0}) + '\xfd' + number(count) + sides + numbers({100, 100, 4, 4, 8, 8}) + '\xfc' +
           number(0);
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
    void whatQtWouldWriteIs_data();
    void whatQtWouldWriteIs();
    void whatQtNeverWritesIsNot_data();
    void whatQtNeverWritesIsNot();
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
    add("the second tab in front", [](ArrangedWindow &w) {
        w.window.tabifyDockWidget(w.docks[0], w.docks[1]);
        w.window.show();
        w.docks[1]->raise();
    });
    add("nested", [](ArrangedWindow &w) {
        w.window.splitDockWidget(w.docks[0], w.docks[1], Qt::Horizontal);
        w.window.splitDockWidget(w.docks[1], w.docks[2], Qt::Vertical);
    });
    add("floating", [](ArrangedWindow &w) { w.docks[3]->setFloating(true); });
    add("floating beyond the screen", [](ArrangedWindow &w) {
        w.docks[3]->setFloating(true);
        w.docks[3]->move(-300, -200);
    });
    add("right to left", [](ArrangedWindow &w) { w.window.setLayoutDirection(Qt::RightToLeft); });
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

/// Qt takes that of docks for a place in an array.
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

void TestSavedLayout::whatQtWouldWriteIs_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray one = sideBySide(dock(), 1);
    QTest::newRow("a dock") << state(side(0, one), 1);
    QTest::newRow("docks on all sides")
        << state(side(0, one) + side(1, one) + side(2, one) + side(3, one), 4);
    QTest::newRow("tabs") << state(side(1, sideBySide(inside(tabs(dock() + dock(), 2, 1)), 1)), 1);
    QTest::newRow("no tab in front") << state(side(1, sideBySide(inside(tabs(dock(), 1, -1)), 1)), 1);
    QTest::newRow("deep") << state(side(0, insideOfMany(one, 15)), 1);
}

void TestSavedLayout::whatQtWouldWriteIs()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(isSavedLayout(bytes));
}

void TestSavedLayout::whatQtNeverWritesIsNot_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray one = sideBySide(dock(), 1);
    QTest::newRow("another marker of the window") << '\1' + state(side(0, one), 1).mid(1);
    QTest::newRow("a side twice") << state(side(0, one) + side(0, one), 2);
    QTest::newRow("sides out of order") << state(side(1, one) + side(0, one), 2);
    QTest::newRow("fewer sides than none") << state({}, -1);
    QTest::newRow("another marker of a group") << state(side(0, '\xf0' + one.mid(1)), 1);
    QTest::newRow("a slanting group") << state(side(0, sideBySide(dock(), 1, 3)), 1);
    QTest::newRow("fewer docks than none") << state(side(0, sideBySide({}, -1)), 1);
    QTest::newRow("another marker of a dock") << state(side(0, sideBySide('\xf0' + dock().mid(1), 1)), 1);
    QTest::newRow("a dock that is more than shown and floating") << state(side(0, sideBySide(dock(4), 1)), 1);
    QTest::newRow("a dock longer than any") << state(side(0, sideBySide(dock(1, 1 << 29), 1)), 1);
    QTest::newRow("a tab in front that is not there") << state(side(0, tabs(dock(), 1, 1)), 1);
    QTest::newRow("a group in a tab") << state(side(0, tabs(inside(one), 1, 0)), 1);
    QTest::newRow("too deep") << state(side(0, insideOfMany(one, 16)), 1);
}

void TestSavedLayout::whatQtNeverWritesIsNot()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!isSavedLayout(bytes));
}

QTEST_MAIN(TestSavedLayout)
#include "tst_savedlayout.moc"
