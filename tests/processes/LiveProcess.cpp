#include "processes/LiveProcess.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace corvane::test {

LiveProcess::LiveProcess(const QString &name, const QStringList &arguments, int mebibytes,
                         const QString &mappedFile)
    : m_executable(m_directory.filePath(name))
{
    QFile::copy(QStringLiteral(STAND_IN), m_executable);
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOLD_MIB"), QString::number(mebibytes));
    if (!mappedFile.isEmpty())
        environment.insert(QStringLiteral("MAP_FILE"), mappedFile);
    m_process.setProcessEnvironment(environment);
    m_process.start(m_executable, arguments);
}

LiveProcess::~LiveProcess()
{
    m_process.closeWriteChannel();
    m_process.waitForFinished(-1);
}

bool LiveProcess::isReady()
{
    return m_process.waitForStarted(-1) && m_process.waitForReadyRead(-1)
        && m_process.readAllStandardOutput() == "ready\n";
}

void LiveProcess::removeExecutable() const
{
    QFile::remove(m_executable);
}

ProcView::ProcView(std::initializer_list<std::int64_t> pids)
{
    const QDir directory(m_directory.path());
    directory.mkdir(QStringLiteral("proc"));
    const auto link = [&directory](const QString &name) {
        QFile::link(QStringLiteral("/proc/") + name,
                    directory.filePath(QStringLiteral("proc/") + name));
    };
    link(QStringLiteral("meminfo"));
    for (const std::int64_t pid : pids)
        link(QString::number(pid));
}

std::optional<QByteArray> processText(std::int64_t pid, const char *file)
{
    QFile text(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1StringView(file)));
    if (!text.open(QIODevice::ReadOnly))
        return std::nullopt;
    return text.readAll();
}

std::optional<std::uint64_t> footprintByStatus(std::int64_t pid)
{
    const QString status = QString::fromUtf8(processText(pid, "status").value_or(QByteArray()));
    std::optional<std::uint64_t> sum;
    for (const char *name : {"RssAnon", "VmSwap"}) {
        const QRegularExpression line(
            QStringLiteral("^%1:\\s+(\\d+) kB$").arg(QLatin1StringView(name)),
            QRegularExpression::MultilineOption);
        if (const auto match = line.match(status); match.hasMatch())
            sum = sum.value_or(0) + match.captured(1).toULongLong() * 1024;
    }
    return sum;
}

int heavierProcesses(std::uint64_t footprint)
{
    int heavier = 0;
    for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        bool isProcess = false;
        const qlonglong pid = name.toLongLong(&isProcess);
        if (isProcess && footprintByStatus(pid).value_or(0) > footprint)
            ++heavier;
    }
    return heavier;
}

} // namespace corvane::test
