// SPDX-License-Identifier: MIT
// Hot pixel lists in files: asks for a file, hands it to the list, shows what went wrong.

#include "mainwindow.h"

#include <QDir>
#include <QFileDialog>
#include <QMessageBox>

void MainWindow::saveBadpixelList()
{
    saveToFile(tr("Save hot pixel list"), tr("Binary files (*.bin)"),
               [this](const QString &file) { badpixelList.saveAsFile(&camera, file); });
}

void MainWindow::loadBadpixelList()
{
    readFromFile(tr("Open hot pixel list"), tr("Binary files (*.bin)"),
                 [this](const QString &file) { badpixelList.loadFromFile(&camera, file); });
}

void MainWindow::exportBadpixelList()
{
    saveToFile(tr("Export hot pixel list"), tr("Text files (*.txt)"),
               [this](const QString &file) { badpixelList.exportAsFile(file); });
}

void MainWindow::importBadpixelList()
{
    readFromFile(tr("Import hot pixel list"), tr("Text files (*.txt)"),
                 [this](const QString &file) { badpixelList.importFromFile(file); });
}

void MainWindow::saveToFile(const QString &title, const QString &filter, const FileWork &work)
{
    const QString file = QFileDialog::getSaveFileName(this, title, QDir::homePath(), filter);
    if (!file.isEmpty())
        guardFile(title, [&] { work(file); });
}

void MainWindow::readFromFile(const QString &title, const QString &filter, const FileWork &work)
{
    const QString file = QFileDialog::getOpenFileName(this, title, QDir::homePath(), filter);
    if (!file.isEmpty())
        guardFile(title, [&] { changeRowByRow([&] { work(file); }); });
}

void MainWindow::guardFile(const QString &title, const std::function<void()> &work)
{
    guarded(work, [&](const QString &text) { QMessageBox::critical(this, title, text); });
}
