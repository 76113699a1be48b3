// SPDX-License-Identifier: MIT
// The label in the image view.
#pragma once

#include <QLabel>

/// Shows its picture over its whole size with every pixel sharp, on screens with more pixels to the view
/// pixel too. A plain label smooths what it scales there, and a hot pixel is what smoothing takes away. GUI
/// thread only.
class ImageLabel final : public QLabel
{
    Q_OBJECT

public:
    explicit ImageLabel(QWidget *parent = nullptr);

    /// Keeps the layout that the label asks for with each picture from the viewport that it filters. The view
    /// gives it the picture's size itself, and the scroll bars follow that; the layout would only paint both
    /// of them anew with each frame.
    bool eventFilter(QObject *viewport, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
