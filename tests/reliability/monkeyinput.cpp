// SPDX-License-Identifier: MIT
// Finds a widget, and hands the window system's events to its window.

#include "monkeyinput.h"

#include "magnifier.h"
#include "monkeydiary.h"

#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QDockWidget>
#include <QFileDialog>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollArea>
#include <QStatusBar>
#include <QtTest>
#include <QToolBar>
#include <QToolButton>
#include <QWheelEvent>
#include <QWindow>

namespace {

constexpr int BetweenClicks = 1000; // longer than a double click takes

Qt::KeyboardModifiers anyModifiers(MonkeyRandom &random)
{
    if (!random.oneIn(6))
        return Qt::NoModifier;
    return random.pick<Qt::KeyboardModifier>(
        {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier, Qt::KeypadModifier});
}

Qt::MouseButton anyButton(MonkeyRandom &random)
{
    return random.oneIn(5) ? random.pick({Qt::RightButton, Qt::MiddleButton, Qt::XButton1}) : Qt::LeftButton;
}

/// The widgets that a person uses most.
bool isFavourite(const QWidget *widget, int which)
{
    const QWidget *parent = widget->parentWidget();
    switch (which) {
    case 0:
        return qobject_cast<const Magnifier *>(widget);
    case 1:
        return parent && parent->objectName() == "display";
    case 2:
        return qobject_cast<const QAbstractItemView *>(parent);
    case 3:
        return qobject_cast<const QHeaderView *>(parent);
    case 4:
        return qobject_cast<const QAbstractSlider *>(widget);
    case 5:
        return qobject_cast<const QAbstractSpinBox *>(widget);
    case 6:
        return qobject_cast<const QToolButton *>(widget);
    case 7:
        return qobject_cast<const QDockWidget *>(widget);
    default:
        return true;
    }
}

QString described(const QWidget *widget, const QPoint &point)
{
    return QString("%1 %2 (%3, %4)")
        .arg(widget->metaObject()->className(), widget->objectName())
        .arg(point.x())
        .arg(point.y());
}

} // namespace

void MonkeyInput::setWindow(QWidget *mainWindow)
{
    window = mainWindow;
    pressed = Qt::NoButton;
}

void MonkeyInput::releaseAll()
{
    releaseAt({window, QPoint(1, 1)});
    for (QWidget *widget : window->findChildren<QWidget *>()) {
        if (!qobject_cast<QDockWidget *>(widget) && !qobject_cast<QToolBar *>(widget))
            continue;
        QMouseEvent event(QEvent::MouseButtonRelease, QPoint(1, 1), Qt::LeftButton, Qt::NoButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(widget, &event);
    }
}

MonkeyKind MonkeyInput::kind(const char *name, int weight, Act act)
{
    return {name, weight, MonkeyKind::Anywhere, [this, act](MonkeyRandom &random) { (this->*act)(random); }};
}

MonkeyKinds MonkeyInput::kinds()
{
    return {kind("press", 6, &MonkeyInput::press),
            kind("move", 12, &MonkeyInput::move),
            kind("release", 8, &MonkeyInput::release),
            kind("click", 25, &MonkeyInput::click),
            kind("double click", 4, &MonkeyInput::doubleClick),
            kind("right click", 4, &MonkeyInput::rightClick),
            kind("drag", 8, &MonkeyInput::drag),
            kind("drag splitter", 3, &MonkeyInput::dragSplitter),
            kind("drag dock", 4, &MonkeyInput::dragDock),
            kind("wheel", 8, &MonkeyInput::wheel),
            kind("key", 24, &MonkeyInput::key),
            kind("type", 6, &MonkeyInput::type),
            kind("focus", 3, &MonkeyInput::focus)};
}

QWidget *MonkeyInput::receiver() const
{
    if (QWidget *popup = QApplication::activePopupWidget())
        return popup;
    if (QWidget *modal = QApplication::activeModalWidget())
        return modal;
    return window;
}

/// Docks that float are windows, too.
QWidget *MonkeyInput::anyTopLevel(MonkeyRandom &random) const
{
    QWidget *top = receiver();
    if (top != window || !window)
        return top;
    QList<QWidget *> tops{window.data(), window.data()};
    for (QDockWidget *dock : window->findChildren<QDockWidget *>()) {
        if (dock->isFloating() && dock->isVisible())
            tops << dock;
    }
    return random.pick(tops);
}

QWidget *MonkeyInput::anyWidget(MonkeyRandom &random) const
{
    QWidget *top = anyTopLevel(random);
    const int favourite = random.below(14);
    if (!top || qobject_cast<QFileDialog *>(top))
        return nullptr;
    QList<QWidget *> any{top};
    QList<QWidget *> favourites;
    for (QWidget *widget : top->findChildren<QWidget *>()) {
        if (!widget->isVisible() || widget->window() != top)
            continue;
        any << widget;
        if (isFavourite(widget, favourite))
            favourites << widget;
    }
    return random.pick(favourites.isEmpty() ? any : favourites);
}

/// Mostly on the widget, sometimes beside it.
MonkeyInput::Place MonkeyInput::anyPlace(MonkeyRandom &random) const
{
    QWidget *widget = anyWidget(random);
    if (!widget)
        return {nullptr, QPoint()};
    const int beside = random.oneIn(20) ? 8 : 0;
    const QPoint point(random.from(-beside, widget->width() - 1 + beside),
                       random.from(-beside, widget->height() - 1 + beside));
    monkeydiary::note(described(widget, point));
    return {widget, point};
}

void MonkeyInput::mouse(QEvent::Type type, const Place &place, Qt::MouseButton button,
                        Qt::KeyboardModifiers modifiers)
{
    QWidget *top = place.widget ? place.widget->window() : nullptr;
    if (!top || !top->windowHandle())
        return;
    if (type == QEvent::MouseButtonPress)
        pressed |= button;
    else if (type == QEvent::MouseButtonRelease)
        pressed &= ~Qt::MouseButtons(button);
    qt_handleMouseEvent(top->windowHandle(), place.widget->mapTo(top, place.point),
                        place.widget->mapToGlobal(place.point), pressed, button, type, modifiers,
                        ++timestamp);
}

void MonkeyInput::press(MonkeyRandom &random)
{
    timestamp += BetweenClicks;
    const Place place = anyPlace(random);
    mouse(QEvent::MouseButtonPress, place, anyButton(random), anyModifiers(random));
}

void MonkeyInput::move(MonkeyRandom &random)
{
    const Place place = anyPlace(random);
    mouse(QEvent::MouseMove, place, Qt::NoButton, anyModifiers(random));
}

void MonkeyInput::release(MonkeyRandom &random)
{
    releaseAt(anyPlace(random));
}

void MonkeyInput::releaseAt(const Place &place)
{
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton, Qt::XButton1}) {
        if (pressed & button)
            mouse(QEvent::MouseButtonRelease, place, button, Qt::NoModifier);
    }
}

void MonkeyInput::click(MonkeyRandom &random)
{
    timestamp += BetweenClicks;
    const Place place = anyPlace(random);
    const Qt::MouseButton button = anyButton(random);
    const Qt::KeyboardModifiers modifiers = anyModifiers(random);
    mouse(QEvent::MouseButtonPress, place, button, modifiers);
    mouse(QEvent::MouseButtonRelease, place, button, modifiers);
}

void MonkeyInput::doubleClick(MonkeyRandom &random)
{
    timestamp += BetweenClicks;
    const Place place = anyPlace(random);
    for (int i = 0; i < 2; ++i) {
        mouse(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::NoModifier);
        mouse(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoModifier);
    }
}

void MonkeyInput::rightClick(MonkeyRandom &random)
{
    timestamp += BetweenClicks;
    const Place place = anyPlace(random);
    mouse(QEvent::MouseButtonPress, place, Qt::RightButton, Qt::NoModifier);
    mouse(QEvent::MouseButtonRelease, place, Qt::RightButton, Qt::NoModifier);
}

void MonkeyInput::drag(MonkeyRandom &random)
{
    const Place place = anyPlace(random);
    dragFrom(place, anyButton(random), random);
}

/// The gap beside or below a dock belongs to the window.
void MonkeyInput::dragSplitter(MonkeyRandom &random)
{
    if (receiver() != window || !window)
        return;
    const QRect dock = random.pick(window->findChildren<QDockWidget *>())->geometry();
    const QPoint gap = random.oneIn(2) ? QPoint(dock.right() + 2, dock.center().y())
                                       : QPoint(dock.center().x(), dock.bottom() + 2);
    dragFrom({window, gap}, Qt::LeftButton, random);
}

/// By its title to any place in the window, where it is put beside, above, below or behind another one.
void MonkeyInput::dragDock(MonkeyRandom &random)
{
    constexpr int TitleMiddle = 9;
    if (receiver() != window || !window)
        return;
    QDockWidget *dock = random.pick(window->findChildren<QDockWidget *>());
    const QPoint aim(random.below(window->width()), random.below(window->height()));
    if (!dock->isVisible())
        return;
    Place place{dock, QPoint(random.below(dock->width()), TitleMiddle)};
    monkeydiary::note(described(dock, aim));
    timestamp += BetweenClicks;
    mouse(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::NoModifier);
    for (const int share : {4, 2, 1}) {
        const QPoint here = dock->mapToGlobal(place.point);
        place.point = dock->mapFromGlobal(here + (window->mapToGlobal(aim) - here) / share);
        mouse(QEvent::MouseMove, place, Qt::NoButton, Qt::NoModifier);
    }
    if (!random.oneIn(5))
        mouse(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoModifier);
}

void MonkeyInput::dragFrom(Place place, Qt::MouseButton button, MonkeyRandom &random)
{
    timestamp += BetweenClicks;
    mouse(QEvent::MouseButtonPress, place, button, Qt::NoModifier);
    for (int i = random.from(1, 4); i > 0; --i) {
        place.point += QPoint(random.from(-60, 60), random.from(-60, 60));
        mouse(QEvent::MouseMove, place, Qt::NoButton, Qt::NoModifier);
    }
    if (!random.oneIn(5))
        mouse(QEvent::MouseButtonRelease, place, button, Qt::NoModifier);
}

void MonkeyInput::wheel(MonkeyRandom &random)
{
    const Place place = anyPlace(random);
    const QPoint turned(0, random.pick({120, -120, 360, -1200, 15, -1}));
    const Qt::KeyboardModifiers modifiers = anyModifiers(random);
    QWidget *top = place.widget ? place.widget->window() : nullptr;
    if (!top || !top->windowHandle())
        return;
    QWheelEvent event(place.widget->mapTo(top, place.point), place.widget->mapToGlobal(place.point), QPoint(),
                      turned, pressed, modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(top->windowHandle(), &event);
}

void MonkeyInput::pressKey(int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    QWidget *top = receiver();
    if (!top || !top->windowHandle() || qobject_cast<QFileDialog *>(top))
        return;
    QWindow *to = QGuiApplication::focusWindow();
    if (!to || top != window)
        to = top->windowHandle();
    qt_handleKeyEvent(to, QEvent::KeyPress, key, modifiers, text);
    qt_handleKeyEvent(to, QEvent::KeyRelease, key, modifiers, text);
}

void MonkeyInput::clickOn(QWidget *widget)
{
    timestamp += BetweenClicks;
    const Place place{widget, widget->rect().center()};
    mouse(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::NoModifier);
    mouse(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoModifier);
}

void MonkeyInput::key(MonkeyRandom &random)
{
    const int key =
        random.pick({Qt::Key_Delete, Qt::Key_Left,   Qt::Key_Right,     Qt::Key_Up,       Qt::Key_Down,
                     Qt::Key_Tab,    Qt::Key_Return, Qt::Key_Enter,     Qt::Key_Escape,   Qt::Key_Space,
                     Qt::Key_Home,   Qt::Key_End,    Qt::Key_PageUp,    Qt::Key_PageDown, Qt::Key_F2,
                     Qt::Key_F10,    Qt::Key_Menu,   Qt::Key_Backspace, Qt::Key_A,        Qt::Key_A});
    const bool shortcut = key == Qt::Key_A;
    const Qt::KeyboardModifiers modifiers = shortcut ? Qt::ControlModifier : anyModifiers(random);
    monkeydiary::note(QString("%1 %2").arg(key, 0, 16).arg(static_cast<int>(modifiers), 0, 16));
    pressKey(key, modifiers);
}

/// Digits and signs for the spin boxes, letters for menus and boxes.
void MonkeyInput::type(MonkeyRandom &random)
{
    const QString signs = "0123456789.,-+e%fvhoytcs ";
    const QChar sign = random.pick(signs);
    const Qt::KeyboardModifiers modifiers =
        sign.isLetter() && random.oneIn(2) ? Qt::AltModifier : Qt::NoModifier;
    monkeydiary::note(sign);
    pressKey(sign.toUpper().unicode(), modifiers, sign);
}

void MonkeyInput::focus(MonkeyRandom &random)
{
    QWidget *widget = anyWidget(random);
    if (widget && widget->focusPolicy() != Qt::NoFocus)
        widget->setFocus();
}
