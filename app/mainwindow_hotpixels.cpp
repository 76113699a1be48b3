// SPDX-License-Identifier: MIT
// The user's work on the hot pixel list: add, delete, clear, write into the camera.

#include "mainwindow.h"

#include "ui_mainwindow.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMessageBox>

namespace {

/// A row header that knows no list for as long as this is there. Qt makes a selection with each model that a
/// view gets, and deletes none of them.
class DetachedHeader final
{
public:
    DetachedHeader(QHeaderView *rowHeader, QAbstractItemModel *rows, QItemSelectionModel *selectedRows)
        : header(rowHeader)
        , list(rows)
        , selection(selectedRows)
    {
        if (header)
            header->setModel(nullptr);
    }

    ~DetachedHeader()
    {
        if (!header)
            return;
        const QItemSelectionModel *ofNothing = header->selectionModel();
        header->setModel(list);
        const QItemSelectionModel *ofTheList = header->selectionModel();
        header->setSelectionModel(selection);
        delete ofNothing;
        delete ofTheList;
    }

private:
    Q_DISABLE_COPY(DetachedHeader)

    const QPointer<QHeaderView> header;
    QAbstractItemModel *const list;
    QItemSelectionModel *const selection;
};

} // namespace

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
        if (!selected.isValid())
            return;
        badpixelList.removeUserBadpixel(selected.row());
        form->display->redrawImage(); // no frame may come for a while
    });
}

void MainWindow::clearBadpixel()
{
    guard([this] { clearUserEntries(); });
}

void MainWindow::clearUserEntries()
{
    changeRowByRow([this] { badpixelList.clearUserBadpixelList(); });
}

/// User entries go one by one. Without care the table's row header would move its whole section list for
/// each, and the table would select the next row each time that the selected one goes.
void MainWindow::changeRowByRow(const std::function<void()> &work)
{
    const QModelIndex selected = selectedHotpixel();
    if (selected.isValid() && badpixelList.badpixel(selected.row()).pixelclass == User)
        badpixelSelection->clear();
    const DetachedHeader detached(badpixelTable ? badpixelTable->verticalHeader() : nullptr, &badpixelList,
                                  badpixelSelection);
    try {
        work();
    } catch (...) {
        form->display->redrawImage(); // entries may be gone all the same
        throw;
    }
    form->display->redrawImage(); // no frame may come for a while
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
