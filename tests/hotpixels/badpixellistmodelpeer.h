// SPDX-License-Identifier: MIT
// Plants entries of any class, as a text file may bring them.
#pragma once

#include "badpixellistmodel.h"

struct BadpixelListModelPeer
{
    /// Appends entries without announcing them.
    static void append(BadpixelListModel &model, const std::vector<Badpixel> &list)
    {
        model.entries.append(list);
    }
};
