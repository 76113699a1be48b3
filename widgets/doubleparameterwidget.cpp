// SPDX-License-Identifier: MIT
// How slider and spin box of a broken number follow each other, and what is reported.

#include "doubleparameterwidget.h"

#include "busyflag.h"
#include "truncate.h"

#include <QSignalBlocker>

namespace {

// Shared by all controls of the class.
bool changingValue = false;
bool changingValueRelative = false;

constexpr auto SpinBoxChanged = static_cast<void (QDoubleSpinBox::*)(double)>(&QDoubleSpinBox::valueChanged);

} // namespace

DoubleParameterWidget::DoubleParameterWidget(QObject *parent)
    : BaseParameterWidget(parent)
{
    connect(slider(), &QSlider::valueChanged, this, &DoubleParameterWidget::changeValueRelative);
    connect(slider(), &QSlider::sliderReleased, this, &DoubleParameterWidget::emitValueChanged);
    spinBoxWidget = new SignedStepSpinBox;
    spinBox()->setKeyboardTracking(false); // each digit would be snapped to the grid while the user types on
    // The second connection reports what the first has snapped.
    connect(spinBox(), SpinBoxChanged, this, &DoubleParameterWidget::changeValue);
    connect(spinBox(), SpinBoxChanged, this, &DoubleParameterWidget::emitValueChanged);
    label()->setBuddy(spinBox());
}

DoubleParameterWidget::~DoubleParameterWidget()
{
    deleteUnplaced(spinBoxWidget);
}

void DoubleParameterWidget::setEnabled(bool enabled)
{
    spinBox()->setEnabled(enabled);
    BaseParameterWidget::setEnabled(enabled);
}

void DoubleParameterWidget::changeValue(double value)
{
    if (changingValue)
        return;
    const FlagSetter busy(changingValue);
    const Silence silent(*this);
    const double min = spinBox()->minimum();
    const double max = spinBox()->maximum();
    // Kept: the slider signals, so that it writes its own position back into the spin box.
    slider()->setValue(truncated((value - min) / (max - min) * slider()->maximum()));
}

void DoubleParameterWidget::changeValueRelative(int value)
{
    if (changingValueRelative)
        return;
    const FlagSetter busy(changingValueRelative);
    const Silence silent(*this);
    const double max = spinBox()->maximum();
    const double min = spinBox()->minimum();
    const double most = slider()->maximum(); // 0 without steps: the spin box then bounds what is no number
    const QSignalBlocker spinBoxBlocked(spinBox());
    spinBox()->setValue((max - min) * (value / most) + min);
}

void DoubleParameterWidget::emitValueChanged()
{
    if (mayEmit())
        emit valueChanged(spinBox()->value());
}

void DoubleParameterWidget::setParam(CameraParameter<double> &param)
{
    spinBox()->setMinimum(param.min);
    spinBox()->setMaximum(param.max);
    // Kept negative: arrow keys and wheel of these controls move the value against their usual sense.
    spinBox()->setSingleStep((param.min - param.max) / 100.0);
    spinBox()->setValue(param.value);
    slider()->setMinimum(0);
    slider()->setMaximum(truncated((param.max - param.min) / param.increment));
    slider()->setValue(truncated((param.value - param.min) / param.increment));
}
