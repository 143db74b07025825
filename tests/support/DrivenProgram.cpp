#include "support/DrivenProgram.h"

#include "ui/Theme.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

namespace corvane::test {

using namespace Qt::StringLiterals;

QString outputOf(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.start(tool, arguments);
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput());
}

void clickAt(const QPoint &point)
{
    outputOf(u"xdotool"_s,
             {u"mousemove"_s, QString::number(point.x()), QString::number(point.y()), u"click"_s,
              u"1"_s});
}

void press(const QString &key)
{
    outputOf(u"xdotool"_s, {u"key"_s, key});
}

QString activeWindow()
{
    return outputOf(u"xdotool"_s, {u"getactivewindow"_s, u"getwindowname"_s}).trimmed();
}

QImage bar()
{
    const QPixmap shot = QGuiApplication::primaryScreen()->grabWindow(0, 0, 0, -1, barHeight);
    return shot.toImage().convertToFormat(QImage::Format_RGB32);
}

namespace {

/// Scaling the picture of a thin digit leaves no pixel of exactly its colour.
bool isNear(const QColor &color, const QColor &wanted)
{
    constexpr int difference = 48;
    return std::abs(color.red() - wanted.red()) < difference
        && std::abs(color.green() - wanted.green()) < difference
        && std::abs(color.blue() - wanted.blue()) < difference;
}

} // namespace

bool DrivenProgram::start(const QProcessEnvironment &environment)
{
    m_run.emplace(environment);
    return m_reader.isConnected();
}

/// Nothing else on this desktop has the colour of the memory number.
std::optional<QPoint> DrivenProgram::label() const
{
    const QImage picture = bar();
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (isNear(picture.pixelColor(x, y), Theme::memory))
                return QPoint(x, y);
        }
    }
    return std::nullopt;
}

/// A pop-up is not a child of its program in the tree; it is found through the focus.
std::optional<AccessibilityBus::Object> DrivenProgram::panel() const
{
    if (!m_reader.focused())
        return std::nullopt;
    const Object window = m_reader.window(*m_reader.focused());
    return m_reader.name(window) == "Corvane panel"_L1 && m_reader.isShowing(window)
        ? std::optional(window)
        : std::nullopt;
}

std::optional<AccessibilityBus::Object> DrivenProgram::find(const Object &root, const QString &role,
                                                            const QString &nameStart) const
{
    return m_reader.find(root, [&](const Object &object) {
        return m_reader.name(object).startsWith(nameStart) && m_reader.role(object) == role
            && m_reader.isShowing(object);
    });
}

std::optional<AccessibilityBus::Object> DrivenProgram::find(const QString &role,
                                                            const QString &nameStart) const
{
    const auto program = root();
    return program ? find(*program, role, nameStart) : std::nullopt;
}

bool DrivenProgram::findAny(const AccessibilityBus::Condition &condition) const
{
    const auto program = root();
    return program && m_reader.find(*program, condition);
}

bool DrivenProgram::isDashboardVisible() const
{
    return find(u"label"_s, u"Memory used in percent: "_s).has_value();
}

QString DrivenProgram::failureReport()
{
    QGuiApplication::primaryScreen()->grabWindow(0).save(u"desktop-failed.png"_s);
    const auto program = root();
    return QString::fromUtf8(m_run->errors())
        + (program ? m_reader.description(*program, 0) : QString());
}

std::optional<AccessibilityBus::Object> DrivenProgram::root() const
{
    return m_reader.program(u"Corvane"_s);
}

} // namespace corvane::test
