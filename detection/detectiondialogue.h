// SPDX-License-Identifier: MIT
// The dialogue from which the user starts detection runs and watches them.
#pragma once

#include "parameterwidget.h"

#include <QDialog>
#include <QPointer>
#include <QString>

class QCheckBox;
class QDialogButtonBox;
class QGroupBox;
class QLabel;
class QProgressBar;

/// Stays open and modal through any number of runs until it is closed; Escape and the window manager close
/// it even while a run is capturing, which leaves it ready for being opened again. Its receiver of
/// startDetect() makes the run, reports through the slots and ends the run on finished(). GUI thread only.
class DetectionDialogue final : public QDialog
{
    Q_OBJECT

public:
    explicit DetectionDialogue(QWidget *parent = nullptr);

    /// Shows why a run failed; a closed dialogue stays closed, as with the slots below.
    void showError(QString text);

public slots:
    void done(int result) override;

    /// Sets the progress bar, 0 to 100.
    void updateProgress(int percent);

    /// Makes the dialogue ready for the next run. The progress bar keeps its value.
    void finishDetect();

    /// As finishDetect(), and sets the progress bar back to 0.
    void abortDetect();

    /// Counts entries that were added to the list; a closed dialogue counts no more.
    void addDetectedPixel(int count);

signals:
    /// A run was started: whether the user entries go first, and the threshold in grey values.
    void startDetect(bool clear, int threshold);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void detect();

private:
    QGroupBox *createPreferences();
    QGroupBox *createProgress();
    QDialogButtonBox *createButtons();
    void growForMessage();
    void enableControls(bool enable);
    void changeFlags(Qt::WindowFlags flags);

    ParameterWidget threshold;
    QCheckBox *clearBox = nullptr;
    QDialogButtonBox *buttons = nullptr;
    QLabel *statusLabel = nullptr;
    QLabel *countLabel = nullptr;
    QLabel *messageLabel = nullptr;
    QProgressBar *progressBar = nullptr;
    int detectedCount = 0;
    bool capturing = false;
    bool closed = false;
    QPointer<QWidget> focusBeforeRun;
};
