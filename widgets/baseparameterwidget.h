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
    /// Sets the label's text, which names the slider too where names are read out.
    void setText(QString text);

protected:
    /// Deletes a widget that no layout has taken over.
    static void deleteUnplaced(QWidget *widget);

    /// Lets the control report nothing for its own life. Where two meet, the first end is the end of both.
    class Silence final
    {
    public:
        explicit Silence(BaseParameterWidget &owner)
            : control(owner)
        {
            control.emitEnabled = false;
        }
        ~Silence() { control.emitEnabled = true; }
        Silence(const Silence &) = delete;
        Silence &operator=(const Silence &) = delete;

    private:
        BaseParameterWidget &control;
    };

    bool mayEmit() const { return emitEnabled; }

private:
    bool emitEnabled = true; // false while slider and spin box copy a value to each other
    QPointer<QLabel> labelWidget;
    QPointer<QSlider> sliderWidget;
};
