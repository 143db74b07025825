#include "processes/ProcTree.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

namespace corvane::test {

namespace {

constexpr std::uint64_t kibibyte = 1024;

QByteArray pages(std::uint64_t bytes)
{
    return QByteArray::number(static_cast<qulonglong>(bytes / ProcTree::pageSize()));
}

QByteArray kibibytes(std::uint64_t bytes)
{
    return QByteArray::number(static_cast<qulonglong>(bytes / kibibyte)).rightJustified(8)
        + " kB\n";
}

QByteArray statmText(const FakeProcess &process)
{
    const std::uint64_t resident = process.own + process.shared;
    return pages(resident + process.room) + ' ' + pages(resident) + ' ' + pages(process.shared)
        + " 11 0 29 0\n";
}

} // namespace

ProcTree::ProcTree()
{
    addFolder("self");
}

std::uint64_t ProcTree::pageSize()
{
    return static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

std::string ProcTree::root() const
{
    return m_directory.path().toStdString();
}

void ProcTree::addFolder(const QByteArray &name)
{
    QDir(m_directory.path()).mkpath(QString::fromUtf8("proc/" + name));
}

QByteArray ProcTree::path(int pid, const char *file) const
{
    return m_directory.path().toUtf8() + "/proc/" + QByteArray::number(pid) + '/' + file;
}

void ProcTree::write(const QByteArray &path, const QByteArray &contents)
{
    QFile file(QString::fromUtf8(path));
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        qFatal("The made-up machine could not be written.");
}

void ProcTree::add(int pid, const FakeProcess &process)
{
    addFolder(QByteArray::number(pid));
    write(path(pid, "statm"), process.statm.value_or(statmText(process)));
    if (process.status)
        write(path(pid, "status"), *process.status);
    else if (process.swapped)
        write(path(pid, "status"),
              "Name:\tx\nVmRSS:\t" + kibibytes(process.own + process.shared) + "VmSwap:\t"
                  + kibibytes(*process.swapped) + "Threads:\t1\n");
    if (process.comm)
        write(path(pid, "comm"), *process.comm);
    if (process.cmdline)
        write(path(pid, "cmdline"), *process.cmdline);
    if (process.exe && symlink(process.exe->constData(), path(pid, "exe").constData()) != 0)
        qFatal("The made-up machine could not be written.");
}

void ProcTree::setSwap(std::uint64_t total, std::uint64_t free)
{
    write(m_directory.path().toUtf8() + "/proc/meminfo",
          "MemTotal:       24684096 kB\nSwapCached:            0 kB\nSwapTotal:" + kibibytes(total)
              + "SwapFree:" + kibibytes(free));
}

void ProcTree::setMergingScans(const QByteArray &fullScans)
{
    QDir(m_directory.path()).mkpath(QStringLiteral("sys/kernel/mm/ksm"));
    write(m_directory.path().toUtf8() + "/sys/kernel/mm/ksm/full_scans", fullScans);
}

void ProcTree::remove(int pid, const char *file)
{
    QFile::remove(QString::fromUtf8(path(pid, file)));
}

} // namespace corvane::test
