// SPDX-License-Identifier: MIT
// Shows where the keyboard is.
#pragma once

#include <QWidget>

/// A ring just inside the edge of a widget that draws no focus of its own, there while the focus is, provided
/// that it came by key: who clicks knows where. The mouse goes through it. Belongs to the widget. GUI thread
/// only.
class FocusRing final : public QWidget
{
    Q_OBJECT

public:
    explicit FocusRing(QWidget *owner);

    bool eventFilter(QObject *owner, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void fit();
    void follow(const QFocusEvent &event);
};
