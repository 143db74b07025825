#include "memory/MemorySampler.h"
#include "models/GGUFText.h"
#include "models/ModelTree.h"
#include "processes/LiveProcess.h"
#include "support/DrivenProgram.h"
#include "tray/TrayPicture.h"
#include "ui/MetricText.h"
#include "ui/Theme.h"

#include <QFile>
#include <QPainter>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <algorithm>
#include <set>
#include <tuple>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

using Object = DrivenProgram::Object;

constexpr int itemSize = 22;
constexpr auto dashboardTitle = "Corvane"_L1;

bool differs(QRgb one, QRgb other)
{
    constexpr int least = 12; // The border of an item's plate may blend into the bar.
    return std::abs(qRed(one) - qRed(other)) > least
        || std::abs(qGreen(one) - qGreen(other)) > least
        || std::abs(qBlue(one) - qBlue(other)) > least;
}

/// The next range of adjacent columns, from `first` on, that are not only background.
std::pair<int, int> nextShape(const QImage &picture, QRgb ground, int first)
{
    const auto isEmpty = [&](int x) {
        for (int y = 2; y < picture.height() - 2; ++y) {
            if (differs(picture.pixel(x, y), ground))
                return false;
        }
        return true;
    };
    int left = first;
    while (left < picture.width() && isEmpty(left))
        ++left;
    int right = left;
    while (right < picture.width() && !isEmpty(right))
        ++right;
    return {left, right};
}

/// The square shapes on a bar, from left to right, scaled to one size because trays scale the
/// pictures.
QList<QImage> itemsOn(const QImage &bar)
{
    const QRgb ground = bar.pixel(1, bar.height() / 2);
    const QTransform turned = QTransform().rotate(90);
    QList<QImage> items;
    for (auto [left, right] = nextShape(bar, ground, 0); left < bar.width();
         std::tie(left, right) = nextShape(bar, ground, right)) {
        const QImage strip = bar.copy(left, 0, right - left, bar.height());
        // After the rotation its lowest row is the first column.
        const auto [bottom, top] = nextShape(strip.transformed(turned), ground, 2);
        const int height = top - bottom;
        if (strip.width() >= 16 && std::abs(strip.width() - height) <= 1) {
            items.append(
                strip.copy(0, strip.height() - top, strip.width(), height)
                    .scaled(itemSize, itemSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        }
    }
    return items;
}

/// The item as it looks on a bar of this colour.
QImage itemOn(QRgb ground, const QImage &picture)
{
    QImage bar(4 * itemSize, barHeight, QImage::Format_RGB32);
    bar.fill(ground);
    QPainter(&bar).drawImage(itemSize, (barHeight - picture.height()) / 2, picture);
    return itemsOn(bar).value(0);
}

/// Mean difference over all channels, 0…255.
double difference(const QImage &one, const QImage &other)
{
    int sum = 0;
    for (int y = 0; y < itemSize; ++y) {
        for (int x = 0; x < itemSize; ++x) {
            const QColor here = one.pixelColor(x, y);
            const QColor there = other.pixelColor(x, y);
            sum += std::abs(here.red() - there.red()) + std::abs(here.green() - there.green())
                + std::abs(here.blue() - there.blue());
        }
    }
    return sum / (3.0 * itemSize * itemSize);
}

/// One of the label's numbers with its possible values; several where the panel's text is too
/// coarse to decide.
struct Number {
    LabelKind kind;
    std::set<int> values;

    friend bool operator==(const Number &, const Number &) = default;
};

/// From left to right.
using Numbers = std::vector<Number>;

QColor colorOf(LabelKind kind)
{
    switch (kind) {
    case LabelKind::memory:
        return Theme::memory;
    case LabelKind::vram:
    case LabelKind::gpu:
        return Theme::gpu;
    case LabelKind::power:
        return Theme::power;
    case LabelKind::cpu:
        break;
    }
    return Theme::cpu;
}

/// The picture that the program paints for one of the label's numbers.
QImage rendered(LabelKind kind, const LabelPosition &position, int value)
{
    LabelNumber number = loadNumber(kind, value, colorOf(kind));
    if (kind == LabelKind::power)
        number.text += u'W';
    return trayPicture(number, position, itemSize);
}

/// The number up to `highest` whose picture is most similar to the item on the screen; absent if
/// none is similar.
std::optional<int> readNumber(const QImage &item, LabelKind kind, const LabelPosition &position,
                              int highest, QRgb ground)
{
    // Scaling explains this much where the text fills the square, as "0W" does; there another digit
    // differs by 13 and more.
    constexpr double most = 10;
    std::optional<int> best;
    double least = most;
    for (int value = 0; value <= highest; ++value) {
        const double here = difference(item, itemOn(ground, rendered(kind, position, value)));
        if (here < least) {
            least = here;
            best = value;
        }
    }
    return best;
}

double number(const QRegularExpressionMatch &match, int group)
{
    const double unit = match.captured(group + 1) == "GB"_L1 ? 1024 : 1;
    return match.captured(group).toDouble() * unit;
}

/// The label truncates a load that the panel rounds.
std::set<int> truncated(double rounded)
{
    const int shown = qRound(rounded);
    return shown == 0 ? std::set{0} : std::set{shown - 1, shown};
}

/// The share of the first byte count of a row in the second.
std::set<int> percents(const QRegularExpressionMatch &row)
{
    constexpr double coarseness = 6; // Half a hundredth of a gigabyte, and a margin for the total.
    const double used = number(row, 1);
    const double total = number(row, 3);
    const auto percent = [total](double bytes) { return static_cast<int>(bytes / total * 100); };
    return {percent(used - coarseness), percent(used + coarseness)};
}

/// The windows of this process that a taskbar lists.
QStringList taskbarEntries(qint64 process)
{
    QStringList entries;
    const QString list = outputOf(u"xprop"_s, {u"-root"_s, u"_NET_CLIENT_LIST"_s});
    static const QRegularExpression id(u"0x[0-9a-f]+"_s);
    for (const auto &match : id.globalMatch(list)) {
        const QString owner = outputOf(u"xprop"_s, {u"-id"_s, match.captured(), u"_NET_WM_PID"_s});
        if (owner.trimmed().endsWith(u"= %1"_s.arg(process)))
            entries.append(match.captured());
    }
    return entries;
}

/// The window class by which desktops match windows to the installed program.
QString classOfTheDesktopEntry()
{
    QFile entry(QStringLiteral(CORVANE_DESKTOP_ENTRY));
    if (!entry.open(QIODevice::ReadOnly))
        return {};
    static const QRegularExpression line(u"^StartupWMClass=(.+)$"_s,
                                         QRegularExpression::MultilineOption);
    return line.match(QString::fromUtf8(entry.readAll())).captured(1);
}

} // namespace

/// The real program on a desktop with a panel, driven by pointer and keyboard and read through the
/// accessibility bus. Each step continues from the one before.
class TestDesktop : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void showsALabelInTheTray();
    void aClickOpensThePanel();
    void theLabelShowsThePanelsNumbers();
    void theLabelFollowsTheValues();
    void thePanelsButtonOpensTheDashboard();
    void theDashboardShowsProcesses();
    void theDashboardNamesTheModelsOfRunners();
    void closingTheDashboardKeepsTheLabel();
    void anotherStartOpensTheDashboard();
    void keysOpenTheAboutPanel();
    void keysOpenTheSettings();
    void theSwitchCreatesTheLoginEntry();
    void reportsNoQuestionForAPartThatHasGone();
    void quits();

private:
    std::optional<Numbers> numbersInPanel();
    bool labelShowsThePanelsNumbers();
    void openPanel();
    void clickOn(const std::optional<Object> &object);

    DrivenProgram m_program;
    qint64 m_process = 0;
    QByteArray m_ballast; ///< Memory in use, to change the label's number.
    int m_memory = -1;    ///< The label's last memory number.
    bool m_hasFailed = false;
};

void TestDesktop::initTestCase()
{
    QVERIFY(m_program.start());
    m_process = m_program.run().id();
}

void TestDesktop::init()
{
    if (m_hasFailed)
        QSKIP("An earlier step has failed");
}

void TestDesktop::cleanup()
{
    if (!QTest::currentTestFailed() || m_hasFailed)
        return;
    m_hasFailed = true;
    qInfo().noquote() << m_program.failureReport();
}

std::optional<Numbers> TestDesktop::numbersInPanel()
{
    const auto window = m_program.panel();
    if (!window)
        return std::nullopt;
    QString text;
    for (const Object &row : m_program.reader().children(*window)) {
        for (const Object &label : m_program.reader().children(row))
            text += m_program.reader().name(label) + u'\n';
    }
    static const QRegularExpression memory(
        u"Memory: ([0-9.]+) ([MG]B) / ([0-9.]+) ([MG]B), [0-9]+ %"_s);
    static const QRegularExpression vram(u"VRAM: ([0-9.]+) ([MG]B) / ([0-9.]+) ([MG]B), "_s);
    static const QRegularExpression gpu(u"\\nGPU: ([0-9]+) %"_s);
    static const QRegularExpression cpu(u"\\nCPU: ([0-9]+) %"_s);
    static const QRegularExpression power(u": ([0-9.]+) W "_s);
    const auto usage = memory.match(text);
    const auto load = cpu.match(text);
    if (!usage.hasMatch() || !load.hasMatch())
        return std::nullopt;
    Numbers numbers{{LabelKind::memory, percents(usage)}};
    if (const auto cards = vram.match(text); cards.hasMatch())
        numbers.push_back({LabelKind::vram, percents(cards)});
    if (const auto gpus = gpu.match(text); gpus.hasMatch())
        numbers.push_back({LabelKind::gpu, truncated(gpus.captured(1).toDouble())});
    if (const auto watts = power.match(text); watts.hasMatch()) {
        const double sum = watts.captured(1).toDouble();
        numbers.push_back(
            {LabelKind::power, {qRound(sum - 0.05), qRound(sum), qRound(sum + 0.05)}});
    } else {
        numbers.push_back({LabelKind::cpu, truncated(load.captured(1).toDouble())});
    }
    return numbers;
}

bool TestDesktop::labelShowsThePanelsNumbers()
{
    const auto expectedNumbers = numbersInPanel();
    const QImage picture = bar();
    if (!expectedNumbers || numbersInPanel() != expectedNumbers)
        return false; // The values changed in between.
    const QRgb ground = picture.pixel(1, barHeight / 2);
    const QList<QImage> items = itemsOn(picture);
    if (std::cmp_not_equal(items.size(), expectedNumbers->size()))
        return false;
    for (std::size_t index = 0; index < expectedNumbers->size(); ++index) {
        const auto &[kind, expected] = expectedNumbers->at(index);
        const LabelPosition position{index, expectedNumbers->size()};
        const int highest = std::max(100, 2 * *expected.rbegin()); // Watts may be more.
        const auto shown =
            readNumber(items[static_cast<qsizetype>(index)], kind, position, highest, ground);
        if (!shown || !expected.contains(*shown))
            return false;
        if (index == 0)
            m_memory = *shown;
    }
    return true;
}

void TestDesktop::openPanel()
{
    std::optional<QPoint> label;
    WAIT_FOR((label = m_program.label()));
    clickAt(*label);
    WAIT_FOR(m_program.panel());
}

void TestDesktop::clickOn(const std::optional<Object> &object)
{
    QVERIFY(object);
    clickAt(m_program.reader().place(*object).center());
}

void TestDesktop::showsALabelInTheTray()
{
    WAIT_FOR(m_program.label());
    QVERIFY(taskbarEntries(m_process).isEmpty());
}

void TestDesktop::aClickOpensThePanel()
{
    openPanel();
    for (const auto &row : {u"Memory: "_s, u"CPU: "_s, u"Swap: "_s}) // As on every machine.
        QVERIFY2(m_program.find(*m_program.panel(), u"label"_s, row), qPrintable(row));
}

void TestDesktop::theLabelShowsThePanelsNumbers()
{
    WAIT_FOR(labelShowsThePanelsNumbers());
}

void TestDesktop::theLabelFollowsTheValues()
{
    const int before = m_memory;
    const quint64 total = MemorySampler::sample().total;
    m_ballast.fill('b', static_cast<qsizetype>(total / 64)); // More than one per cent.
    WAIT_FOR(labelShowsThePanelsNumbers() && m_memory != before);
}

void TestDesktop::thePanelsButtonOpensTheDashboard()
{
    clickOn(m_program.find(*m_program.panel(), u"push button"_s, u"Open Window"_s));
    WAIT_FOR(m_program.isDashboardVisible());
    WAIT_FOR(activeWindow() == dashboardTitle);
    QVERIFY(!m_program.panel());
    const QStringList entries = taskbarEntries(m_process);
    QCOMPARE(entries.size(), 1);
    const QString windowClass = outputOf(u"xprop"_s, {u"-id"_s, entries.first(), u"WM_CLASS"_s});
    QVERIFY2(windowClass.trimmed().endsWith(u", \"%1\""_s.arg(classOfTheDesktopEntry())),
             qPrintable(windowClass));
}

void TestDesktop::theDashboardShowsProcesses()
{
    WAIT_FOR(m_program.find(u"label"_s, u"tst_Desktop: "_s));
}

/// Real processes under the names of runners, with stores and files as their programs write them.
void TestDesktop::theDashboardNamesTheModelsOfRunners()
{
    constexpr int mebibytes = 208;
    const std::string library = "registry.ollama.ai/library/";
    const ModelTree tree;
    const std::string header = GGUFText()
                                   .text("general.name", "Qwen3 8B")
                                   .u32("qwen3.context_length", 40960)
                                   .u32("general.file_type", 15)
                                   .bytes();
    tree.writeManifest(library + "qwen3/8b", ModelTree::manifest('1'));
    tree.writeBlob('1', header);
    tree.writeManifest(library + "gemma3/4b", ModelTree::manifest('2'), "manifests-v2");
    tree.write("model.gguf", header + std::string(8192, 'x'));
    const QString file = QString::fromStdString(tree.root() + "/model.gguf");
    const auto blob = [&tree](char digit) { return QString::fromStdString(tree.blob(digit)); };

    LiveProcess first(u"ollama"_s, {u"runner"_s, u"--model"_s, blob('1')}, mebibytes);
    LiveProcess newer(u"llama-server"_s, {u"--model"_s, blob('2')}, mebibytes);
    LiveProcess byHeader(u"llama-cli"_s, {u"-m"_s, file}, mebibytes);
    LiveProcess byMapping(u"llmster"_s, {}, mebibytes, file);
    for (LiveProcess *process : {&first, &newer, &byHeader, &byMapping})
        QVERIFY(process->isReady()); // Before the event loop takes what they write.
    struct Row {
        LiveProcess &process;
        QString name;
        QString model;
    };
    for (const Row &expected : {Row{first, u"Ollama, ollama"_s, u"qwen3:8b, Q4_K_M"_s},
                                Row{newer, u"Ollama, llama-server"_s, u"gemma3:4b"_s},
                                Row{byHeader, u"llama.cpp, llama-cli"_s, u"Qwen3 8B, Q4_K_M"_s},
                                Row{byMapping, u"LM Studio, llmster"_s, u"Qwen3 8B, Q4_K_M"_s}}) {
        const auto size = [](const QString &text) {
            return std::abs(text.toDouble() - mebibytes) < 8; // With what any process has.
        };
        static const QRegularExpression columns(u"^(.*): (.*), ([0-9.]+) MB, pid ([0-9]+)$"_s);
        const auto isShown = [&](const Object &object) {
            const auto row = columns.match(m_program.reader().name(object));
            return row.captured(1) == expected.name && row.captured(2) == expected.model
                && size(row.captured(3)) && row.captured(4).toLongLong() == expected.process.pid();
        };
        WAIT_FOR(m_program.findAny(isShown));
    }
}

void TestDesktop::closingTheDashboardKeepsTheLabel()
{
    press(u"alt+F4"_s);
    WAIT_FOR(taskbarEntries(m_process).isEmpty());
    QVERIFY(m_program.run().isRunning());
    WAIT_FOR(m_program.label()); // A bar that changes a picture shows none for a moment.
}

void TestDesktop::anotherStartOpensTheDashboard()
{
    ProgramRun another(QProcessEnvironment::systemEnvironment());
    QCOMPARE(another.exitStatus(), 0);
    QCOMPARE(another.errors(), QByteArray());
    WAIT_FOR(m_program.isDashboardVisible());
    WAIT_FOR(activeWindow() == dashboardTitle);
    QCOMPARE(taskbarEntries(m_process).size(), 1);
}

void TestDesktop::keysOpenTheAboutPanel()
{
    press(u"F1"_s);
    WAIT_FOR(activeWindow() == "About Corvane"_L1);
    WAIT_FOR(m_program.find(u"label"_s, u"Version "_s));
    press(u"Escape"_s);
    WAIT_FOR(activeWindow() == dashboardTitle);
}

void TestDesktop::keysOpenTheSettings()
{
    press(u"ctrl+comma"_s);
    WAIT_FOR(activeWindow() == "Corvane Settings"_L1);
    WAIT_FOR(m_program.find(u"check box"_s, u"Launch Corvane at login"_s));
}

void TestDesktop::theSwitchCreatesTheLoginEntry()
{
    const QString entry = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u"/autostart/"_s + QStringLiteral(CORVANE_IDENTIFIER) + u".desktop"_s;
    const auto loginSwitch = m_program.find(u"check box"_s, u"Launch Corvane at login"_s);
    QVERIFY(!m_program.reader().isChecked(*loginSwitch));
    QVERIFY(!QFile::exists(entry));
    clickOn(loginSwitch);
    WAIT_FOR(m_program.reader().isChecked(*loginSwitch));
    QFile file(entry);
    QVERIFY(file.open(QFile::ReadOnly));
    QVERIFY(QString::fromUtf8(file.readAll()).contains(programFile()));
    clickOn(loginSwitch);
    WAIT_FOR(!m_program.reader().isChecked(*loginSwitch));
    QVERIFY(!QFile::exists(entry));
    press(u"Escape"_s);
    WAIT_FOR(activeWindow() == dashboardTitle);
}

/// Seen in the errors at the end.
void TestDesktop::reportsNoQuestionForAPartThatHasGone()
{
    const auto program = m_program.reader().program(u"Corvane"_s);
    QVERIFY(program);
    const Object gone = {program->program, u"/org/a11y/atspi/accessible/2147400000"_s};
    QCOMPARE(m_program.reader().name(gone), QString());
}

void TestDesktop::quits()
{
    openPanel();
    clickOn(m_program.find(*m_program.panel(), u"push button"_s, u"Quit"_s));
    QCOMPARE(m_program.run().exitStatus(), 0);
    QCOMPARE(m_program.run().errors(), QByteArray());
}

QTEST_MAIN(TestDesktop)
#include "tst_Desktop.moc"
