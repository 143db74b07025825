#include "packaging/macos/AppIcon.h"
#include "packaging/macos/IconFile.h"

#include <QGuiApplication>
#include <QSaveFile>

/// Writes the program's icon to the file named by its argument.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 2)
        return 2;
    QSaveFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::WriteOnly))
        return 1;
    file.write(corvane::iconFile(corvane::appIcon));
    return file.commit() ? 0 : 1;
}
