// SPDX-License-Identifier: MIT
// What the monkey did last, what it met, and what is printed when something is wrong.
#pragma once

#include <QString>

namespace monkeydiary {

/// From here on a warning of Qt, a crash, a sanitizer's report and an action that takes minutes are findings.
void open(bool printEverything);

/// Names the life that begins, as it is replayed: "seed:life".
void beginLife(const QString &name);

/// Opens the line of an action; the loops that are open below it are counted in `depth`.
void beginAction(quint64 number, int depth, const char *kind);

/// Adds to the line of the latest action.
void note(const QString &text);

/// Counts that something happened, for the figures at the end.
void count(const char *what, int times = 1);

/// One line a thing that was counted.
QString figures();

/// A leak is a finding. Does nothing in a build without the leak sanitizer.
void checkLeaks();

/// Ends the program well where leaks have been looked for: what Qt keeps to the end is left to the system.
/// Does nothing in a build without the leak sanitizer.
void close();

/// Prints what is wrong, the seed, and the last actions, and ends the program with status 1.
[[noreturn]] void finding(const QString &text);

} // namespace monkeydiary
