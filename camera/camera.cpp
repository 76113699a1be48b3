// SPDX-License-Identifier: MIT
// Opening and closing a camera, the way of a frame, and what each event of the library means.

#include "camera.h"

#include "guard.h"
#include "lasterror.h"

#include <stdexcept>
#include <utility>

namespace {

constexpr int BufferCount = 3;
constexpr unsigned long MillisecondsToEnd = 500;

// A receiver of newImage() that runs the event loop must not be handed a second frame meanwhile.
bool emittingImage = false;

/// These sensors are refused on purpose.
bool isRefused(std::uint16_t sensorId)
{
    return sensorId == 0x4D || sensorId == 0x21D || sensorId == 0x20B;
}

} // namespace

Camera::Camera(QObject *parent)
    : QObject(parent)
{
    cameraEvents.holdBack(kelvo::EventFrame);
    connect(&deviceEvents, &EventThread::eventhappen, this, &Camera::eventReceived);
    connect(&cameraEvents, &EventThread::eventhappen, this, &Camera::eventReceived);
    deviceEvents.start(kelvo::NoCamera, {kelvo::EventDeviceRemoved, kelvo::EventDeviceAdded});
}

Camera::~Camera()
{
    deviceEvents.stop();
    cameraEvents.stop();
    awaitEnd(deviceEvents);
    awaitEnd(cameraEvents);
    disconnect(this, nullptr, this, SLOT(eventReceived(int)));
    sequence.clear();
    if (isOpen())
        vx_ExitCamera(std::exchange(cameraHandle, kelvo::NoCamera));
}

/// Nothing may be freed or started again while a thread still runs, and terminate() does not end it at once:
/// better to wait for a library that hangs than to free under its hands.
void Camera::awaitEnd(EventThread &thread)
{
    if (!thread.wait(MillisecondsToEnd)) {
        thread.terminate();
        thread.wait();
    }
}

void Camera::open(int deviceNumber)
{
    close();
    try {
        initCamera(deviceNumber);
        readSensorInfo();
        chooseColorMode();
        vx_HotPixel(cameraHandle, kelvo::HotpixelDisableCorrection, nullptr, 0);
        chooseImageArea();
        startLiveImages();
        cameraNumber = deviceNumber;
        emit cameraOpened(this);
        readDefaults();
        frames = 0;
        failedFrames = 0;
    } catch (...) {
        close();
        throw;
    }
}

/// Works on a variable of its own, so that a failed initialisation never looks open.
void Camera::initCamera(int deviceNumber)
{
    const auto number = static_cast<std::uint32_t>(deviceNumber) | kelvo::DeviceNumberFlag;
    kelvo::Handle opened = number;
    kelvo::Status status = vx_InitCamera(&opened, nullptr);
    if (status == kelvo::FirmwareUploadRequired) {
        std::int32_t milliseconds = 25000;
        vx_GetDuration(number, kelvo::DurationOfFirmwareUpload, &milliseconds);
        emit displayError(
            QString("Upload of new firmware required. (approx. %1 seconds)").arg(milliseconds / 1000), 2000);
        opened = number | kelvo::FirmwareUploadFlag;
        status = vx_InitCamera(&opened, nullptr); // blocks for the whole upload
    }
    if (status != kelvo::Success || opened == kelvo::NoCamera)
        throw std::runtime_error("Could not initialize camera.");
    cameraHandle = opened;
    ++openings;
}

void Camera::readSensorInfo()
{
    throwOnFailure(cameraHandle, vx_GetSensorInfo(cameraHandle, &sensorInfo));
    if (isRefused(sensorInfo.sensorId)) {
        vx_ExitCamera(std::exchange(cameraHandle, kelvo::NoCamera));
        throw std::runtime_error("Unsupported camera type");
    }
}

void Camera::chooseColorMode()
{
    throwOnFailure(cameraHandle, vx_SetColorMode(cameraHandle, kelvo::ColorModeRawBayer8));
    currentColorMode = vx_SetColorMode(cameraHandle, kelvo::QueryCurrent);
    switch (currentColorMode) {
    case kelvo::ColorModeRgb32:
        bitsPerPixel = 32;
        imageFormat = QImage::Format_RGB32;
        break;
    case kelvo::ColorModeMono8:
    case kelvo::ColorModeRawBayer8:
        bitsPerPixel = 8;
        imageFormat = QImage::Format_Indexed8;
        break;
    default:
        imageFormat = QImage::Format_Invalid;
        throw std::runtime_error("Color Mode not supported.");
    }
}

void Camera::chooseImageArea()
{
    kelvo::ImageSize maximum;
    throwOnFailure(cameraHandle, vx_AOI(cameraHandle, kelvo::AoiGetMaximumSize, &maximum, sizeof maximum));
    aoi = kelvo::ImageArea();
    aoi.width = maximum.width;
    aoi.height = maximum.height;
    throwOnFailure(cameraHandle, vx_AOI(cameraHandle, kelvo::AoiSet, &aoi, sizeof aoi));
}

void Camera::startLiveImages()
{
    sequence.setup(cameraHandle, BufferCount,
                   ImageInfo(static_cast<std::uint32_t>(aoi.width), static_cast<std::uint32_t>(aoi.height),
                             static_cast<std::uint32_t>(bitsPerPixel)));
    cameraEvents.start(cameraHandle, {kelvo::EventFrame, kelvo::EventCameraReconnected,
                                      kelvo::EventCameraRemoved, kelvo::EventFrameFailed});
    startCapture();
}

void Camera::readDefaults()
{
    pixelclock.value = vx_SetPixelClock(cameraHandle, kelvo::QueryDefault);
    throwOnFailure(cameraHandle, vx_GetFramesPerSecond(cameraHandle, &framerate.value));
    throwOnFailure(cameraHandle, vx_SetExposureTime(cameraHandle, kelvo::QueryDefault, &exposure.value));
    updatePixelclock();
    updateMastergain();
}

void Camera::close()
{
    if (!isOpen())
        return;
    vx_StopLiveVideo(cameraHandle, kelvo::WaitUntilDone);
    cameraEvents.stop();
    awaitEnd(cameraEvents);
    staleEvents = cameraEvents.abandon();
    sequence.clear();
    vx_ExitCamera(cameraHandle);
    cameraNumber = 0;
    cameraHandle = kelvo::NoCamera;
    currentImage = QImage();
    const auto report = [this](const QString &text) { emit displayError(text); };
    guarded([this] { emit newImage(currentImage); }, report);
    guarded([this] { emit cameraClosed(); }, report);
}

double Camera::framesPerSecond() const
{
    double rate = 0.0;
    if (isOpen())
        vx_GetFramesPerSecond(cameraHandle, &rate);
    return rate;
}

QString Camera::serialNumber() const
{
    kelvo::CameraInfoRecord info;
    vx_GetCameraInfo(cameraHandle, &info);
    return QString::fromLatin1(info.serialNumber,
                               static_cast<int>(qstrnlen(info.serialNumber, sizeof info.serialNumber)));
}

bool Camera::supportsCameraCorrection() const
{
    std::uint32_t modes = 0;
    const kelvo::Status status =
        vx_HotPixel(cameraHandle, kelvo::HotpixelGetSupportedModes, &modes, sizeof modes);
    return status == kelvo::Success && (modes & kelvo::HotpixelModeCamera);
}

void Camera::startCapture()
{
    if (isOpen())
        throwOnFailure(cameraHandle, vx_CaptureVideo(cameraHandle, kelvo::ReturnAtOnce));
}

void Camera::freeze()
{
    if (!isOpen())
        return;
    throwOnFailure(cameraHandle, vx_FreezeVideo(cameraHandle, kelvo::WaitUntilDone));
    receiveFrame();
}

void Camera::loadParameters()
{
    const kelvo::Status status = vx_LoadParameters(cameraHandle, "./Speckmend.ini");
    if (status == kelvo::IniFileNotFound)
        emit displayError(tr("Can't open ini file."), 2000);
    else if (status != kelvo::Success)
        emit displayError(errorText(status), 2000);
}

QString Camera::errorText(int code) const
{
    return QString(lastErrorText(cameraHandle, code).c_str());
}

/// Called by the event threads' signals, and by nobody else while one of these is being handled: sender()
/// tells whose events are counted.
void Camera::eventReceived(int event)
{
    if (sender() == &deviceEvents)
        deviceEvents.delivered(event);
    if (sender() == &cameraEvents) {
        cameraEvents.delivered(event);
        if (staleEvents > 0) {
            --staleEvents;
            if (isOpen() && event != kelvo::EventFrameFailed) // of a device that was closed since; failed
                return;                                       // frames count whatever is open
        }
    }
    guarded([this, event] { handleEvent(event); }, [this](const QString &text) { emit displayError(text); });
}

void Camera::handleEvent(int event)
{
    switch (event) {
    case kelvo::EventFrame:
        if (isOpen())
            receiveFrame();
        break;
    case kelvo::EventFrameFailed:
        ++failedFrames;
        break;
    case kelvo::EventCameraReconnected:
        if (isOpen())
            emit cameraReconnect();
        break;
    case kelvo::EventCameraRemoved:
        cameraEvents.abandon(); // a frame from before must not pass for a sign that the camera is back
        if (isOpen())
            emit cameraRemoved();
        break;
    case kelvo::EventDeviceRemoved:
        emit cameraRemovedDevice();
        break;
    case kelvo::EventDeviceAdded:
        emit cameraNewDevice();
        break;
    default:
        break;
    }
}

/// Kept: after an exception of a receiver the buffer stays locked and no further image is emitted.
void Camera::receiveFrame()
{
    ++frames;
    try {
        char *last = nullptr;
        throwOnFailure(cameraHandle, vx_GetActSeqBuf(cameraHandle, nullptr, nullptr, &last));
        // A pointer that is none of ours must not be read, whatever the library says of it.
        if (!sequence.holds(last) ||
            vx_LockSeqBuf(cameraHandle, kelvo::BufferByPointer, last) != kelvo::Success)
            return;
        const int opening = openings;
        emitImage(QImage(reinterpret_cast<const uchar *>(last), aoi.width, aoi.height, imageFormat));
        if (isOpen() && opening == openings) // else a receiver closed this device, and the buffer is gone
            vx_UnlockSeqBuf(cameraHandle, kelvo::BufferByPointer, last);
    } catch (const std::runtime_error &failure) {
        emit displayError(QString(failure.what()), 2000);
    }
}

/// A frame that arrives while receivers still look at another is not emitted, and must not take that one's
/// place either: they hold a reference to the current image.
void Camera::emitImage(QImage image)
{
    if (emittingImage)
        return;
    emittingImage = true;
    currentImage = std::move(image);
    emit newImage(currentImage);
    emittingImage = false;
}
