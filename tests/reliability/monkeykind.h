// SPDX-License-Identifier: MIT
// What a monkey can do.
#pragma once

#include "monkeyrandom.h"

#include <QVector>

#include <functional>

/// One kind of action.
struct MonkeyKind
{
    enum Place {
        Anywhere,
        InWindow,   ///< while nothing modal is open, as the user could not reach it otherwise
        InDialogue, ///< while a dialogue, a box or a menu is open
    };

    const char *name;
    int weight; ///< how often, compared with the others
    Place place;
    std::function<void(MonkeyRandom &)> act;
};

using MonkeyKinds = QVector<MonkeyKind>;
