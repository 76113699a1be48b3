// SPDX-License-Identifier: MIT
// Prints a table model, so that a test compares what a person would read.
#pragma once

#include <QAbstractItemModel>
#include <QStringList>

/// The displayed texts of the rows, cells divided by blanks, one string a row.
inline QStringList rowTexts(const QAbstractItemModel &model)
{
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column) {
            cells << model.index(row, column).data().toString();
        }
        rows << cells.join(QLatin1Char(' '));
    }
    return rows;
}
