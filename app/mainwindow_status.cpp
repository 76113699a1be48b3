// SPDX-License-Identifier: MIT
// The status bar: messages on its left, counts, focus position and frame statistics on its right.

#include "mainwindow.h"

#include "ui_mainwindow.h"

#include <QLabel>

QLabel *MainWindow::createStatusLabel(const char *name, int minimumWidth)
{
    auto *label = new QLabel(form->statusBar);
    label->setObjectName(name);
    label->setMinimumWidth(minimumWidth);
    return label;
}

/// Kept: made with the position first, shown with the counts first.
void MainWindow::createStatusBar()
{
    xLabel = createStatusLabel("xLabel", 44);
    yLabel = createStatusLabel("yLabel", 44);
    userCountLabel = createStatusLabel("userCountLabel", 40);
    factoryCountLabel = createStatusLabel("factoryCountLabel", 40);
    framesLabel = createStatusLabel("framesLabel", 64);
    failedLabel = createStatusLabel("failedLabel", 64);
    frameRateLabel = createStatusLabel("frameRateLabel", 72);
    for (QLabel *label :
         {userCountLabel, factoryCountLabel, xLabel, yLabel, framesLabel, failedLabel, frameRateLabel})
        form->statusBar->addPermanentWidget(label);
}

/// Kept: these texts are the same in every language.
void MainWindow::updateStatus()
{
    guard([this] {
        int users = 0;
        for (int row = 0; row < badpixelList.rowCount(); ++row)
            users += badpixelList.badpixel(row).pixelclass == User ? 1 : 0;
        // Required: whatever is not the user's own counts as the factory's, ignored entries included.
        factoryCountLabel->setText(QString("F: %1").arg(badpixelList.rowCount() - users));
        userCountLabel->setText(QString("U: %1").arg(users));
        framesLabel->setText(QString("Frames: %1").arg(camera.frameCount()));
        failedLabel->setText(QString("Failed: %1").arg(camera.failedCount()));
        frameRateLabel->setText("FPS: " + QString::number(camera.framesPerSecond(), 'f', 2));
    });
}

/// The counts of entries keep their last values until the next camera's first tick.
void MainWindow::resetStatistics()
{
    framesLabel->setText("Frames: 0");
    failedLabel->setText("Failed: 0");
    frameRateLabel->setText("FPS: 0"); // Kept: no decimals here
}

void MainWindow::updateStatusPosition(QPoint position)
{
    xLabel->setText(QString("x: %1").arg(position.x()));
    yLabel->setText(QString("y: %1").arg(position.y()));
}

/// The camera announces a firmware upload and then blocks the window for up to half a minute, so the text is
/// painted at once; no events are processed here.
void MainWindow::showText(const QString &text, int msec)
{
    form->statusBar->showMessage(text, msec);
    form->statusBar->repaint();
}
