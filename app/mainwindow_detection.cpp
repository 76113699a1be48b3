// SPDX-License-Identifier: MIT
// The detection run: ten dark frames from the live camera, then the detector, then the list.

#include "mainwindow.h"

#include "detectiondialogue.h"
#include "hotpixeldetector.h"

#include <QMessageBox>

namespace {

constexpr int FramesOfARun = 10;
constexpr int PercentOfAFrame = 10;
constexpr uchar BrightLevel = 101;
constexpr int TooManyBrightBytes = 5001;

/// A covered sensor has few bright bytes; many mean that light falls in.
bool leaksLight(const QImage &frame)
{
    const std::size_t count =
        static_cast<std::size_t>(frame.bytesPerLine()) * static_cast<std::size_t>(frame.height());
    const uchar *bytes = frame.constBits();
    int bright = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (bytes[i] >= BrightLevel && ++bright == TooManyBrightBytes)
            return true;
    }
    return false;
}

void addPositions(const BadpixelListModel &from, BadpixelListModel *to)
{
    for (int row = 0; row < from.rowCount(); ++row) {
        const Badpixel entry = from.badpixel(row);
        to->addBadpixel(QPoint(entry.x, entry.y));
    }
}

} // namespace

void MainWindow::openDetectDialog()
{
    if (detectionDialogue)
        return;
    const QPointer<DetectionDialogue> dialogue = new DetectionDialogue(this);
    detectionDialogue = dialogue;
    connect(dialogue, &DetectionDialogue::startDetect, this, &MainWindow::startDetectingBadpixel);
    connect(&badpixelList, &BadpixelListModel::pixelAdded, dialogue, &DetectionDialogue::addDetectedPixel);
    connect(this, &MainWindow::detectionProgress, dialogue, &DetectionDialogue::updateProgress);
    connect(dialogue, &DetectionDialogue::finished, this, &MainWindow::dropRun);
    dialogue->exec();
    if (!dialogue) // the window went meanwhile, and took it along
        return;
    dropRun(); // also where it was only hidden, which finishes nothing
    delete dialogue;
}

void MainWindow::startDetectingBadpixel(bool clear, uint threshold)
{
    dropRun();
    detectionThreshold = threshold;
    if (clear)
        clearUserEntries();
    detecting = true;
}

/// Takes one frame of a run. The frame borrows the camera's buffer, so a deep copy is kept.
void MainWindow::captureDarkFrame(const QImage &frame)
{
    if (darkFrames.size() >= FramesOfARun) {
        detecting = false;
        detectionPercent = 0;
        detectBadpixel();
        return;
    }
    darkFrames.append(frame.copy());
    detectionPercent += PercentOfAFrame;
    emit detectionProgress(detectionPercent);
    if (leaksLight(frame))
        reportLightLeak();
}

/// The run is put back before the box opens: the box runs the event loop, and frames go on arriving.
void MainWindow::reportLightLeak()
{
    dropRun();
    QMessageBox::critical(
        this, tr("Detection failed"),
        tr("Too many hot pixel have been found.\nPlease make sure that the sensor is completely "
           "obscured and the threshold is not too low."));
    abortRun();
}

void MainWindow::detectBadpixel()
{
    QString failure;
    guarded(
        [this] {
            BadpixelListModel found;
            HotpixelDetector detector;
            detector.setThreshold(detectionThreshold);
            connect(&detector, &HotpixelDetector::detectionFinished, this, &MainWindow::detectionFinished);
            detector.setImages(camera.colorMode(), &darkFrames);
            addPositions(badpixelList, &found); // what is listed already is not reported again
            detector.detect(&found);
            addPositions(found, &badpixelList);
        },
        [&](const QString &text) { failure = text; });
    dropRun();
    if (detectionDialogue)
        detectionDialogue->finishDetect();
    if (failure.isEmpty())
        return;
    showText(failure, 2000);
    if (detectionDialogue)
        detectionDialogue->showError(failure + " Please restart detection.");
}

void MainWindow::dropRun()
{
    detecting = false;
    darkFrames.clear();
    detectionPercent = 0;
}

void MainWindow::abortRun()
{
    dropRun();
    if (detectionDialogue)
        detectionDialogue->abortDetect();
}
