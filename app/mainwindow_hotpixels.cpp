// SPDX-License-Identifier: MIT
// The user's work on the hot pixel list: add, delete, clear, write into the camera.

#include "mainwindow.h"

#include "ui_mainwindow.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMessageBox>

/// The first selected index of the hot pixel list, or an invalid one.
QModelIndex MainWindow::selectedHotpixel() const
{
    const QModelIndexList selected = badpixelSelection->selectedIndexes();
    return selected.isEmpty() ? QModelIndex() : selected.first();
}

void MainWindow::addNewBadpixel()
{
    guard([this] {
        if (!badpixelList.addBadpixel(magnifierPosition))
            return;
        const QModelIndex added = badpixelList.findBadpixel(magnifierPosition.x(), magnifierPosition.y(), 1);
        badpixelSelection->select(added, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    });
}

void MainWindow::deleteBadpixel()
{
    guard([this] {
        const QModelIndex selected = selectedHotpixel();
        if (selected.isValid())
            badpixelList.removeUserBadpixel(selected.row());
    });
}

void MainWindow::clearBadpixel()
{
    guard([this] { clearUserEntries(); });
}

void MainWindow::clearUserEntries()
{
    changeRowByRow([this] { badpixelList.clearUserBadpixelList(); });
    form->display->redrawImage(); // no frame may come for a while
}

/// User entries go one by one. Without care the table's row header would move its whole section list for
/// each, and the table would select the next row each time that the selected one goes.
void MainWindow::changeRowByRow(const std::function<void()> &work)
{
    const QModelIndex selected = selectedHotpixel();
    if (selected.isValid() && badpixelList.badpixel(selected.row()).pixelclass == User)
        badpixelSelection->clear();
    QHeaderView *rowHeader = badpixelTable ? badpixelTable->verticalHeader() : nullptr;
    if (rowHeader)
        rowHeader->setModel(nullptr);
    struct Reattach
    {
        ~Reattach()
        {
            if (header)
                header->setModel(list);
        }
        QPointer<QHeaderView> header;
        QAbstractItemModel *list;
    } reattach{rowHeader, &badpixelList};
    work();
}

void MainWindow::writeBadpixelList()
{
    if (!camera.supportsCameraCorrection()) {
        QMessageBox::critical(
            this, tr("Not supported!"),
            tr("This camera only supports software correction and can't be saved inside the "
               "camera memory!"));
        return;
    }
    QMessageBox question(this);
    question.setIcon(QMessageBox::Warning);
    question.setText(
        tr("This action will completely overwrite the user defined hot pixel list in the EEPROM of "
           "the camera."));
    question.setInformativeText(tr("Do you want to continue?"));
    question.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    question.setDefaultButton(QMessageBox::No); // Enter alone must not overwrite a list
    if (question.exec() != QMessageBox::Yes)
        return;
    guarded([this] { badpixelList.writeBadpixelList(&camera); },
            [this](const QString &text) {
                QMessageBox::critical(this, tr("Write failed"), text);
                showText(text, 2000); // after the box, which may stay open for longer
            });
}
