#include "processes/ProcTree.h"

#include <QDir>

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

std::optional<QByteArray> statusText(const FakeProcess &process)
{
    return "Name:\tx\nVmRSS:\t" + kibibytes(process.own + process.shared) + "VmSwap:\t"
        + kibibytes(*process.swapped) + "Threads:\t1\n";
}

std::string path(int pid, const char *file)
{
    return "proc/" + std::to_string(pid) + '/' + file;
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

void ProcTree::addFolder(const QByteArray &name)
{
    QDir(QString::fromStdString(root())).mkpath(QString::fromUtf8("proc/" + name));
}

void ProcTree::add(int pid, const FakeProcess &process)
{
    const auto write = [this, pid](const char *file, const std::optional<QByteArray> &contents) {
        if (contents)
            m_tree.write(path(pid, file), contents->toStdString());
    };
    addFolder(QByteArray::number(pid));
    write("statm", process.statm.value_or(statmText(process)));
    write("status", process.status || !process.swapped ? process.status : statusText(process));
    write("stat",
          QByteArray::number(pid) + " (x) S " + QByteArray::number(process.parent)
              + QByteArray(" 0").repeated(17) + ' '
              + QByteArray::number(static_cast<qulonglong>(process.startTime)) + " 0 0\n");
    write("comm", process.comm);
    write("cmdline", process.cmdline);
    const auto link = [this, pid](const char *file, const std::optional<QByteArray> &target) {
        const std::string place = root() + '/' + path(pid, file);
        if (target && symlink(target->constData(), place.c_str()) != 0)
            qFatal("The made-up machine could not be written.");
    };
    link("exe", process.exe);
    link("cwd", process.cwd);
}

void ProcTree::setSwap(std::uint64_t total, std::uint64_t free)
{
    const QByteArray text = "MemTotal:       24684096 kB\nSwapCached:            0 kB\nSwapTotal:"
        + kibibytes(total) + "SwapFree:" + kibibytes(free);
    m_tree.write("proc/meminfo", text.toStdString());
}

void ProcTree::setMergingScans(const std::string &fullScans)
{
    m_tree.write("sys/kernel/mm/ksm/full_scans", fullScans);
}

void ProcTree::remove(int pid, const char *file)
{
    m_tree.remove(path(pid, file));
}

} // namespace corvane::test
