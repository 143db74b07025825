#include "settings/SettingsNote.h"
#include "support/Rendering.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

QStringList accessibleValues(const SettingsNote &note)
{
    QStringList values;
    for (const AccessibleText &text : note.accessibleTexts())
        values.append(text.value);
    return values;
}

} // namespace

class TestSettingsNote : public QObject {
    Q_OBJECT

private slots:
    void isAsHighAsItsLines();
    void isHiddenWhileEmpty();
    void showsPlainTextWithoutMarkup_data();
    void showsPlainTextWithoutMarkup();
    void anOutcomeHasItsColor();
};

void TestSettingsNote::isAsHighAsItsLines()
{
    QWidget page;
    SettingsNote *note = SettingsNote::explanation(&page);
    note->showMarkdown(u"One line"_s);
    QCOMPARE(note->heightForWidth(400), 14);
    note->showMarkdown(u"One line\nand `another`"_s);
    QCOMPARE(note->heightForWidth(400), 28);
    QVERIFY(note->heightForWidth(40) > 28);
    QCOMPARE(accessibleValues(*note), QStringList{u"One line\nand another"_s});

    SettingsNote *outcome = SettingsNote::outcome(Theme::critical, &page);
    outcome->showPlain(u"One line"_s);
    QCOMPARE(outcome->heightForWidth(400), 15);
}

void TestSettingsNote::isHiddenWhileEmpty()
{
    QWidget page;
    SettingsNote *note = SettingsNote::outcome(Theme::critical, &page);
    page.show();
    QVERIFY(!note->isVisible());
    note->showPlain(u"It failed"_s);
    QVERIFY(note->isVisible());
    note->showPlain({});
    QVERIFY(!note->isVisible());
    QVERIFY(accessibleValues(*note).isEmpty());
}

void TestSettingsNote::showsPlainTextWithoutMarkup_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("markup is text") << u"**a** `b` *c*"_s << u"**a** `b` *c*"_s;
    QTest::newRow("a line break is replaced") << u"a\nb"_s << u"a\uFFFDb"_s;
}

void TestSettingsNote::showsPlainTextWithoutMarkup()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QWidget page;
    SettingsNote *note = SettingsNote::outcome(Theme::critical, &page);
    note->showPlain(text);
    QCOMPARE(accessibleValues(*note), QStringList{shown});
}

void TestSettingsNote::anOutcomeHasItsColor()
{
    QWidget page;
    SettingsNote *note = SettingsNote::outcome(Theme::critical, &page);
    note->showPlain(u"MMMM"_s);
    note->resize(100, 15);
    const QImage picture = rendered(*note, 2);
    int painted = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            painted += isClose(picture.pixelColor(x, y), Theme::critical) ? 1 : 0;
    }
    QVERIFY(painted > 0);
}

QTEST_MAIN(TestSettingsNote)
#include "tst_SettingsNote.moc"
