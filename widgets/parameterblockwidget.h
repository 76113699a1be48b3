// SPDX-License-Identifier: MIT
// The content of the camera properties dock: one row for each setting of the camera that a person turns.
#pragma once

#include "doubleparameterwidget.h"
#include "parameterwidget.h"

#include <QWidget>

/// A grid of label, slider and spin box: frame rate, exposure, master gain. Whoever creates it connects the
/// controls to a camera.
class ParameterBlockWidget final : public QWidget
{
    Q_OBJECT

public:
    explicit ParameterBlockWidget(QWidget *parent = nullptr);

    /// In frames per second.
    DoubleParameterWidget *framerate() const { return framerateControl; }

    /// In the camera's unit, milliseconds.
    DoubleParameterWidget *exposure() const { return exposureControl; }

    /// In the camera's unit, 0 to 100.
    ParameterWidget *mastergain() const { return mastergainControl; }

private:
    DoubleParameterWidget *framerateControl = nullptr;
    DoubleParameterWidget *exposureControl = nullptr;
    ParameterWidget *mastergainControl = nullptr;
};
