// SPDX-License-Identifier: MIT
// The texts that the program may show on its way, beside the library's own words for the call that failed.
#pragma once

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

const QString CannotStoreText =
    "This camera only supports software correction and can't be saved inside the camera memory!";
const QString CannotSaveText =
    "This camera only supports software correction and therefore can't save inside the camera memory.";

/// Whether a text is one of the program's own. Numbers are those that the library tells.
inline bool isStatedText(const QString &text)
{
    static const QStringList whole = {
        "Can't get number of cameras.",
        "Can't get camera list.",
        "Could not initialize camera.",
        "Color Mode not supported.",
        "Unsupported camera type",
        "Can't allocate image memory.",
        "Can't add buffer to sequence.",
        "Error writing hotpixel list",
        CannotStoreText,
        CannotSaveText,
        "This action will completely overwrite the user defined hot pixel list in the EEPROM of the camera.",
    };
    static const QRegularExpression withNumber(
        "^(Upload of new firmware required\\. \\(approx\\. -?\\d+ seconds\\)"
        "|Can't write more than -?\\d+ hot pixel entries\\."
        "|write to file failed with -?\\d+\n"
        "|load from file failed with -?\\d+\n)$");
    return whole.contains(text) || withNumber.match(text).hasMatch();
}
