// SPDX-License-Identifier: MIT
// A spin box for broken numbers whose single step may point downwards.
#pragma once

#include <QDoubleSpinBox>

/// With a negative single step everything that steps up lowers the value and everything that steps down
/// raises it: arrow keys, page keys, buttons, wheel, context menu. The base class knows no such step.
class SignedStepSpinBox final : public QDoubleSpinBox
{
    Q_OBJECT
    Q_PROPERTY(double singleStep READ singleStep WRITE setSingleStep)

public:
    explicit SignedStepSpinBox(QWidget *parent = nullptr);

    /// Negative where stepping up lowers the value.
    double singleStep() const;

    /// Takes any number; what is not a number is ignored.
    void setSingleStep(double step);

    void stepBy(int steps) override;

protected:
    StepEnabled stepEnabled() const override;

private:
    bool reversed = false; // the base class holds the step's size alone
};
