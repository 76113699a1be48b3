// SPDX-License-Identifier: MIT
// The control for a broken number: label, slider and spin box, kept in step.
#pragma once

#include "baseparameterwidget.h"
#include "cameraparameter.h"
#include "signedstepspinbox.h"

/// The slider counts the camera's increments, the spin box shows the value in the camera's unit, to the
/// hundredth. Reports what is typed (at Enter or when the focus leaves) or stepped in the spin box at once,
/// and what is dragged on the slider when it is released. A slider moved by key or wheel moves the spin box
/// and reports nothing. GUI thread only.
class DoubleParameterWidget final : public BaseParameterWidget
{
    Q_OBJECT

public:
    explicit DoubleParameterWidget(QObject *parent = nullptr);
    ~DoubleParameterWidget() override;

    SignedStepSpinBox *spinBox() const { return spinBoxWidget; }

    /// Enables or disables spin box, label and slider.
    void setEnabled(bool enabled);

signals:
    void valueChanged(double value);

public slots:
    /// Moves the slider to `value`, which snaps the spin box to the slider's grid if the slider moves.
    /// Reports nothing. Does nothing while a control of this class, this one or another, is in here already.
    void changeValue(double value);

    /// Moves the spin box to where the slider position `value` lies in the spin box's range, without
    /// reporting it. Does nothing while a control of this class, this one or another, is in here already.
    void changeValueRelative(int value);

    /// Reports the spin box's value.
    void emitValueChanged();

    /// Takes over range and value. No signal is blocked: a value that changes by this is reported as if the
    /// user had changed it. What the receiver then changes in `param` is taken over too.
    void setParam(CameraParameter<double> &param);

private:
    CameraParameter<double> stored; // Kept: nothing reads it
    QPointer<SignedStepSpinBox> spinBoxWidget;
};
