// SPDX-License-Identifier: MIT
// The label and the slider of a parameter control.

#include "baseparameterwidget.h"

BaseParameterWidget::BaseParameterWidget(QObject *parent)
    : QObject(parent)
    , labelWidget(new QLabel)
    , sliderWidget(new QSlider(Qt::Horizontal))
{
    sliderWidget->setSingleStep(1);
    sliderWidget->setPageStep(4);
}

BaseParameterWidget::~BaseParameterWidget()
{
    deleteUnplaced(labelWidget);
    deleteUnplaced(sliderWidget);
}

void BaseParameterWidget::setEnabled(bool enabled)
{
    labelWidget->setEnabled(enabled);
    sliderWidget->setEnabled(enabled);
}

void BaseParameterWidget::setText(QString text)
{
    labelWidget->setText(text);
    sliderWidget->setAccessibleName(text); // the label is the spin box's buddy, it can have but one
}

void BaseParameterWidget::deleteUnplaced(QWidget *widget)
{
    if (widget && !widget->parent())
        delete widget;
}
