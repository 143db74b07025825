#include "ui/Markdown.h"
#include "ui/Theme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

const MarkdownStyle &style()
{
    static const MarkdownStyle style = markdownStyle(11);
    return style;
}

/// The lines of a text, pieces joined.
QStringList lines(const QString &text, double width)
{
    const MarkdownLayout layout = layOut(markdownRuns(text), style(), width);
    QStringList lines(layout.lineCount);
    for (const MarkdownPiece &piece : layout.pieces)
        lines[piece.line] += piece.run.text;
    return lines;
}

double width(const QString &text)
{
    return QFontMetricsF(style().plain).horizontalAdvance(text);
}

} // namespace

class TestMarkdown : public QObject {
    Q_OBJECT

private slots:
    void splitsAtMarks_data();
    void splitsAtMarks();
    void plainTextHasNoMarks();
    void breaksAtSpaces();
    void keepsSpacesWithinALine();
    void keepsCodeOnOneLine();
    void breaksWordsWiderThanALine();
    void staysWithinTheWidth();
    void usesTheFontsOfTheTheme();
    void paintsCodeOnABackground();
};

void TestMarkdown::splitsAtMarks_data()
{
    using Runs = QList<MarkdownRun>;
    QTest::addColumn<QString>("text");
    QTest::addColumn<Runs>("expected");
    QTest::newRow("plain") << u"a b"_s << Runs{{u"a b"_s, Emphasis::none}};
    QTest::newRow("empty") << QString() << Runs{};
    QTest::newRow("bold between plain")
        << u"a **b c** d"_s
        << Runs{{u"a "_s, Emphasis::none}, {u"b c"_s, Emphasis::bold}, {u" d"_s, Emphasis::none}};
    QTest::newRow("italics") << u"we *can* read"_s
                             << Runs{{u"we "_s, Emphasis::none},
                                     {u"can"_s, Emphasis::italic},
                                     {u" read"_s, Emphasis::none}};
    QTest::newRow("marks beside each other")
        << u"**a***b*"_s << Runs{{u"a"_s, Emphasis::bold}, {u"b"_s, Emphasis::italic}};
    QTest::newRow("code") << u"`a`/`b`"_s
                          << Runs{{u"a"_s, Emphasis::code},
                                  {u"/"_s, Emphasis::none},
                                  {u"b"_s, Emphasis::code}};
    QTest::newRow("a command, which may hold marks") << u"with\n``a `b` *``\nc"_s
                                                     << Runs{{u"with\n"_s, Emphasis::none},
                                                             {u"a `b` *"_s, Emphasis::command},
                                                             {u"\nc"_s, Emphasis::none}};
    QTest::newRow("asterisks in code are no marks")
        << u"`voltage-states*-sram*`"_s << Runs{{u"voltage-states*-sram*"_s, Emphasis::code}};
    QTest::newRow("an open mark is plain") << u"2 ** 3"_s << Runs{{u"2 ** 3"_s, Emphasis::none}};
    QTest::newRow("an open backquote is plain") << u"a ` b"_s << Runs{{u"a ` b"_s, Emphasis::none}};
    QTest::newRow("marks without a text are plain") << u"``"_s << Runs{{u"``"_s, Emphasis::none}};
    QTest::newRow("line breaks stay")
        << u"a\n\n**b**"_s << Runs{{u"a\n\n"_s, Emphasis::none}, {u"b"_s, Emphasis::bold}};
    QTest::newRow("other markup is plain")
        << u"<b>x</b> [y](z)"_s << Runs{{u"<b>x</b> [y](z)"_s, Emphasis::none}};
}

void TestMarkdown::splitsAtMarks()
{
    QFETCH(QString, text);
    QTEST(markdownRuns(text), "expected");
}

void TestMarkdown::plainTextHasNoMarks()
{
    QCOMPARE(plainText(u"**CPU** and `ANE`, *not* idle"_s), u"CPU and ANE, not idle"_s);
}

void TestMarkdown::breaksAtSpaces()
{
    QCOMPARE(lines(u"one two three"_s, width(u"one two"_s) + 1),
             QStringList({u"one two"_s, u"three"_s}));
    QCOMPARE(lines(u"one\n\ntwo"_s, 300), QStringList({u"one"_s, QString(), u"two"_s}));
}

void TestMarkdown::keepsSpacesWithinALine()
{
    QCOMPARE(lines(u"one.  **two**"_s, 300), QStringList({u"one.  two"_s}));
    // Spaces at the end of a line are dropped.
    QCOMPARE(lines(u"one.  two"_s, width(u"one."_s) + 1), QStringList({u"one."_s, u"two"_s}));
}

void TestMarkdown::keepsCodeOnOneLine()
{
    const QStringList broken =
        lines(u"see the file `a b c d` (`e`)."_s, width(u"see the file a b"_s));
    QCOMPARE(broken, QStringList({u"see the file"_s, u"a b c d (e)."_s}));
}

void TestMarkdown::breaksWordsWiderThanALine()
{
    const QString word(100, u'm');
    const QStringList broken = lines(u"a "_s + word, 200);
    QVERIFY(broken.size() > 2);
    QCOMPARE(broken.join(QString()).count(u'm'), 100);
    // So is a word of several emphases.
    const QStringList mixed = lines(u"a"_s + u"**"_s + word + u"**"_s, 200);
    QCOMPARE(mixed.first(), u"a"_s);
    QCOMPARE(mixed.join(QString()), u'a' + word);
}

void TestMarkdown::staysWithinTheWidth()
{
    const QString text =
        u"Some **bold words** and `code with blanks`, again and again. "_s.repeated(9);
    const MarkdownLayout layout = layOut(markdownRuns(text), style(), 120);
    QVERIFY(layout.lineCount > 9);
    for (const MarkdownPiece &piece : layout.pieces)
        QVERIFY2(piece.x + piece.width <= 120, qPrintable(piece.run.text));
}

void TestMarkdown::usesTheFontsOfTheTheme()
{
    QCOMPARE(style().font(Emphasis::none), Theme::systemFont(11));
    QCOMPARE(style().font(Emphasis::bold).weight(), QFont::DemiBold);
    QVERIFY(style().font(Emphasis::italic).italic());
    QCOMPARE(style().font(Emphasis::code).family(), Theme::monospacedFont(11).family());
    QCOMPARE(style().font(Emphasis::code).pixelSize(), 10);
    QCOMPARE(style().font(Emphasis::command).pixelSize(), 9);
}

void TestMarkdown::paintsCodeOnABackground()
{
    MarkdownStyle lines = style();
    lines.lineHeight = 16;
    lines.codeBox = {2, 12};
    lines.baseline = 11.5;
    const MarkdownLayout layout = layOut(markdownRuns(u"`mmmm`\nmmmm"_s), lines, 200);
    QImage picture(100, 40, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    paintMarkdown(painter, {10, 4}, layout, lines, Qt::red);
    painter.end();

    const auto alpha = [&](int x, int y) { return picture.pixelColor(x, y).alpha(); };
    QCOMPARE(alpha(14, 5), 0);
    QVERIFY2(alpha(14, 6) > 0, "the background begins two points below the top of the line");
    QVERIFY(alpha(14, 17) > 0);
    QCOMPARE(alpha(14, 18), 0);
    bool isRed = false;
    for (int x = 10; x < 60; ++x) {
        const QColor color = picture.pixelColor(x, 29);
        isRed = isRed || (color.red() > 200 && color.green() < 20 && color.alpha() > 100);
    }
    QVERIFY2(isRed, "plain text has the given colour");
}

QTEST_MAIN(TestMarkdown)
#include "tst_Markdown.moc"
