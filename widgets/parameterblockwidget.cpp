// SPDX-License-Identifier: MIT
// The rows of the camera properties dock.

#include "parameterblockwidget.h"

#include <QGridLayout>

namespace {

template<typename Control>
void placeInRow(QGridLayout *grid, int row, const Control &control)
{
    grid->addWidget(control.label(), row, 0);
    grid->addWidget(control.slider(), row, 1);
    grid->addWidget(control.spinBox(), row, 2);
}

} // namespace

ParameterBlockWidget::ParameterBlockWidget(QWidget *parent)
    : QWidget(parent)
{
    auto *grid = new QGridLayout;
    framerateControl = new DoubleParameterWidget(this);
    exposureControl = new DoubleParameterWidget(this);
    mastergainControl = new ParameterWidget(this);
    framerateControl->setText(tr("Framerate"));
    exposureControl->setText(tr("Exposure"));
    mastergainControl->setText(tr("Mastergain"));
    // The tab key follows the order in which the widgets are placed.
    placeInRow(grid, 0, *framerateControl);
    placeInRow(grid, 1, *exposureControl);
    placeInRow(grid, 2, *mastergainControl);
    grid->setAlignment(Qt::AlignTop); // a tall dock leaves its space below the rows, not between them
    setLayout(grid);
    QMargins margins = grid->contentsMargins(); // lower than usual: small screens have little height
    margins.setTop(margins.top() / 2);
    margins.setBottom(margins.bottom() / 2);
    grid->setContentsMargins(margins);
}
