// SPDX-License-Identifier: MIT
// The about box: name, version, maker, and the way to Qt's own about box.
#pragma once

#include <QDialog>

class QLayout;

/// Modal, of fixed size; made anew each time that it is shown.
class Dialog_About final : public QDialog
{
    Q_OBJECT

public:
    explicit Dialog_About(QWidget *parent = nullptr);

private slots:
    void onActivateAboutQt();

private:
    QLayout *createTexts();
};
