// SPDX-License-Identifier: MIT
// The monkey's hands: mouse, wheel and keys, as they come from the window system.
#pragma once

#include "monkeykind.h"

#include <QEvent>
#include <QPoint>
#include <QPointer>

class QString;
class QWidget;
class QWindow;

/// Input goes through the window, so that popups, modality, grabs, focus and shortcuts decide who gets it. A
/// file dialogue gets none: in it a person can delete and overwrite any file of the machine.
class MonkeyInput final
{
public:
    void setWindow(QWidget *mainWindow);

    /// Lets go of all buttons, docks and tool bars. Before a dock is closed or raised, and before the window
    /// goes: Qt forgets to free what it knows of a drag, or uses it afterwards, and a person who drags one
    /// cannot do that.
    void releaseAll();

    MonkeyKinds kinds();

    /// The popup, dialogue or box that gets the input, the window when there is none.
    QWidget *receiver() const;

    void pressKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString &text = QString());
    void clickOn(QWidget *widget);

private:
    using Act = void (MonkeyInput::*)(MonkeyRandom &);

    struct Place
    {
        QPointer<QWidget> widget;
        QPoint point; // in the widget
    };

    MonkeyKind kind(const char *name, int weight, Act act);
    QWidget *anyTopLevel(MonkeyRandom &random) const;
    QWidget *anyWidget(MonkeyRandom &random) const;
    Place anyPlace(MonkeyRandom &random) const;
    void mouse(QEvent::Type type, const Place &place, Qt::MouseButton button,
               Qt::KeyboardModifiers modifiers);

    void press(MonkeyRandom &random);
    void move(MonkeyRandom &random);
    void release(MonkeyRandom &random);
    void releaseAt(const Place &place);
    void click(MonkeyRandom &random);
    void doubleClick(MonkeyRandom &random);
    void rightClick(MonkeyRandom &random);
    void drag(MonkeyRandom &random);
    void dragSplitter(MonkeyRandom &random);
    void dragDock(MonkeyRandom &random);
    void dragFrom(Place place, Qt::MouseButton button, MonkeyRandom &random);
    void wheel(MonkeyRandom &random);
    void key(MonkeyRandom &random);
    void type(MonkeyRandom &random);
    void focus(MonkeyRandom &random);

    QPointer<QWidget> window;
    Qt::MouseButtons pressed = Qt::NoButton;
    int timestamp = 1; // milliseconds of the window system
};
