// SPDX-License-Identifier: MIT
// Layout and wheel handling of the magnifier dock's content.

#include "magnifiercontrol.h"

#include "magnifier.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace {

constexpr int SmallestZoom = 5;
constexpr int LargestZoom = 100;

// A wheel counts eighths of a degree; most wheels turn by 15 degrees a notch.
constexpr double DegreesPerDelta = 0.125;
constexpr double DegreesPerNotch = 15.0;

/// An empty label with room for this text, so that a narrow dock does not grow and jump with what is shown.
QLabel *labelWithRoomFor(const QString &widest, QWidget *parent)
{
    auto *label = new QLabel(widest, parent);
    label->setMinimumWidth(label->sizeHint().width());
    label->clear();
    return label;
}

} // namespace

MagnifierControl::MagnifierControl(QWidget *parent)
    : QWidget(parent)
{
    setToolTip(tr("Click to center"));
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(createZoomedView());
    layout->addLayout(createPixelInfo());

    connect(zoomSlider, &QSlider::valueChanged, view, &Magnifier::setZoom);
    connect(view, &Magnifier::pixelInfoChanged, this, &MagnifierControl::setPixelInfo);
}

QLayout *MagnifierControl::createZoomedView()
{
    view = new Magnifier(this);
    view->setMinimumSize(160, 120);
    zoomSlider = new QSlider(Qt::Horizontal, this);
    zoomSlider->setRange(SmallestZoom, LargestZoom);
    zoomSlider->setValue(view->zoom());

    auto *layout = new QVBoxLayout;
    layout->addWidget(view, 1);
    layout->addWidget(zoomSlider);
    return layout;
}

QLayout *MagnifierControl::createPixelInfo()
{
    bayerColorLabel = labelWithRoomFor(QStringLiteral("G"), this);
    valueLabel = labelWithRoomFor(QStringLiteral("255"), this);

    auto *layout = new QHBoxLayout;
    layout->addWidget(new QLabel(tr("Bayer Color:"), this));
    layout->addWidget(bayerColorLabel);
    layout->addWidget(new QLabel(tr("Value: "), this));
    layout->addWidget(valueLabel);
    return layout;
}

void MagnifierControl::setPixelInfo(QString bayerColor, int value)
{
    bayerColorLabel->setText(bayerColor);
    valueLabel->setText(QStringLiteral("%1").arg(value));
}

void MagnifierControl::wheelEvent(QWheelEvent *event)
{
    const int delta = event->angleDelta().y();
    if (delta == 0) {
        event->ignore();
        return;
    }
    // The sum is cut, not the step: half a notch down moves the slider, half a notch up does not.
    const double target =
        zoomSlider->value() + delta * DegreesPerDelta / DegreesPerNotch * zoomSlider->singleStep();
    zoomSlider->setValue(
        static_cast<int>(qBound<double>(zoomSlider->minimum(), target, zoomSlider->maximum())));
    event->accept();
}
