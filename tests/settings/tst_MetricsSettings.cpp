#include "settings/MetricsSettings.h"

#include "controls/PanelButton.h"
#include "controls/Switch.h"
#include "figures/MetricsFile.h"
#include "sampler/SystemSampler.h"
#include "settings/SettingsNote.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// The page, with a user who chooses `choice`.
struct Page {
    Page()
    {
        settings.setMetricsFolder({});
        settings.setWritesMetrics(false);
        page.askForFolder = [this](const QString &first) {
            asked.append(first);
            return choice;
        };
        page.usualFolder.clear();
        page.resize(520, 190);
        page.show();
    }

    Switch &toggle() const { return *page.findChild<Switch *>(); }
    QString folder() const { return page.accessibleTexts().back().value; }

    /// The note that is visible.
    QString note() const
    {
        for (const SettingsNote *note : page.findChildren<SettingsNote *>()) {
            if (note->isVisible())
                return note->accessibleTexts().front().value;
        }
        return {};
    }

    AppSettings settings;
    SystemSampler sampler{settings,
                          {.memory = [] { return MemorySnapshot{}; }, .chip = {}, .survey = {}},
                          keepsNoHistory};
    MetricsFile metrics{sampler, {}};
    MetricsSettings page{settings, metrics, nullptr};
    QString choice = {};
    QStringList asked = {};
};

} // namespace

class TestMetricsSettings : public QObject {
    Q_OBJECT

private slots:
    void isOffAtFirst();
    void asksForAFolderWhereThereIsNone();
    void takesTheCollectorsFolder();
    void staysOffWithoutAFolder();
    void keepsTheFolderWhenItIsSwitchedOff();
    void anotherFolderCanBeChosen();
    void tellsThatModelsAreNamed();
    void showsTheFailureInsteadOfTheNote();
    void fitsIntoItsPlace();
};

void TestMetricsSettings::isOffAtFirst()
{
    const Page page;
    QVERIFY(!page.toggle().isChecked());
    QCOMPARE(page.toggle().text(), u"Write metrics for Prometheus"_s);
    QCOMPARE(page.folder(), u"No folder"_s);
}

void TestMetricsSettings::asksForAFolderWhereThereIsNone()
{
    Page page;
    page.choice = u"/somewhere"_s;
    page.toggle().click();
    QCOMPARE(page.asked.size(), 1);
    QVERIFY(page.toggle().isChecked());
    QVERIFY(page.settings.writesMetrics());
    QCOMPARE(page.settings.metricsFolder(), u"/somewhere"_s);
    QCOMPARE(page.folder(), u"/somewhere"_s);
}

void TestMetricsSettings::takesTheCollectorsFolder()
{
    Page page;
    page.page.usualFolder = u"/collector"_s;
    page.toggle().click();
    QVERIFY(page.asked.isEmpty());
    QVERIFY(page.settings.writesMetrics());
    QCOMPARE(page.folder(), u"/collector"_s);
}

void TestMetricsSettings::staysOffWithoutAFolder()
{
    Page page;
    page.toggle().click();
    QCOMPARE(page.asked.size(), 1);
    QVERIFY(!page.toggle().isChecked());
    QVERIFY(!page.settings.writesMetrics());
}

void TestMetricsSettings::keepsTheFolderWhenItIsSwitchedOff()
{
    Page page;
    page.settings.setMetricsFolder(u"/somewhere"_s);
    page.toggle().click();
    QVERIFY(page.settings.writesMetrics());
    page.toggle().click();
    QVERIFY(!page.settings.writesMetrics());
    QCOMPARE(page.folder(), u"/somewhere"_s);
    QVERIFY(page.asked.isEmpty());
}

void TestMetricsSettings::anotherFolderCanBeChosen()
{
    Page page;
    page.settings.setMetricsFolder(u"/one"_s);
    page.choice = u"/two"_s;
    page.page.findChild<PanelButton *>()->click();
    QCOMPARE(page.asked, QStringList(u"/one"_s));
    QCOMPARE(page.folder(), u"/two"_s);
    page.choice.clear();
    page.page.findChild<PanelButton *>()->click();
    QCOMPARE(page.folder(), u"/two"_s);
}

void TestMetricsSettings::tellsThatModelsAreNamed()
{
    const Page page;
    QVERIFY2(page.note().endsWith(u"The names of models are in it."_s), qPrintable(page.note()));
}

void TestMetricsSettings::showsTheFailureInsteadOfTheNote()
{
    const QTemporaryDir folder;
    Page page;
    page.metrics.setFolder(folder.filePath(u"missing"_s));
    QTRY_VERIFY(page.note().contains(u"cannot be written"_s));
    page.metrics.setFolder({});
    QVERIFY(page.note().startsWith(u"Writes "_s));
}

/// Below the general page's own switch and both of its notes.
void TestMetricsSettings::fitsIntoItsPlace()
{
    const Page page;
    for (const SettingsNote *note : page.page.findChildren<SettingsNote *>())
        QVERIFY(note->isHidden() || note->geometry().bottom() < 180);
}

QTEST_MAIN(TestMetricsSettings)
#include "tst_MetricsSettings.moc"
