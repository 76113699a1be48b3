// SPDX-License-Identifier: MIT
// One reading of a parameter file by whoever wrote it, with what must hold for every file there is.
#pragma once

#include "parameterfile.h"

#include <QBuffer>

#include <cmath>

/// A file that was read and the entry for sensor 1F.
struct ReadParameterFile
{
    explicit ReadParameterFile(QByteArray content)
    {
        QBuffer buffer(&content);
        buffer.open(QIODevice::ReadOnly);
        ParameterFile file;
        isWellFormed = file.load(buffer);
        settings = file.settingsFor(0x1F);
    }

    /// A refused file has no entry, and no entry has a number that a camera could not be asked for.
    bool isSound() const
    {
        return !settings ||
               (isWellFormed && std::isfinite(settings->exposure) && std::isfinite(settings->framerate));
    }

    bool isWellFormed = false;
    std::optional<SensorSettings> settings;
};
