// SPDX-License-Identifier: MIT
// How slider and spin box of a whole number follow each other, and what is reported.

#include "parameterwidget.h"

#include "busyflag.h"

#include <QSignalBlocker>

namespace {

bool changingValue = false; // shared by all controls of the class

constexpr auto SpinBoxChanged = static_cast<void (QSpinBox::*)(int)>(&QSpinBox::valueChanged);

} // namespace

ParameterWidget::ParameterWidget(QObject *parent)
    : BaseParameterWidget(parent)
{
    connect(slider(), &QSlider::valueChanged, this, &ParameterWidget::changeValue);
    connect(slider(), &QSlider::sliderReleased, this, &ParameterWidget::emitValueChanged);
    spinBoxWidget = new QSpinBox;
    // The second connection reports what the first has copied.
    connect(spinBox(), SpinBoxChanged, this, &ParameterWidget::changeValue);
    connect(spinBox(), SpinBoxChanged, this, &ParameterWidget::emitValueChanged);
    label()->setBuddy(spinBox());
}

ParameterWidget::~ParameterWidget()
{
    deleteUnplaced(spinBoxWidget);
}

void ParameterWidget::setEnabled(bool enabled)
{
    spinBox()->setEnabled(enabled);
    BaseParameterWidget::setEnabled(enabled);
}

void ParameterWidget::changeValue(int value)
{
    if (changingValue)
        return;
    const FlagSetter busy(changingValue);
    const Silence silent(*this);
    const QSignalBlocker sliderBlocked(slider());
    const QSignalBlocker spinBoxBlocked(spinBox());
    slider()->setValue(value);
    spinBox()->setValue(value);
}

void ParameterWidget::emitValueChanged()
{
    if (mayEmit())
        emit valueChanged(spinBox()->value());
}

void ParameterWidget::setParam(CameraParameter<int> &param)
{
    spinBox()->setMinimum(param.min);
    spinBox()->setMaximum(param.max);
    spinBox()->setSingleStep(param.increment);
    spinBox()->setValue(param.value);
    slider()->setMinimum(param.min);
    slider()->setMaximum(param.max);
    slider()->setValue(param.value);
}
