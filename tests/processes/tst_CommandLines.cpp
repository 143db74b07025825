#include "processes/AIProcessDetector.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <map>

using namespace corvane;
using namespace Qt::StringLiterals;

using Model = std::optional<QString>;

Q_DECLARE_METATYPE(Model)

namespace {

// Bytes of a name that the kernels keep. On Linux the executable's name completes it, where it can
// be read.
constexpr qsizetype longestNameOnLinux = 15;
constexpr qsizetype longestNameOnMac = 31;

std::optional<QString> unlessDash(const QString &text)
{
    return text == "-"_L1 ? std::nullopt : std::optional(text);
}

/// The lines of the corpus, split into their columns.
QList<QStringList> corpus()
{
    QFile file(QStringLiteral(CORVANE_COMMAND_LINES));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QStringList> lines;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        if (!line.startsWith(u'#'))
            lines.append(line.split(u'\t'));
    }
    return lines;
}

} // namespace

class TestCommandLines : public QObject {
    Q_OBJECT

private slots:
    void coversAllFrameworks();
    void classifies_data();
    void classifies();
};

void TestCommandLines::coversAllFrameworks()
{
    std::map<QString, int> found;
    for (const QStringList &columns : corpus()) {
        QCOMPARE(columns.size(), 5);
        QVERIFY(columns[0] == "found"_L1 || columns[0] == "miss"_L1);
        if (columns[0] == "found"_L1)
            ++found[columns[1]];
    }
    for (const AIFramework framework : allAIFrameworks)
        QVERIFY2(found[rawValue(framework)] >= 3, qPrintable(rawValue(framework)));
    QVERIFY(corpus().size() >= 60);
}

void TestCommandLines::classifies_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("commandLine");
    QTest::addColumn<QString>("framework");
    QTest::addColumn<Model>("model");
    for (const QStringList &columns : corpus())
        QTest::newRow(qPrintable(columns[3] + ": "_L1 + columns[4]))
            << columns[3] << columns[4] << columns[1] << unlessDash(columns[2]);
}

void TestCommandLines::classifies()
{
    QFETCH(QString, name);
    QFETCH(QString, commandLine);
    QFETCH(QString, framework);
    const QStringList arguments = QProcess::splitCommand(commandLine);
    for (const qsizetype longest : {longestNameOnLinux, longestNameOnMac, name.size()}) {
        const QString known = name.left(longest);
        const auto match = AIProcessDetector::nameLooksRelevant(known)
            ? AIProcessDetector::classify(known, arguments)
            : std::nullopt;
        QCOMPARE(match ? rawValue(match->framework) : u"-"_s, framework);
        QTEST(match ? match->model : Model(), "model");
    }
}

QTEST_APPLESS_MAIN(TestCommandLines)
#include "tst_CommandLines.moc"
