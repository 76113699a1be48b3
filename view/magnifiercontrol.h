// SPDX-License-Identifier: MIT
// The content of the magnifier dock: the magnifier, its zoom, and what it tells of the focus pixel.
#pragma once

#include <QString>
#include <QWidget>

class Magnifier;
class QLabel;
class QLayout;
class QSlider;

/// A magnifier over its zoom slider and the colour and value of the focus pixel. The mouse wheel moves the
/// slider from anywhere over the control; over the slider itself it does so in the slider's own way. GUI
/// thread only.
class MagnifierControl final : public QWidget
{
    Q_OBJECT

public:
    explicit MagnifierControl(QWidget *parent = nullptr);

    /// The magnifier inside, to feed and to connect; it belongs to the control and is never null.
    Magnifier *magnifier() const { return view; }

public slots:
    /// Shows the focus pixel's colour in the Bayer pattern and its value.
    void setPixelInfo(QString bayerColor, int value);

protected:
    void wheelEvent(QWheelEvent *event) override;

private:
    QLayout *createZoomedView();
    QLayout *createPixelInfo();

    Magnifier *view = nullptr;
    QSlider *zoomSlider = nullptr;
    QLabel *bayerColorLabel = nullptr;
    QLabel *valueLabel = nullptr;
};
