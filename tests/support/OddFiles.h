#pragma once

#include <QDir>
#include <QFile>
#include <QMetaType>
#include <QString>

#include <sys/stat.h>
#include <unistd.h>

namespace corvane::test {

/// Puts at a path what no program expects of its own file; false if it could not. Small on the
/// disk, but for the line.
using PutOddFile = bool (*)(const QString &path);

inline bool putFIFO(const QString &path)
{
    return mkfifo(QFile::encodeName(path).constData(), 0600) == 0;
}

inline bool putFolder(const QString &path)
{
    return QDir().mkpath(path);
}

inline bool putLinkToItself(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    return symlink(name.constData(), name.constData()) == 0;
}

/// Two gibibytes that were never written.
inline bool putHole(const QString &path)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.resize(qint64(2) << 30);
}

inline bool putHugeLine(const QString &path)
{
    QFile file(path);
    if (!file.open(QFile::WriteOnly))
        return false;
    const QByteArray megabyte(1'000'000, 'x');
    for (int i = 0; i < 100; ++i)
        file.write(megabyte);
    return file.write("\n") == 1;
}

/// Every byte there is, many times over, line feeds among them.
inline bool putGarbage(const QString &path)
{
    QByteArray bytes;
    for (int i = 0; i < 100'000; ++i)
        bytes.append(static_cast<char>(i % 256));
    bytes += "\n{\"t\":1e999}\n[]\n{\n";
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace corvane::test

Q_DECLARE_METATYPE(corvane::test::PutOddFile)
