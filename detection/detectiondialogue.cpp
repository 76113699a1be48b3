// SPDX-License-Identifier: MIT
// The dialogue from which the user starts detection runs and watches them.
#include "detectiondialogue.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>

namespace {

constexpr int MinimumWidth = 400;

// Room that is kept for texts to come, so that no button moves under the mouse when they do.
constexpr int StatusLines = 1;
constexpr int MessageLines = 2;

const Qt::WindowFlags ReadyFlags = Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
const Qt::WindowFlags CapturingFlags = Qt::Dialog | Qt::WindowTitleHint | Qt::CustomizeWindowHint;

QLabel *createLabel(int lines)
{
    auto *label = new QLabel;
    const QFontMetrics metrics = label->fontMetrics();
    label->setMinimumHeight(lines * qMax(metrics.height(), metrics.lineSpacing()));
    return label;
}

} // namespace

DetectionDialogue::DetectionDialogue(QWidget *parent)
    : QDialog(parent, ReadyFlags)
{
    setWindowTitle(tr("Hot pixel detection"));
    setMinimumWidth(MinimumWidth);
    setModal(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Cover the sensor completely during capturing!\n")));
    layout->addWidget(createPreferences());
    layout->addWidget(createProgress());
    layout->addWidget(createButtons());
}

void DetectionDialogue::showError(QString text)
{
    messageLabel->setText(text);
    countLabel->setText(tr("Hot pixel detected: -"));
    growForMessage();
}

void DetectionDialogue::done(int result)
{
    // First of all: a receiver of finished() may delete the dialogue, or open it again.
    if (capturing)
        finishDetect();
    closed = true;
    QDialog::done(result);
}

void DetectionDialogue::updateProgress(int percent)
{
    progressBar->setValue(percent);
}

void DetectionDialogue::finishDetect()
{
    capturing = false;
    changeFlags(ReadyFlags);
    enableControls(true);
    statusLabel->clear();
    if (focusBeforeRun)
        focusBeforeRun->setFocus();
}

void DetectionDialogue::abortDetect()
{
    finishDetect();
    progressBar->setValue(0);
}

void DetectionDialogue::addDetectedPixel(int count)
{
    if (closed)
        return;
    detectedCount += count;
    countLabel->setText(QStringLiteral("Hot pixel detected: %1").arg(detectedCount));
}

void DetectionDialogue::showEvent(QShowEvent *event)
{
    closed = false;
    QDialog::showEvent(event);
}

void DetectionDialogue::detect()
{
    capturing = true;
    focusBeforeRun = focusWidget();
    changeFlags(CapturingFlags);
    enableControls(false);
    statusLabel->setText(tr("Please Wait..."));
    countLabel->setText(tr("Hot pixel detected: 0"));
    messageLabel->clear();
    detectedCount = 0;
    emit startDetect(clearBox->isChecked(), threshold.spinBox()->value());
}

QGroupBox *DetectionDialogue::createPreferences()
{
    CameraParameter<int> range{5, 255, 1, 40}; // grey values of the 8-bit frames
    threshold.setText(tr("Threshold"));
    threshold.setParam(range);
    clearBox = new QCheckBox(tr("Clear old hot pixel list"));
    auto *box = new QGroupBox(tr("Preferences"));
    auto *layout = new QVBoxLayout(box);
    auto *row = new QHBoxLayout;
    row->addWidget(threshold.label());
    row->addWidget(threshold.slider());
    row->addWidget(threshold.spinBox());
    layout->addLayout(row);
    layout->addWidget(clearBox);
    return box;
}

QGroupBox *DetectionDialogue::createProgress()
{
    statusLabel = createLabel(StatusLines);
    progressBar = new QProgressBar;
    countLabel = new QLabel(tr("Hot pixel detected: 0"));
    countLabel->setTextFormat(Qt::PlainText); // or each count would be searched for markup
    messageLabel = createLabel(MessageLines);
    messageLabel->setWordWrap(true);
    auto *box = new QGroupBox(tr("Detection"));
    auto *layout = new QVBoxLayout(box);
    layout->addWidget(statusLabel);
    layout->addWidget(progressBar);
    layout->addWidget(countLabel);
    layout->addWidget(messageLabel);
    return box;
}

QDialogButtonBox *DetectionDialogue::createButtons()
{
    buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Ok)->setText("Start");
    connect(buttons, &QDialogButtonBox::accepted, this, &DetectionDialogue::detect);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

/// Makes room for a message of more lines than expected: layouts take the smallest window to need one only.
void DetectionDialogue::growForMessage()
{
    // Hidden, the label may have no width of its own yet.
    const int needed = isVisible() ? messageLabel->heightForWidth(messageLabel->width()) : 0;
    messageLabel->setMinimumHeight(qMax(messageLabel->minimumHeight(), needed));
}

void DetectionDialogue::enableControls(bool enable)
{
    buttons->setEnabled(enable);
    clearBox->setEnabled(enable);
    threshold.setEnabled(enable);
}

/// Tells the window system directly: setWindowFlags() would hide the window, which ends exec() and the
/// modality, takes the keyboard away and lets some window managers place it anew.
void DetectionDialogue::changeFlags(Qt::WindowFlags flags)
{
    overrideWindowFlags(flags);
    if (windowHandle())
        windowHandle()->setFlags(flags);
}
