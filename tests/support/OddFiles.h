#pragma once

#include <QFile>
#include <QMetaType>
#include <QString>

#include <sys/stat.h>

namespace corvane::test {

/// Puts at a path what no program expects of its own file; false if that fails.
using PutOddFile = bool (*)(const QString &path);

inline bool putFIFO(const QString &path)
{
    return mkfifo(QFile::encodeName(path).constData(), 0600) == 0;
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

/// Half a gigabyte, which takes no room on the disk.
inline bool putHugeFile(const QString &path)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.resize(500'000'000);
}

/// A file without an end.
inline bool putEndlessFile(const QString &path)
{
    return QFile::link(QStringLiteral("/dev/zero"), path);
}

/// All byte values in turn, many times, line feeds among them, and damaged JSON.
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
