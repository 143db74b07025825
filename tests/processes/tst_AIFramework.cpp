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
    void comparesAndHashesRowsByAllFields();
    void comparesAndHashesWorkloadsByAllFields();
};

void TestAIFramework::isDescribed_data()
{
    QTest::addColumn<AIFramework>("framework");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("icon");
    const auto row = [](AIFramework framework, const char *raw, const char *name,
                        const char *icon) {
        QTest::newRow(raw) << framework << QString::fromLatin1(name) << QString::fromLatin1(icon);
    };
    using enum AIFramework;
    row(ollama, "ollama", "Ollama", "shippingbox.fill");
    row(mlx, "mlx", "MLX", "sparkle");
    row(llamaCpp, "llamaCpp", "llama.cpp", "cpu.fill");
    row(lmStudio, "lmStudio", "LM Studio", "studentdesk");
    row(koboldCpp, "koboldCpp", "KoboldCpp", "books.vertical.fill");
    row(whisperCpp, "whisperCpp", "whisper.cpp", "waveform");
    row(vllm, "vllm", "vLLM", "server.rack");
    row(comfyUI, "comfyUI", "ComfyUI", "paintbrush.fill");
    row(sdWebUI, "sdWebUI", "SD WebUI", "photo.artframe");
    row(transformers, "transformers", "Transformers", "wand.and.stars");
    row(generic, "generic", "ML Workload", "brain");
    row(dockerModelRunner, "dockerModelRunner", "Docker Model Runner", "shippingbox.fill");
    row(ramaLama, "ramaLama", "RamaLama", "shippingbox.fill");
    row(localAI, "localAI", "LocalAI", "server.rack");
    row(sglang, "sglang", "SGLang", "server.rack");
    row(tgi, "tgi", "TGI", "server.rack");
    row(tabbyAPI, "tabbyAPI", "TabbyAPI", "server.rack");
    row(textGenerationWebUI, "textGenerationWebUI", "text-generation-webui", "books.vertical.fill");
    row(lemonade, "lemonade", "Lemonade", "server.rack");
    row(fastFlowLM, "fastFlowLM", "FastFlowLM", "cpu.fill");
    row(foundryLocal, "foundryLocal", "Foundry Local", "server.rack");
    row(mistralRs, "mistralRs", "mistral.rs", "cpu.fill");
    row(tensorRTLLM, "tensorRTLLM", "TensorRT-LLM", "server.rack");
    row(mlcLLM, "mlcLLM", "MLC LLM", "cpu.fill");
    row(exo, "exo", "exo", "server.rack");
    row(llamafile, "llamafile", "llamafile", "cpu.fill");
    row(stableDiffusionCpp, "stableDiffusionCpp", "stable-diffusion.cpp", "paintbrush.fill");
    row(invokeAI, "invokeAI", "InvokeAI", "paintbrush.fill");
    row(gpt4All, "gpt4All", "GPT4All", "studentdesk");
    row(whisper, "whisper", "Whisper", "waveform");
}

void TestAIFramework::isDescribed()
{
    QFETCH(AIFramework, framework);
    QCOMPARE(rawValue(framework), QString::fromLatin1(QTest::currentDataTag()));
    QTEST(displayName(framework), "name");
    QTEST(symbol(framework), "icon");
}

void TestAIFramework::listsAllCasesInOrder()
{
    QCOMPARE(allAIFrameworks.size(), std::size_t(11));
    for (std::size_t i = 0; i < allAIFrameworks.size(); ++i)
        QCOMPARE(static_cast<std::size_t>(allAIFrameworks[i]), i);
    for (std::size_t i = 0; i < furtherAIFrameworks.size(); ++i)
        QCOMPARE(static_cast<std::size_t>(furtherAIFrameworks[i]), allAIFrameworks.size() + i);
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
