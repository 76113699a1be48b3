// SPDX-License-Identifier: MIT
// Tells a saved arrangement of docks and tool bars from bytes that only look like one.
#pragma once

class QByteArray;

/// Whether QMainWindow::restoreState() may be given these bytes: whether they are, from the first to the
/// last, what saveState() of Qt 5 writes of a window without grouped dragging. Qt itself takes places of
/// docks from them unchecked, and a damaged store of settings would make it write into memory that is not its
/// own. The version is left to Qt. Throws nothing.
bool isSavedLayout(const QByteArray &state);
