#include "chip/ChipName_linux.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

using Name = std::optional<std::string>;
using Files = QMap<QString, QByteArray>; ///< Contents by path below the root.

const QString cpuInfo = u"/proc/cpuinfo"_s;
const QString model = u"/proc/device-tree/model"_s;
const QString firmwareModel = u"/sys/firmware/devicetree/base/model"_s;

} // namespace

class TestChipName : public QObject {
    Q_OBJECT

private slots:
    void readsKernelFiles_data();
    void readsKernelFiles();
    void ignoresWhatIsNoFile();
};

void TestChipName::readsKernelFiles_data()
{
    QTest::addColumn<Files>("files");
    QTest::addColumn<Name>("expected");

    const auto row = [](const char *name, const Files &files, const Name &expected) {
        QTest::newRow(name) << files << expected;
    };
    const QByteArray x86 = "processor\t: 0\nvendor_id\t: AuthenticAMD\nmodel\t\t: 97\n"
                           "model name\t: AMD Ryzen 9 7950X 16-Core Processor            \n"
                           "stepping\t: 2\n\nprocessor\t: 1\nmodel name\t: Another\n\n";
    const QByteArray arm = "processor\t: 0\nBogoMIPS\t: 108.00\nCPU part\t: 0xd0b\n\n";
    const auto boardText = "Raspberry Pi 5 Model B Rev 1.0\0"_ba;

    row("an x86 processor, the first one's name", {{cpuInfo, x86}},
        "AMD Ryzen 9 7950X 16-Core Processor");
    row("a board, its text ended by a NUL", {{cpuInfo, arm}, {model, boardText}},
        "Raspberry Pi 5 Model B Rev 1.0");
    row("the same where the firmware keeps it", {{cpuInfo, arm}, {firmwareModel, boardText}},
        "Raspberry Pi 5 Model B Rev 1.0");
    row("a board without a list of processors", {{model, boardText}},
        "Raspberry Pi 5 Model B Rev 1.0");
    row("the processor's name comes before the board's", {{cpuInfo, x86}, {model, boardText}},
        "AMD Ryzen 9 7950X 16-Core Processor");
    row("a processor without a name has the board's",
        {{cpuInfo, "model name\t:  \n"}, {model, boardText}}, "Raspberry Pi 5 Model B Rev 1.0");
    row("neither", {{cpuInfo, arm}}, {});
    row("no files at all", {}, {});
    row("an empty list of processors", {{cpuInfo, ""}}, {});
    row("the last line cut short", {{cpuInfo, "model name\t: Half a na"}}, "Half a na");
    row("the list cut within the key", {{cpuInfo, "processor\t: 0\nmodel na"}}, {});
    row("a key without a value's colon", {{cpuInfo, "model name\nmodel name\t: Chip\n"}}, "Chip");
    row("colons in the name stay", {{cpuInfo, "model name\t: Chip: second\n"}}, "Chip: second");
    row("a key that only begins alike", {{cpuInfo, "model name 2\t: Wrong\n"}}, {});
    row("a key that only ends alike", {{cpuInfo, "old model name\t: Wrong\n"}}, {});
    row("bytes that are not text", {{cpuInfo, "\xFF\xFE\x01:\xC3\nmodel name\t: \xFF Chip\n"}},
        "\xFF Chip");
    row("NULs in the list", {{cpuInfo, "proc\0essor\0\nmodel name\t: Chip\0\n"_ba}}, "Chip");
    row("a line of a thousand bytes",
        {{cpuInfo, QByteArray(1'000, 'x') + "\nmodel name\t: Chip\n"}}, "Chip");
}

void TestChipName::readsKernelFiles()
{
    QFETCH(Files, files);
    const QTemporaryDir root;
    for (const auto &[path, contents] : files.asKeyValueRange()) {
        QFile file(root.path() + path);
        QVERIFY(QDir().mkpath(QFileInfo(file).path()));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(contents), contents.size());
    }
    QTEST(readChipNameBelow(root.path().toStdString()), "expected");
}

void TestChipName::ignoresWhatIsNoFile()
{
    const QTemporaryDir root;
    QVERIFY(QDir(root.path()).mkpath(u"proc/device-tree/model"_s));
    const std::string fifo = root.path().toStdString() + "/proc/cpuinfo";
    QCOMPARE(mkfifo(fifo.c_str(), 0600), 0); // Opening one that nobody writes to could block.
    QCOMPARE(readChipNameBelow(root.path().toStdString()), Name());
}

QTEST_APPLESS_MAIN(TestChipName)
#include "tst_ChipName.moc"
