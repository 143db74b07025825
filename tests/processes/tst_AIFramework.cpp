#include "processes/AIFramework.h"
#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"

#include <QSet>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestAIFramework : public QObject {
    Q_OBJECT

private slots:
    void isDescribed_data();
    void isDescribed();
    void listsAllCasesInOrder();
    void refusesOtherNames();
    void comparesAndHashesRowsByAllFields();
    void comparesAndHashesWorkloadsByAllFields();
};

void TestAIFramework::isDescribed_data()
{
    QTest::addColumn<int>("framework");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("icon");
    const auto row = [](const char *rawValue, AIFramework framework, const QString &name,
                        const QString &icon) {
        QTest::newRow(rawValue) << int(framework) << name << icon;
    };
    row("ollama", AIFramework::ollama, u"Ollama"_s, u"shippingbox.fill"_s);
    row("mlx", AIFramework::mlx, u"MLX"_s, u"sparkle"_s);
    row("llamaCpp", AIFramework::llamaCpp, u"llama.cpp"_s, u"cpu.fill"_s);
    row("lmStudio", AIFramework::lmStudio, u"LM Studio"_s, u"studentdesk"_s);
    row("koboldCpp", AIFramework::koboldCpp, u"KoboldCpp"_s, u"books.vertical.fill"_s);
    row("whisperCpp", AIFramework::whisperCpp, u"whisper.cpp"_s, u"waveform"_s);
    row("vllm", AIFramework::vllm, u"vLLM"_s, u"server.rack"_s);
    row("comfyUI", AIFramework::comfyUI, u"ComfyUI"_s, u"paintbrush.fill"_s);
    row("sdWebUI", AIFramework::sdWebUI, u"SD WebUI"_s, u"photo.artframe"_s);
    row("transformers", AIFramework::transformers, u"Transformers"_s, u"wand.and.stars"_s);
    row("generic", AIFramework::generic, u"ML Workload"_s, u"brain"_s);
}

void TestAIFramework::isDescribed()
{
    QFETCH(int, framework);
    const auto given = static_cast<AIFramework>(framework);
    const QString raw = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(rawValue(given), raw);
    QCOMPARE(aiFramework(raw), std::optional(given));
    QTEST(displayName(given), "name");
    QTEST(symbol(given), "icon");
}

void TestAIFramework::listsAllCasesInOrder()
{
    QCOMPARE(allAIFrameworks.size(), std::size_t(11));
    for (std::size_t i = 0; i < allAIFrameworks.size(); ++i)
        QCOMPARE(static_cast<std::size_t>(allAIFrameworks[i]), i);
}

void TestAIFramework::refusesOtherNames()
{
    QCOMPARE(aiFramework(u"Ollama"_s), std::optional<AIFramework>());
    QCOMPARE(aiFramework(u""_s), std::optional<AIFramework>());
}

void TestAIFramework::comparesAndHashesRowsByAllFields()
{
    const ProcessRow row{.id = 7, .name = u"a"_s, .memory = 9};
    const QSet<ProcessRow> others{{8, u"a"_s, 9}, {7, u"b"_s, 9}, {7, u"a"_s, 8}, row, row};
    QCOMPARE(others.size(), 4);
    QVERIFY(others.contains(ProcessRow{7, u"a"_s, 9}));
}

void TestAIFramework::comparesAndHashesWorkloadsByAllFields()
{
    const AIWorkload workload{7, 7, u"a"_s, AIFramework::mlx, u"m"_s, 9};
    QSet<AIWorkload> all{workload};
    const auto differing = [&workload](auto AIWorkload::*field, auto value) {
        AIWorkload other = workload;
        other.*field = value;
        return other;
    };
    all.insert(differing(&AIWorkload::id, 8));
    all.insert(differing(&AIWorkload::pid, 8));
    all.insert(differing(&AIWorkload::processName, u"b"_s));
    all.insert(differing(&AIWorkload::framework, AIFramework::vllm));
    all.insert(differing(&AIWorkload::model, u"n"_s));
    all.insert(differing(&AIWorkload::model, std::nullopt));
    all.insert(differing(&AIWorkload::model, u""_s));
    all.insert(differing(&AIWorkload::memory, 8));
    all.insert(workload);
    QCOMPARE(all.size(), 9);
    QVERIFY(all.contains(workload));
}

QTEST_APPLESS_MAIN(TestAIFramework)
#include "tst_AIFramework.moc"
