// SPDX-License-Identifier: MIT
// The list that the camera library itself holds, saves to files and loads from them.
#pragma once

#include "kelvocodes.h"
#include "listbuffer.h"

class Camera;
class QString;

/// The library's current user list of the open camera. Every operation returns the library's status; that of
/// a closed or null camera is whatever the library says of no camera. GUI thread only.
class CurrentUserList final
{
public:
    explicit CurrentUserList(const Camera *camera);

    /// Reads the list; it is empty when the library holds none. The first word of `list` says how many pairs
    /// follow it, whatever the library wrote there.
    kelvo::Status read(ListBuffer &list) const;

    /// Replaces the list.
    kelvo::Status set(ListBuffer list) const;

    /// Lets the library write the list into a file of its own format.
    kelvo::Status saveTo(const QString &filename) const;

    /// Lets the library replace the list by that of a file.
    kelvo::Status loadFrom(const QString &filename) const;

private:
    bool isHeld() const;
    kelvo::Status command(kelvo::HotpixelCommand code, const QString &filename) const;

    kelvo::Handle handle = kelvo::NoCamera;
};
