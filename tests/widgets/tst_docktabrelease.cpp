// SPDX-License-Identifier: MIT
// Tabs of docks that come and go while the mouse holds one.
#include "docktabrelease.h"

#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>
#include <QRandomGenerator>
#include <QTabBar>
#include <QtTest>

#include <memory>

class TestDockTabRelease : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { window.reset(); }

    void aTabGoesWhileAnotherIsHeld();
    void docksComeAndGoInAnyOrder_data();
    void docksComeAndGoInAnyOrder();
    void tabsAreStillDraggedIntoAnotherOrder();

private:
    QTabBar *bar() const;
    QPoint tab(int index) const;
    void press(const QPoint &place) { QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, place); }
    void moveTo(const QPoint &place);
    void release(const QPoint &place);
    void toggle(int dock) { docks[dock]->setVisible(!docks[dock]->isVisible()); }

    std::unique_ptr<QMainWindow> window;
    QList<QDockWidget *> docks;
};

void TestDockTabRelease::init()
{
    window = std::make_unique<QMainWindow>();
    window->setCentralWidget(new QLabel("picture"));
    docks.clear();
    for (const char *title : {"first", "second", "third", "fourth"}) {
        docks << new QDockWidget(title);
        docks.last()->setWidget(new QLabel(title));
        window->addDockWidget(Qt::LeftDockWidgetArea, docks.last());
        if (docks.size() > 1)
            window->tabifyDockWidget(docks.first(), docks.last());
    }
    new DockTabRelease(window.get());
    window->resize(900, 500);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QTRY_COMPARE(bar()->count(), 4);
}

/// The one that is shown: the layout keeps others for later.
QTabBar *TestDockTabRelease::bar() const
{
    QTabBar *shown = nullptr;
    for (QTabBar *any : window->findChildren<QTabBar *>()) {
        if (any->isVisible())
            shown = any;
    }
    return shown;
}

/// The middle of a tab, in the window's coordinates.
QPoint TestDockTabRelease::tab(int index) const
{
    return bar()->mapTo(window.get(), bar()->tabRect(index).center());
}

void TestDockTabRelease::moveTo(const QPoint &place)
{
    QTest::mouseMove(window->windowHandle(), place);
    QCoreApplication::processEvents();
}

void TestDockTabRelease::release(const QPoint &place)
{
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, place);
    QCoreApplication::processEvents();
}

void TestDockTabRelease::aTabGoesWhileAnotherIsHeld()
{
    const QPoint place = tab(3);
    press(place);
    toggle(1);
    QTRY_COMPARE(bar()->count(), 3);
    moveTo(place + QPoint(20, 0));
    moveTo(place + QPoint(30, 0));
    release(place);
    QVERIFY(docks[3]->isVisible());
}

void TestDockTabRelease::docksComeAndGoInAnyOrder_data()
{
    QTest::addColumn<int>("seed");
    for (const int seed : {1, 2, 3})
        QTest::addRow("seed %d", seed) << seed;
}

void TestDockTabRelease::docksComeAndGoInAnyOrder()
{
    QFETCH(int, seed);
    QRandomGenerator random(static_cast<quint32>(seed));
    bool isPressed = false;
    for (int i = 0; i < 100; ++i) {
        const QTabBar *tabs = bar();
        const QRect area = tabs ? QRect(tabs->mapTo(window.get(), QPoint()), tabs->size()) : window->rect();
        const QPoint place =
            area.topLeft() + QPoint(random.bounded(area.width()), random.bounded(area.height()));
        const int what = random.bounded(6);
        if (what == 0 && !isPressed)
            press(place);
        else if (what == 1 && isPressed)
            release(place);
        else if (what < 4)
            moveTo(place);
        else
            toggle(random.bounded(docks.size()));
        isPressed = (isPressed || what == 0) && what != 1;
        QCoreApplication::processEvents();
        if (random.bounded(3) == 0)
            window->repaint();
    }
    release(QPoint(1, 1));
    for (QDockWidget *dock : docks)
        dock->show();
    QTRY_VERIFY(bar());
}

void TestDockTabRelease::tabsAreStillDraggedIntoAnotherOrder()
{
    const QString before = bar()->tabText(0);
    press(tab(0));
    for (const int step : {12, 40, 80, 120})
        moveTo(tab(0) + QPoint(step, 0));
    release(tab(2));
    QTRY_VERIFY(bar()->tabText(0) != before);
    QCOMPARE(bar()->count(), 4);
}

QTEST_MAIN(TestDockTabRelease)
#include "tst_docktabrelease.moc"
