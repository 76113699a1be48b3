// SPDX-License-Identifier: MIT
// What the controls for whole and for broken numbers share: a label and a slider.
#pragma once

#include <QLabel>
#include <QObject>
#include <QPointer>
#include <QSlider>

/// Owns widgets that its user places in a layout; it is no widget itself. Widgets that were never placed die
/// with it.
class BaseParameterWidget : public QObject
{
    Q_OBJECT

public:
    explicit BaseParameterWidget(QObject *parent = nullptr);
    ~BaseParameterWidget() override;

    QLabel *label() const { return labelWidget; }
    QSlider *slider() const { return sliderWidget; }

    /// Enables or disables label and slider.
    void setEnabled(bool enabled);

public slots:
    /// Sets the label's text.
    void setText(QString text);

protected:
    /// Deletes a widget that no layout has taken over.
    static void deleteUnplaced(QWidget *widget);

    bool emitEnabled = true; // false while slider and spin box copy a value to each other

private:
    QPointer<QLabel> labelWidget;
    QPointer<QSlider> sliderWidget;
};
