// SPDX-License-Identifier: MIT
// Follows the bench file and changes single values in it.
#pragma once

#include "benchfile.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <string>
#include <vector>

/// A state of a camera that the panel switches.
enum class BenchSwitch {
    Attached,
    LensCap,
    InUse,
};

/// The bench file as seen by the panel. The file alone holds the state: every change is made in the text that
/// stands there at that moment, so edits by hand are never lost. No operation throws; what went wrong is told
/// by problem().
class BenchEditor final : public QObject
{
    Q_OBJECT

public:
    /// Reads the file and looks at it again several times a second.
    explicit BenchEditor(const QString &path, QObject *parent = nullptr);

    QString path() const { return file; }

    /// The cameras when the file was last understood.
    const std::vector<benchfile::Camera> &cameras() const { return known; }

    /// What is wrong with the file, or why the last change failed; empty when all is well.
    QString problem() const { return trouble; }

    /// Whether the file can be read and understood, and hence changed.
    bool isUsable() const { return usable; }

    /// Switches one state of a camera.
    void set(const std::string &serial, BenchSwitch which, bool on);

    /// Lets the camera's next ten captures fail.
    void burstOfFailedFrames(const std::string &serial);

    /// Empties the camera's stored user list.
    void resetStoredLists(const std::string &serial);

signals:
    /// The cameras or the problem are others now.
    void changed();

public slots:
    /// Takes the present content of the file up.
    void look();

private:
    using Edit = std::function<std::string(const std::string &text)>;

    void change(const Edit &edit);
    void increase(const std::string &serial, const std::string &key,
                  std::uint32_t benchfile::Camera::*counter, std::uint32_t by);
    QByteArray read() const;
    void write(const QByteArray &text) const;
    void understand(const QByteArray &text);
    void report(const QString &text);

    QString file;
    std::vector<benchfile::Camera> known;
    QByteArray seen; // the content at the last look; null when it could not be read
    QString trouble;
    bool usable = false;
    QTimer interval;
};
