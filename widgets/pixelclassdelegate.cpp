// SPDX-License-Identifier: MIT
// The drop-down list that edits the class of a hot pixel.
#include "pixelclassdelegate.h"

#include <QComboBox>

PixelclassDelegate::PixelclassDelegate(QObject *parent)
    : QItemDelegate(parent)
{
}

// Kept: the names are translated although the model knows the untranslated ones alone. In a translated
// program it refuses what is chosen here, as it always refuses "ignore".
QWidget *PixelclassDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                          const QModelIndex &) const
{
    auto *names = new QComboBox(parent);
    names->addItem(tr("factory"));
    names->addItem(tr("user"));
    names->addItem(tr("ignore"));
    return names;
}

void PixelclassDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    if (auto *names = qobject_cast<QComboBox *>(editor)) {
        const QString text = index.data(Qt::EditRole).toString();
        names->setCurrentIndex(names->findData(text, Qt::DisplayRole, Qt::MatchCaseSensitive));
    }
}

void PixelclassDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                      const QModelIndex &index) const
{
    if (const auto *names = qobject_cast<QComboBox *>(editor))
        model->setData(index, names->currentText(), Qt::EditRole);
}

void PixelclassDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                              const QModelIndex &) const
{
    editor->setGeometry(option.rect);
}
