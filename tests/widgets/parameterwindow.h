// SPDX-License-Identifier: MIT
// A parameter control in a window of its own, turned by mouse, wheel and keys as a person does.
#pragma once

#include "baseparameterwidget.h"
#include "cameraparameter.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QStyleOptionSlider>
#include <QStyleOptionSpinBox>
#include <QWheelEvent>
#include <QWindow>
#include <QtTest>

/// Where the slider's handle stands, in the slider's coordinates.
inline QPoint handleAt(const QSlider *slider, int position)
{
    QStyleOptionSlider option;
    option.initFrom(slider);
    option.subControls = QStyle::SC_All;
    option.orientation = slider->orientation();
    option.minimum = slider->minimum();
    option.maximum = slider->maximum();
    option.sliderPosition = position;
    option.sliderValue = position;
    option.state |= QStyle::State_Horizontal;
    return slider->style()
        ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, slider)
        .center();
}

/// The middle of one of the spin box's two arrows, in the spin box's coordinates.
inline QPoint arrowOf(const QAbstractSpinBox *box, QStyle::SubControl arrow)
{
    QStyleOptionSpinBox option;
    option.initFrom(box);
    option.subControls = QStyle::SC_All;
    option.buttonSymbols = box->buttonSymbols();
    option.frame = box->hasFrame();
    return box->style()->subControlRect(QStyle::CC_SpinBox, &option, arrow, box).center();
}

/// The part of the spin box that goes on signalling in the middle of a copy, when the others are blocked.
inline QObject *innerEdit(const QAbstractSpinBox *box)
{
    for (QObject *child : box->findChildren<QObject *>()) {
        if (child->inherits("QWidgetLineControl"))
            return child;
    }
    return nullptr;
}

/// Notches away from the person are positive.
inline void turnWheel(QWidget *widget, int notches)
{
    const QPoint place = widget->rect().center();
    QWheelEvent turned(place, widget->mapToGlobal(place), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                       Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &turned);
}

/// Presses the handle at the slider's value, moves it to each position in turn and calls `reached`, lets go.
template<typename Reached>
void dragHandle(QSlider *slider, const QList<int> &positions, const Reached &reached)
{
    QWindow *window = slider->window()->windowHandle();
    const auto inWindow = [slider](const QPoint &place) { return slider->mapTo(slider->window(), place); };
    QPoint place = inWindow(handleAt(slider, slider->value()));
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, place);
    for (const int position : positions) {
        place = inWindow(handleAt(slider, position));
        QTest::mouseMove(window, place);
        reached(position);
    }
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, place);
}

/// Shows a control of either kind in a row; a second line edit is there to take the focus away.
template<typename Control>
class ParameterWindow
{
public:
    ParameterWindow()
    {
        auto *row = new QHBoxLayout(&window);
        row->addWidget(control.label());
        row->addWidget(control.slider());
        row->addWidget(control.spinBox());
        row->addWidget(new QLineEdit);
        window.resize(900, 60); // wide enough for a slider pixel of its own for each position
    }

    bool show()
    {
        window.show();
        window.activateWindow();
        return QTest::qWaitForWindowActive(&window);
    }

    /// Lets the control have a range and a value; nothing of it is reported any more when this is done.
    template<typename Number>
    void set(Number min, Number max, Number increment, Number value)
    {
        CameraParameter<Number> param{min, max, increment, value};
        control.setParam(param);
    }

    QWidget *elsewhere() const
    {
        return window.findChild<QLineEdit *>(QString(), Qt::FindDirectChildrenOnly);
    }

    Control control; // dies after the window, whose widgets it then does not have any more
    QWidget window;
};
