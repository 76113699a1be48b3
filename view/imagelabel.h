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

protected:
    void paintEvent(QPaintEvent *event) override;
};
