// SPDX-License-Identifier: MIT
// The window for those who use it without a mouse, by ear, from right to left, on a small screen or a fine
// one.

#include "application.h"
#include "detectiondialogue.h"
#include "displaywidget.h"
#include "focusring.h"
#include "magnifier.h"
#include "magnifiercontrol.h"
#include "qclickablelabel.h"
#include "windowfixture.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QIcon>
#include <QMenu>
#include <QProgressBar>
#include <QScreen>
#include <QScrollBar>
#include <QSlider>
#include <QTabBar>
#include <QToolBar>
#include <QToolButton>
#include <QWindow>
#include <QtTest>

#include <functional>

namespace {

constexpr int Width = 96; // of the bench's cameras
constexpr int Height = 80;

/// Roles that a person acts on, or moves about by.
bool needsName(const QAccessibleInterface &element)
{
    switch (element.role()) {
    case QAccessible::PushButton:
    case QAccessible::ButtonMenu:
    case QAccessible::ButtonDropDown:
    case QAccessible::CheckBox:
    case QAccessible::Slider:
    case QAccessible::SpinBox:
    case QAccessible::ComboBox:
    case QAccessible::Table:
    case QAccessible::ProgressBar:
    case QAccessible::PageTab:
    case QAccessible::MenuItem:
    case QAccessible::ToolBar:
    case QAccessible::Window:
    case QAccessible::Dialog:
    case QAccessible::ColumnHeader:
        return true;
    default:
        return element.state().focusable;
    }
}

QString description(const QAccessibleInterface &element)
{
    const QObject *object = element.object();
    return QString("%1 %2 of role %3")
        .arg(QString(object ? object->metaObject()->className() : "element"),
             object ? object->objectName() : QString())
        .arg(element.role());
}

/// What a screen reader could not name. @param count grows by what it can
void findNameless(QAccessibleInterface *element, QStringList *nameless, int *count)
{
    if (!element || !element->isValid() || element->state().invisible)
        return;
    if (needsName(*element)) {
        ++*count;
        if (element->text(QAccessible::Name).trimmed().isEmpty())
            nameless->append(description(*element));
    }
    for (int i = 0; i < element->childCount(); ++i)
        findNameless(element->child(i), nameless, count);
}

QStringList namelessIn(QWidget &window, int atLeast)
{
    QStringList nameless;
    int count = 0;
    findNameless(QAccessible::queryAccessibleInterface(&window), &nameless, &count);
    if (count < atLeast)
        nameless.append(QString("%1 elements alone are seen").arg(count));
    return nameless;
}

bool isControl(const QWidget *widget)
{
    return qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QAbstractSpinBox *>(widget) ||
           qobject_cast<const QSlider *>(widget) || qobject_cast<const QTableView *>(widget) ||
           qobject_cast<const QTabBar *>(widget) || qobject_cast<const Magnifier *>(widget) ||
           qobject_cast<const DisplayWidget *>(widget) || qobject_cast<const QClickableLabel *>(widget);
}

/// Every control that is there and enabled, but for the buttons in dock titles, whose work the View menu
/// does.
QSet<QWidget *> controlsOf(const QWidget &window)
{
    QSet<QWidget *> controls;
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        const bool inTitle =
            qobject_cast<QDockWidget *>(widget->parentWidget()) && qobject_cast<QAbstractButton *>(widget);
        const bool inTable = qobject_cast<QTableView *>(widget->parentWidget());
        if (isControl(widget) && widget->isVisibleTo(&window) && widget->isEnabled() && !inTitle && !inTable)
            controls.insert(widget);
    }
    return controls;
}

QString namesOf(const QSet<QWidget *> &widgets)
{
    QStringList names;
    for (const QWidget *widget : widgets)
        names << QString("%1 '%2' %3")
                     .arg(widget->metaObject()->className(), widget->objectName(),
                          widget->property("text").toString());
    return names.join(", ");
}

/// What the key reaches until it comes round, each with `look` taken at it.
QSet<QWidget *> walk(QWidget &window, int key, const std::function<void(QWidget *)> &look = {})
{
    QSet<QWidget *> reached;
    for (int steps = 0; steps < 100; ++steps) {
        QTest::keyClick(window.focusWidget() ? window.focusWidget() : &window, static_cast<Qt::Key>(key));
        QWidget *focus = window.focusWidget();
        if (!focus || reached.contains(focus))
            break;
        reached.insert(focus);
        if (look)
            look(focus);
    }
    return reached;
}

/// Runs `visit` as soon as a menu has opened. Call it before whatever opens the menu.
void whenPopup(const std::function<void(QMenu *)> &visit)
{
    auto *timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [timer, visit] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu)
            return;
        timer->stop();
        timer->deleteLater();
        visit(menu);
    });
    timer->start(5);
}

/// No two pixels of a row or a column are alike.
std::vector<std::uint8_t> slantedFrame()
{
    std::vector<std::uint8_t> frame;
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x)
            frame.push_back(static_cast<std::uint8_t>(x + 2 * y));
    }
    return frame;
}

} // namespace

class TestAccessibility : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.resetBench(); }
    void cleanup();

    void everyControlOfTheWindowHasAName();
    void everyControlOfTheDialoguesHasAName();
    void tabReachesEveryControl();
    void backTabReachesEveryControl();
    void tabReachesEveryControlOfTheDialogues();
    void whatTabReachesIsSeen();
    void aWindowThatBecomesActiveMovesNoDock();
    void aToolBarButtonWorksByKey();
    void commandsWithoutRoomAreReachedByKey();
    void theMouseLeavesTheFocusBesideTheToolBar();
    void theMenuKeyOpensTheContextMenus();
    void arrowKeysScrollTheViewThatHasTheFocus();
    void otherKeysPassTheViewBy();
    void thePlaceOfTheKeyboardIsMarked();
    void fromRightToLeftTheImageIsNotMirrored();
    void fromRightToLeftTheViewScrollsAndClicksAsEver();
    void fromRightToLeftTheFirstCameraIsSelected();
    void theWindowFitsASmallScreen();
    void iconsHaveThePixelsOfTheScreen();
    void theImageIsSharpAtEveryScale();

private:
    void openWithEntries();
    bool activate(QWidget &window) const;
    void inDialogue(const char *action, const std::function<void(QWidget *)> &look) const;
    Magnifier *magnifier() const { return bench.window->findChild<MagnifierControl *>()->magnifier(); }
    QToolButton *toolButton(const char *action) const;

    WindowFixture bench;
};

void TestAccessibility::cleanup()
{
    bench.window.reset();
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

/// A camera is open, delivers, and lists entries of both owners.
void TestAccessibility::openWithEntries()
{
    bench.showWindow();
    QTRY_VERIFY(bench.driver->cameraTable()->model()->rowCount() > 0);
    bench.driver->cameraTable()->setCurrentIndex(bench.driver->cameraTable()->model()->index(0, 0));
    bench.driver->trigger("openCameraAction");
    QTRY_VERIFY(bench.enabled("closeCameraAction"));
    QVERIFY(bench.push(bench.mono, slantedFrame()));
    QTRY_COMPARE(bench.driver->display()->widget()->width(), Width);
    bench.moveTo(QPoint(60, 20));
    bench.driver->trigger("addBadpixelAction");
    QCOMPARE(bench.rows(), 3);
    QVERIFY(activate(*bench.window));
}

bool TestAccessibility::activate(QWidget &window) const
{
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}

void TestAccessibility::inDialogue(const char *action, const std::function<void(QWidget *)> &look) const
{
    bool seen = false;
    WindowDriver::whenModal([&](QWidget *modal) {
        seen = true;
        look(modal);
        modal->close();
    });
    bench.driver->trigger(action);
    QVERIFY(seen);
}

QToolButton *TestAccessibility::toolButton(const char *action) const
{
    auto *bar = bench.window->findChild<QToolBar *>("mainToolBar");
    return qobject_cast<QToolButton *>(bar->widgetForAction(bench.driver->action(action)));
}

void TestAccessibility::everyControlOfTheWindowHasAName()
{
    bench.showWindow();
    QCOMPARE(namelessIn(*bench.window, 20).join('\n'), QString());
    bench.window.reset();
    bench.resetBench();
    openWithEntries();
    bench.window->resize(bench.window->minimumSizeHint()); // not all of the tool bar has room
    QTRY_VERIFY(bench.window->findChild<QWidget *>("qt_toolbar_ext_button")->isVisible());
    QCOMPARE(namelessIn(*bench.window, 30).join('\n'), QString());
    // Every dock by its title, the pictures by what they show.
    for (const QDockWidget *dock : bench.window->findChildren<QDockWidget *>()) {
        auto *element = QAccessible::queryAccessibleInterface(const_cast<QDockWidget *>(dock));
        QCOMPARE(element->text(QAccessible::Name), dock->windowTitle());
    }
    QCOMPARE(bench.driver->display()->accessibleName(), QString("Live image"));
    QCOMPARE(magnifier()->accessibleName(), QString("Magnifier"));
}

void TestAccessibility::everyControlOfTheDialoguesHasAName()
{
    openWithEntries();
    inDialogue("detectAction",
               [](QWidget *dialogue) { QCOMPARE(namelessIn(*dialogue, 7).join('\n'), QString()); });
    inDialogue("detectAction", [](QWidget *dialogue) { // the bar's own text is its value
        auto *bar = QAccessible::queryAccessibleInterface(dialogue->findChild<QProgressBar *>());
        QCOMPARE(bar->text(QAccessible::Name), QString("Detection"));
    });
    inDialogue("aboutAction", [](QWidget *about) { QCOMPARE(namelessIn(*about, 2).join('\n'), QString()); });
    inDialogue("usageAction", [](QWidget *usage) { QCOMPARE(namelessIn(*usage, 2).join('\n'), QString()); });
    inDialogue("writeListAction", [](QWidget *box) { QCOMPARE(namelessIn(*box, 3).join('\n'), QString()); });
}

void TestAccessibility::tabReachesEveryControl()
{
    openWithEntries();
    bench.window->resize(1600, 800);
    QTRY_VERIFY(toolButton("zoomAction")->isVisible());
    const QSet<QWidget *> controls = controlsOf(*bench.window);
    QVERIFY(controls.size() > 15);
    const QSet<QWidget *> reached = walk(*bench.window, Qt::Key_Tab);
    QCOMPARE(namesOf(controls - reached), QString());
    QCOMPARE(namesOf(reached - controls), QString());
}

void TestAccessibility::backTabReachesEveryControl()
{
    openWithEntries();
    const QSet<QWidget *> controls = controlsOf(*bench.window);
    QCOMPARE(namesOf(controls - walk(*bench.window, Qt::Key_Backtab)), QString());
}

void TestAccessibility::tabReachesEveryControlOfTheDialogues()
{
    openWithEntries();
    for (const char *action : {"detectAction", "aboutAction", "usageAction", "writeListAction"}) {
        inDialogue(action, [this](QWidget *dialogue) {
            QVERIFY(activate(*dialogue));
            const QSet<QWidget *> controls = controlsOf(*dialogue);
            QVERIFY(!controls.isEmpty());
            QCOMPARE(namesOf(controls - walk(*dialogue, Qt::Key_Tab)), QString());
        });
    }
}

void TestAccessibility::whatTabReachesIsSeen()
{
    openWithEntries();
    QVERIFY(bench.driver->badpixelTable()->visibleRegion().isEmpty()); // behind the camera list
    bool sawEntries = false;
    walk(*bench.window, Qt::Key_Tab, [&](QWidget *focus) {
        QTRY_VERIFY2(!focus->visibleRegion().isEmpty(), qPrintable(namesOf({focus})));
        sawEntries = sawEntries || focus == bench.driver->badpixelTable();
    });
    QVERIFY(sawEntries);
}

void TestAccessibility::aWindowThatBecomesActiveMovesNoDock()
{
    openWithEntries();
    bench.driver->cameraTable()->setFocus();
    bench.window->findChild<QDockWidget *>("BadpixelListDock")->raise();
    QTRY_VERIFY(!bench.driver->badpixelTable()->visibleRegion().isEmpty());
    inDialogue("usageAction", [this](QWidget *usage) { QVERIFY(activate(*usage)); });
    QVERIFY(activate(*bench.window));
    QCOMPARE(bench.window->focusWidget(), static_cast<QWidget *>(bench.driver->cameraTable()));
    QVERIFY(!bench.driver->badpixelTable()->visibleRegion().isEmpty());
}

void TestAccessibility::aToolBarButtonWorksByKey()
{
    openWithEntries();
    bench.window->resize(1600, 800);
    QTRY_VERIFY(toolButton("zoomAction")->isVisible());
    toolButton("closeCameraAction")->setFocus(Qt::TabFocusReason);
    QTest::keyClick(bench.window->focusWidget(), Qt::Key_Space);
    QTRY_VERIFY(bench.enabled("openCameraAction"));
    QCOMPARE(bench.rows(), 0);
    toolButton("openCameraAction")->setFocus(Qt::TabFocusReason);
    QTest::keyClick(bench.window->focusWidget(), Qt::Key_Space);
    QTRY_VERIFY(bench.enabled("zoomAction"));

    toolButton("zoomAction")->setFocus(Qt::TabFocusReason);
    whenPopup([](QMenu *menu) {
        QTest::keyClick(menu, Qt::Key_Down); // 1:4
        QTest::keyClick(menu, Qt::Key_Return);
    });
    QTest::keyClick(bench.window->focusWidget(), Qt::Key_Space);
    QCOMPARE(bench.driver->action("zoomAction")->text(), QString("1:4"));
}

void TestAccessibility::commandsWithoutRoomAreReachedByKey()
{
    openWithEntries();
    bench.window->resize(600, 600);
    auto *more = bench.window->findChild<QToolButton *>("qt_toolbar_ext_button");
    QTRY_VERIFY(more->isVisible());
    QVERIFY(!toolButton("zoomAction")->isVisible());
    more->setFocus(Qt::TabFocusReason);
    QTest::keyClick(more, Qt::Key_Space);
    QTRY_VERIFY(toolButton("zoomAction")->isVisible());
    QVERIFY(walk(*bench.window, Qt::Key_Tab).contains(toolButton("zoomAction")));
}

void TestAccessibility::theMouseLeavesTheFocusBesideTheToolBar()
{
    openWithEntries();
    bench.window->resize(1600, 800);
    QTRY_VERIFY(toolButton("highlightAction")->isVisible());
    bench.driver->badpixelTable()->setFocus();
    QTest::mouseClick(toolButton("highlightAction"), Qt::LeftButton);
    QVERIFY(!bench.driver->action("highlightAction")->isChecked());
    QCOMPARE(bench.window->focusWidget(), static_cast<QWidget *>(bench.driver->badpixelTable()));
}

void TestAccessibility::theMenuKeyOpensTheContextMenus()
{
    openWithEntries();
    const auto firstCommandOf = [](QTableView *table) {
        QString found;
        whenPopup([&](QMenu *menu) {
            found = menu->actions().first()->objectName();
            menu->close();
        });
        // What the platform makes of the key.
        QContextMenuEvent asked(QContextMenuEvent::Keyboard, table->rect().center());
        QApplication::sendEvent(table, &asked);
        return found;
    };
    QCOMPARE(firstCommandOf(bench.driver->cameraTable()), QString("openCameraAction"));
    QCOMPARE(firstCommandOf(bench.driver->badpixelTable()), QString("addBadpixelAction"));
}

void TestAccessibility::arrowKeysScrollTheViewThatHasTheFocus()
{
    openWithEntries();
    DisplayWidget *view = bench.driver->display();
    bench.driver->trigger("zoom4to1Action");
    view->redrawImage();
    const QScrollBar *across = view->horizontalScrollBar();
    const QScrollBar *down = view->verticalScrollBar();
    bench.window->resize(bench.window->minimumSizeHint());
    view->setMaximumSize(120, 100);
    QTRY_VERIFY(across->maximum() > across->singleStep() && down->maximum() > down->pageStep());
    view->horizontalScrollBar()->setValue(0);
    view->verticalScrollBar()->setValue(0);

    view->setFocus(Qt::TabFocusReason);
    QTest::keyClick(view, Qt::Key_Right);
    QCOMPARE(across->value(), across->singleStep());
    QTest::keyClick(view, Qt::Key_Left);
    QCOMPARE(across->value(), 0);
    QTest::keyClick(view, Qt::Key_Down);
    QCOMPARE(down->value(), down->singleStep());
    QTest::keyClick(view, Qt::Key_Up);
    QCOMPARE(down->value(), 0);
    QTest::keyClick(view, Qt::Key_PageDown);
    QCOMPARE(down->value(), down->pageStep());
    QTest::keyClick(view, Qt::Key_PageUp);
    QCOMPARE(down->value(), 0);

    magnifier()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(magnifier(), Qt::Key_Right);
    QTest::keyClick(view, Qt::Key_Right); // it has not the focus
    QCOMPARE(across->value(), 0);
}

void TestAccessibility::otherKeysPassTheViewBy()
{
    openWithEntries();
    DisplayWidget *view = bench.driver->display();
    view->setFocus(Qt::TabFocusReason);
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_X, Qt::Key_Return}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        press.ignore();
        QApplication::sendEvent(view, &press);
        QVERIFY(!press.isAccepted());
    }
}

void TestAccessibility::thePlaceOfTheKeyboardIsMarked()
{
    openWithEntries();
    for (QWidget *widget :
         {static_cast<QWidget *>(bench.driver->display()), static_cast<QWidget *>(magnifier())}) {
        bench.driver->cameraTable()->setFocus();
        const QImage before = widget->grab().toImage();
        widget->setFocus(Qt::TabFocusReason);
        QVERIFY(widget->findChild<FocusRing *>()->isVisible());
        QVERIFY(widget->grab().toImage() != before);
        bench.driver->cameraTable()->setFocus();
        QCOMPARE(widget->grab().toImage(), before);
        widget->setFocus(Qt::MouseFocusReason);
        QCOMPARE(widget->grab().toImage(), before);
    }
}

void TestAccessibility::fromRightToLeftTheImageIsNotMirrored()
{
    QImage views[2];
    QImage magnified[2];
    for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        QApplication::setLayoutDirection(direction);
        bench.resetBench();
        openWithEntries();
        QCOMPARE(bench.driver->badpixelTable()->layoutDirection(), direction);
        bench.moveTo(QPoint(5, 40)); // off the middle, so that a mirrored one would differ
        bench.driver->display()->redrawImage();
        magnifier()->resize(200, 160);
        magnifier()->redrawImage();
        views[direction] = bench.driver->display()->widget()->grab().toImage();
        magnified[direction] = magnifier()->grab().toImage();
    }
    QVERIFY(views[0] != views[0].mirrored(true, false));
    QVERIFY(magnified[0] != magnified[0].mirrored(true, false));
    QCOMPARE(views[1], views[0]);
    QCOMPARE(magnified[1], magnified[0]);
}

void TestAccessibility::fromRightToLeftTheViewScrollsAndClicksAsEver()
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    openWithEntries();
    DisplayWidget *view = bench.driver->display();
    bench.driver->trigger("zoom4to1Action");
    bench.window->resize(bench.window->minimumSizeHint());
    view->redrawImage();
    QTRY_VERIFY(view->horizontalScrollBar()->maximum() > 40);
    view->horizontalScrollBar()->setValue(0);
    QCOMPARE(view->widget()->x(), 0); // the image's left edge at the view's
    view->horizontalScrollBar()->setValue(30);
    QCOMPARE(view->widget()->x(), -30);

    // The image follows the mouse that drags it.
    QTest::mousePress(view->viewport(), Qt::RightButton, Qt::NoModifier, QPoint(40, 30));
    QMouseEvent drag(QEvent::MouseMove, QPoint(50, 30), Qt::NoButton, Qt::RightButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &drag);
    QCOMPARE(view->widget()->x(), -20);

    QSignalSpy clicked(view, &DisplayWidget::positionClicked);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 200));
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first().first().toPoint(), QPoint(10, (200 - view->widget()->y()) / 4));
}

void TestAccessibility::fromRightToLeftTheFirstCameraIsSelected()
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    bench.showWindow();
    QItemSelectionModel *selection = bench.driver->cameraTable()->selectionModel();
    QTRY_COMPARE(selection->selectedRows().size(), 1);
    QCOMPARE(selection->selectedRows().first().row(), 0);
    QVERIFY(bench.enabled("openCameraAction"));
    selection->clearSelection();
    bench.invoke("onSelectCameraRow", Q_ARG(int, 2));
    QCOMPARE(selection->selectedRows().size(), 1);
    QCOMPARE(selection->selectedRows().first().row(), 2);
    bench.invoke("onSelectCameraRow", Q_ARG(int, 0)); // one is selected already
    QCOMPARE(selection->selectedRows().first().row(), 2);
    selection->clearSelection();
    bench.invoke("onSelectCameraRow", Q_ARG(int, 3)); // there is none
    QVERIFY(!selection->hasSelection());
}

void TestAccessibility::theWindowFitsASmallScreen()
{
    const QSize small(1024, 600);
    const QFont before = QApplication::font();
    QFont usual = before;
    usual.setPointSize(9); // what desktops with small screens come with; a test has no desktop to ask
    QApplication::setFont(usual);
    bench.resetBench();
    openWithEntries();
    const QSize least = bench.window->minimumSizeHint().expandedTo(bench.window->minimumSize());
    QVERIFY2(least.width() <= small.width() && least.height() + 30 <= small.height(), // with a title bar
             qPrintable(QString("%1 x %2").arg(least.width()).arg(least.height())));
    const QSize screen = bench.window->windowHandle()->screen()->availableSize().expandedTo(least);
    QVERIFY(bench.window->width() <= screen.width());
    QVERIFY(bench.window->height() <= screen.height());
    bench.window->resize(small - QSize(0, 30));
    QTRY_COMPARE(bench.window->height(), small.height() - 30);
    // Whatever tells or takes something is inside.
    for (const char *name : {"BadpixelListDock", "MagnifierDock", "CameraSliderDock"}) {
        auto *dock = bench.window->findChild<QDockWidget *>(name);
        dock->raise();
        QTRY_VERIFY(!dock->visibleRegion().isEmpty());
        QVERIFY(bench.window->rect().contains(dock->geometry()));
        QVERIFY(dock->widget()->height() >= dock->widget()->minimumSizeHint().height());
    }
    inDialogue("detectAction", [&](QWidget *dialogue) {
        QVERIFY(dialogue->width() <= small.width() && dialogue->height() + 30 <= small.height());
    });
    QApplication::setFont(before);
}

void TestAccessibility::iconsHaveThePixelsOfTheScreen()
{
    openWithEntries();
    const QToolButton *button = toolButton("detectAction");
    QWindow *window = bench.window->windowHandle();
    const QPixmap drawn = button->icon().pixmap(window, button->iconSize());
    QCOMPARE(drawn.devicePixelRatio(), window->devicePixelRatio());
    QCOMPARE(drawn.width(), qRound(button->iconSize().width() * window->devicePixelRatio()));
}

/// Every pixel of the screen shows an image pixel that it lies on; smoothing would mix them.
void TestAccessibility::theImageIsSharpAtEveryScale()
{
    openWithEntries();
    bench.driver->action("highlightAction")->setChecked(false);
    std::vector<std::uint8_t> frame = slantedFrame();
    for (std::size_t i = 0; i < frame.size(); i += 3)
        frame[i] = 255; // hot pixels
    QVERIFY(bench.push(bench.mono, frame));
    const auto isSharp = [&] {
        const QImage shown = bench.driver->display()->widget()->grab().toImage();
        const double ratio = shown.devicePixelRatio();
        const auto at = [&](double x, double y) {
            const int column = qMin(Width - 1, static_cast<int>(x / ratio));
            const int row = qMin(Height - 1, static_cast<int>(y / ratio));
            return int(frame[static_cast<std::size_t>(row * Width + column)]);
        };
        bool sharp = shown.width() == qRound(Width * ratio);
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                const QVector<int> below{at(x + 0.1, y + 0.1), at(x + 0.9, y + 0.1), at(x + 0.1, y + 0.9),
                                         at(x + 0.9, y + 0.9)};
                sharp = sharp && below.contains(qGray(shown.pixel(x, y)));
            }
        }
        return sharp;
    };
    QTRY_VERIFY(isSharp());
}

int main(int argc, char **argv)
{
    Application application(argc, argv);
    TestAccessibility test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_accessibility.moc"
