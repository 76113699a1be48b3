// SPDX-License-Identifier: MIT
// The drop-down list that edits the class of a hot pixel.
#pragma once

#include <QItemDelegate>

/// Offers the three class names and hands the chosen text to the model, which decides what it takes.
class PixelclassDelegate final : public QItemDelegate
{
    Q_OBJECT

public:
    explicit PixelclassDelegate(QObject *parent);

    /// @return a new QComboBox, a child of `parent`
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    /// Shows the text of `index`, or nothing where it is none of the names. Leaves other editors alone.
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    /// Passes the chosen text on, whether the model takes it or not. Leaves other editors alone.
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;
};
