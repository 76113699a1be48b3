// SPDX-License-Identifier: MIT
// The steps of the tour.
#pragma once

#include "kelvosim.h"
#include "mainwindow.h"
#include "windowdriver.h"

#include <QDir>
#include <QTemporaryDir>

#include <memory>

/// Leads a person's way through the program. GUI thread only; needs the QApplication.
class Tour final
{
public:
    /// @param pictureFolder is made when it is missing
    /// @throws std::runtime_error when it cannot be made
    explicit Tour(const QString &pictureFolder);

    /// @return whether every step showed what it should
    bool play();

private:
    static void setUpBench(const QString &storageFolder);
    static void writeParameterFile();

    void listCameras();
    void openCamera();
    void turnSettings();
    void detectInLight();
    void closeBoxAbove(QWidget *dialogue);
    void coverSensor();
    void detect();
    void watchDetection(QWidget *dialogue);
    void compareWithTruth();
    void reviewEntry();
    void selectOwnEntry();
    void lookThroughMagnifier();
    void addAndDelete();
    void writeList();
    void keepInFiles();
    void closeAndReopen();
    void loadOnAnotherCamera();
    void switchCorrection();
    void readHelp();

    void check(bool holds, const QString &what);
    void tell(const QString &text) const;
    void takePicture(const QString &name);
    bool waitForFrames(int count) const;
    QString status(const char *label) const;
    int greyAt(const kelvosim::Pixel &pixel) const;
    void pressOnMagnifier(int key) const;

    QDir folder;
    QTemporaryDir storage; // of the cameras' lists; the current folder while the tour plays
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<WindowDriver> driver;
    int pictures = 0;
    int failures = 0;
};
