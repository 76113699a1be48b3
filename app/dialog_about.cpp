// SPDX-License-Identifier: MIT
// The about box.

#include "dialog_about.h"

#include "qclickablelabel.h"

#include <QLabel>
#include <QMessageBox>
#include <QVBoxLayout>

namespace {

// Names and numbers, the same in every language.
const char Name[] = "Kelvo Speckmend";
const char Version[] = "4.95.1.0";
const char MakerLine[] = "For the cameras of the Kelvo family, made by";
const char Company[] = "Kelvo Camera Works";

QLabel *addLabel(QLayout *layout, const QString &text)
{
    auto *label = new QLabel(text);
    layout->addWidget(label);
    return label;
}

} // namespace

Dialog_About::Dialog_About(QWidget *parent)
    : QDialog(parent)
{
    auto *columns = new QHBoxLayout(this);
    addLabel(columns, QString())->setPixmap(QPixmap(":/res/about_logo_kelvo.png"));
    columns->addLayout(createTexts());
    setWindowTitle(QString("About %1").arg(Name));
    setFixedSize(sizeHint());
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
}

QLayout *Dialog_About::createTexts()
{
    auto *texts = new QVBoxLayout;
    addLabel(texts, Name)->setObjectName("nameLabel");
    addLabel(texts, QString("Version: %1").arg(Version))->setObjectName("versionLabel");
    addLabel(texts, MakerLine);
    addLabel(texts, Company);
    auto *aboutQt = new QClickableLabel(this, true);
    aboutQt->setObjectName("aboutQtLabel");
    aboutQt->setText(tr("About Qt"));
    connect(aboutQt, &QClickableLabel::clicked, this, &Dialog_About::onActivateAboutQt);
    texts->addWidget(aboutQt);
    return texts;
}

void Dialog_About::onActivateAboutQt()
{
    QMessageBox::aboutQt(this);
}
