// SPDX-License-Identifier: MIT
// The program's one object for a camera: opening, closing, live images, events, parameters.
#pragma once

#include "cameraparameter.h"
#include "eventthread.h"
#include "imageinfo.h"
#include "imagesequence.h"
#include "kelvocodes.h"

#include <QImage>
#include <QObject>
#include <QString>

#include <optional>

struct SensorSettings;

/// One camera device, opened and closed in place. Lives on the GUI thread, as do all its operations.
class Camera final : public QObject
{
    Q_OBJECT

public:
    /// Starts listening for devices that come and go.
    /// @throws std::runtime_error "Too many events :D" when no wake-up code is left for the event threads
    explicit Camera(QObject *parent = nullptr);
    ~Camera() override;

    /// Opens the device with this number of the camera list, closing whatever is open, and starts live
    /// capture. After a failure the camera is closed and can be opened again.
    /// @throws std::runtime_error with the library's text for the failing call, or a fixed one
    void open(int deviceNumber);

    /// Closes the device if one is open; never throws. Receivers of the null image and of cameraClosed() that
    /// it emits must not open a camera from there.
    void close();

    bool isOpen() const { return cameraHandle != kelvo::NoCamera; }

    /// The open device's handle, 0 while closed.
    kelvo::Handle handle() const { return cameraHandle; }

    /// The library's colour mode: 6 mono, 11 raw Bayer, 0 for 32 bits a pixel.
    int colorMode() const { return currentColorMode; }

    /// Frames received and captures failed since the camera was opened.
    int frameCount() const { return static_cast<int>(frames); }
    int failedCount() const { return static_cast<int>(failedFrames); }

    /// The frame rate that the library measures; 0.0 while closed.
    double framesPerSecond() const;

    /// The open device's serial number; empty while closed or when the library does not tell.
    QString serialNumber() const;

    /// Whether the camera corrects in its own hardware, and so stores a user list itself.
    bool supportsCameraCorrection() const;

    /// Starts continuous capture on the open camera. @throws std::runtime_error with the library's text
    void startCapture();

    /// Captures a single image and handles it like a live frame. @throws std::runtime_error with the
    /// library's text
    void freeze();

    /// Loads "./Speckmend.ini" through the library and reports a failure by displayError().
    void loadParameters();

    /// The library's text for the last failure on the open handle, "Unknown error." when it has none.
    QString errorText(int code) const;

signals:
    /// The image borrows the library's buffer for the time of the call: who keeps it makes a deep copy. A
    /// null image means that there is none.
    void newImage(QImage &image);
    /// Never emitted by the camera: receivers learn the image size from the images.
    void bufferSizeChanged(ImageInfo info);
    void cameraOpened(Camera *camera);
    void cameraClosed();
    void cameraRemoved();
    void cameraReconnect();
    void cameraNewDevice();
    void cameraRemovedDevice();
    void displayError(QString text, int msec = 2000);
    void pixelclockChanged(CameraParameter<int> &param);
    void framerateChanged(CameraParameter<double> &param);
    void exposureChanged(CameraParameter<double> &param);
    void mastergainChanged(CameraParameter<int> &param);

public slots:
    // Each setter cuts its value to the setting's range and tells the camera. A setter does nothing while a
    // call of the same one, on whichever camera, is under way: controls answer a changed signal with a call.
    // Nor does it while no camera is open: a control reports what was typed when it is disabled.

    /// Also refreshes the frame rate and the exposure, whose ranges depend on it.
    void setPixelclock(int value);
    /// Kept: maps the value to a step number and sets that number as the pixel clock.
    void setPixelclockRelative(int value);

    /// In frames per second. Also refreshes the exposure, whose range depends on it.
    void setFramerate(double value);
    /// Kept: maps the value to a step number and sets that number as the frame rate.
    void setFramerateRelative(int value);

    /// In the library's unit, milliseconds on the simulated cameras.
    void setExposure(double value);
    /// Kept: maps the value to a step number and sets that number as the exposure.
    void setExposureRelative(int value);

    /// 0 to 100; leaves the gains of the colours alone.
    void setMastergain(int value);

    /// Switches the camera's own hot pixel correction, at the highest frame rate, and restarts capture.
    void setBadPixelCorrection(bool enable);

    /// Reads the pixel clock's range, applies its value and goes on to the frame rate and the exposure.
    /// @throws std::runtime_error with the library's text
    void updatePixelclock();
    void updateFramerate();
    void updateExposure();
    void updateMastergain();

    /// Gives the open camera the settings of "cameraparameter.xml" in the current directory, or ones for
    /// finding hot pixels when that holds no complete entry for its sensor.
    void setAutoConfig();

    /// Handles one event of the camera library; codes that mean nothing here are ignored.
    void eventReceived(int event);

private:
    void initCamera(int deviceNumber);
    void readSensorInfo();
    void chooseColorMode();
    void chooseImageArea();
    void startLiveImages();
    void readDefaults();
    std::optional<SensorSettings> readSettings();
    void applySettings(const SensorSettings &settings);
    void applyDefaults();
    void slowPixelclockDown();
    void setGains(const SensorSettings &settings);
    void announceMastergain(int value);
    void handleEvent(int event);
    void receiveFrame();
    void emitImage(QImage image);
    static void awaitEnd(EventThread &thread);

    EventThread deviceEvents;
    EventThread cameraEvents;
    int cameraNumber = 0;
    kelvo::Handle cameraHandle = kelvo::NoCamera;
    kelvo::SensorInfoRecord sensorInfo;
    kelvo::ImageArea aoi;
    std::uint32_t frames = 0;
    std::uint32_t failedFrames = 0;
    int openings = 0;    // devices opened so far: tells one from the next, which may get the same handle
    int staleEvents = 0; // events of the last device that are still in the queue
    ImageSequence sequence;
    int currentColorMode = kelvo::ColorModeRawBayer8;
    int bitsPerPixel = 8;
    QImage::Format imageFormat = QImage::Format_Invalid;
    QImage currentImage;
    CameraParameter<int> pixelclock;
    CameraParameter<double> framerate;
    CameraParameter<double> exposure;
    CameraParameter<int> mastergain;
};
