// SPDX-License-Identifier: MIT
// Starts the bench panel: kelvo-bench [bench file], by default the file that KELVOSIM_BENCH names.

#include "benchpanel.h"

#include <QApplication>
#include <QFile>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString path = arguments.value(1, QFile::decodeName(qgetenv("KELVOSIM_BENCH")));
    BenchPanel panel(path);
    panel.show();
    return QApplication::exec();
}
