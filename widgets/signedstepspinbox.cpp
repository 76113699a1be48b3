// SPDX-License-Identifier: MIT
// Stepping against the usual sense.

#include "signedstepspinbox.h"

#include <cmath>
#include <limits>

SignedStepSpinBox::SignedStepSpinBox(QWidget *parent)
    : QDoubleSpinBox(parent)
{
}

double SignedStepSpinBox::singleStep() const
{
    const double size = QDoubleSpinBox::singleStep();
    return reversed ? -size : size;
}

void SignedStepSpinBox::setSingleStep(double step)
{
    if (std::isnan(step))
        return;
    reversed = step < 0.0;
    QDoubleSpinBox::setSingleStep(std::fabs(step));
}

void SignedStepSpinBox::stepBy(int steps)
{
    constexpr int mostDown = -std::numeric_limits<int>::max(); // the least int has no opposite
    QDoubleSpinBox::stepBy(reversed ? -qMax(steps, mostDown) : steps);
}

/// Up is enabled where a step up can still move the value, whichever way that is.
QAbstractSpinBox::StepEnabled SignedStepSpinBox::stepEnabled() const
{
    const StepEnabled usual = QDoubleSpinBox::stepEnabled();
    if (!reversed)
        return usual;
    StepEnabled swapped = StepNone;
    if (usual & StepUpEnabled)
        swapped |= StepDownEnabled;
    if (usual & StepDownEnabled)
        swapped |= StepUpEnabled;
    return swapped;
}
