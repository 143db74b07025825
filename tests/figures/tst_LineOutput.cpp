#include "figures/LineOutput.h"

#include "platform/FileDescriptor.h"
#include "support/Waiting.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// A pipe with the output at its end.
struct Pipe {
    Pipe()
    {
        std::array<int, 2> ends = {};
        if (pipe(ends.data()) != 0)
            qFatal("no pipe");
        reader = FileDescriptor(ends[0]);
        writer = FileDescriptor(ends[1]);
        fcntl(reader.get(), F_SETFL, O_NONBLOCK);
        output = std::make_unique<LineOutput>(writer.get());
    }

    /// All that is in the pipe now.
    QByteArray read() const
    {
        QByteArray all;
        QByteArray piece(65536, '\0');
        for (ssize_t count = 0;
             (count = ::read(reader.get(), piece.data(), static_cast<std::size_t>(piece.size())))
             > 0;)
            all.append(piece.constData(), count);
        return all;
    }

    FileDescriptor reader;
    FileDescriptor writer;
    std::unique_ptr<LineOutput> output;
};

} // namespace

class TestLineOutput : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { std::signal(SIGPIPE, SIG_IGN); } // As in the program.
    void writesLines();
    void writesALineThatIsLongerThanThePipe();
    void keepsTheNewestLineForASlowReader();
    void endsWithItsReader();
    void endsWithItsReaderInTheMiddleOfALine();
    void writesIntoAFile();
    void endsOnAFullDisk();
};

void TestLineOutput::writesLines()
{
    const Pipe pipe;
    QSignalSpy idle(pipe.output.get(), &LineOutput::idle);
    pipe.output->send("one\n");
    pipe.output->send("two\n");
    QCOMPARE(pipe.read(), QByteArray("one\ntwo\n"));
    QCOMPARE(idle.count(), 2);
    QVERIFY(pipe.output->isIdle());
}

void TestLineOutput::writesALineThatIsLongerThanThePipe()
{
    const Pipe pipe;
    const QByteArray line = QByteArray(300'000, 'x') + '\n';
    pipe.output->send(line);
    QVERIFY(!pipe.output->isIdle());
    QByteArray all;
    QTRY_VERIFY((all += pipe.read()).endsWith('\n'));
    QCOMPARE(all, line);
    QVERIFY(pipe.output->isIdle());
}

void TestLineOutput::keepsTheNewestLineForASlowReader()
{
    const Pipe pipe;
    const QByteArray first = QByteArray(100'000, 'x') + '\n';
    pipe.output->send(first);
    for (int number = 0; number < 1000; ++number)
        pipe.output->send(QByteArray::number(number) + '\n');
    QByteArray all;
    QTRY_VERIFY((all += pipe.read()).endsWith("999\n"));
    QCOMPARE(all, first + "999\n");
}

void TestLineOutput::endsWithItsReader()
{
    Pipe pipe;
    QSignalSpy closed(pipe.output.get(), &LineOutput::closed);
    pipe.reader = {};
    pipe.output->send("one\n");
    pipe.output->send("two\n");
    QCOMPARE(closed.count(), 1);
    QVERIFY(pipe.output->error() == std::errc::broken_pipe);
}

void TestLineOutput::endsWithItsReaderInTheMiddleOfALine()
{
    Pipe pipe;
    QSignalSpy closed(pipe.output.get(), &LineOutput::closed);
    pipe.output->send(QByteArray(300'000, 'x') + '\n');
    pipe.reader = {};
    QTRY_COMPARE(closed.count(), 1);
}

void TestLineOutput::writesIntoAFile()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"out"_s));
    QVERIFY(file.open(QFile::ReadWrite));
    LineOutput output(file.handle());
    output.send("one\n");
    output.send("two\n");
    QVERIFY(output.isIdle());
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), QByteArray("one\ntwo\n"));
}

void TestLineOutput::endsOnAFullDisk()
{
    const FileDescriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    if (!full)
        QSKIP("This system has no full device.");
    LineOutput output(full.get());
    QSignalSpy closed(&output, &LineOutput::closed);
    output.send("one\n");
    QCOMPARE(closed.count(), 1);
    QVERIFY(output.error() == std::errc::no_space_on_device);
}

QTEST_GUILESS_MAIN(TestLineOutput)
#include "tst_LineOutput.moc"
