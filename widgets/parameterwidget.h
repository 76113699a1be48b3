// SPDX-License-Identifier: MIT
// The control for a whole number: label, slider and spin box, kept in step.
#pragma once

#include "baseparameterwidget.h"
#include "cameraparameter.h"

#include <QSpinBox>

/// Reports what is typed or stepped in the spin box at once, and what is dragged on the slider when it is
/// released. A slider moved by key or wheel moves the spin box and reports nothing. GUI thread only.
class ParameterWidget final : public BaseParameterWidget
{
    Q_OBJECT

public:
    explicit ParameterWidget(QObject *parent = nullptr);
    ~ParameterWidget() override;

    QSpinBox *spinBox() const { return spinBoxWidget; }

    /// Enables or disables spin box, label and slider.
    void setEnabled(bool enabled);

signals:
    void valueChanged(int value);

public slots:
    /// Moves slider and spin box to `value` without reporting it. Does nothing while a control of this class,
    /// this one or another, is in here already.
    void changeValue(int value);

    /// Reports the spin box's value.
    void emitValueChanged();

    /// Takes over range, step and value. No signal is blocked: a value that changes by this is reported as if
    /// the user had changed it.
    void setParam(CameraParameter<int> &param);

private:
    CameraParameter<int> stored; // Kept: nothing reads it
    QPointer<QSpinBox> spinBoxWidget;
};
