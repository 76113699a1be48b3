// SPDX-License-Identifier: MIT
// Asks the dynamic loader whether it finds all that the program is linked to.
#pragma once

#include <QString>
#include <QStringList>

/// What keeps the dynamic loader from starting `program`, a line each in its own words; empty when nothing
/// does.
///
/// The loader itself is asked, in this process's environment, so the search is the very one of the start that
/// follows. No code of the program and of its libraries runs.
QStringList loaderComplaints(const QString &program);

/// Says in words what is missing, and where it was looked for.
QString explained(const QStringList &complaints);
