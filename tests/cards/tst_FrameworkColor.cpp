#include "cards/FrameworkColor.h"
#include "ui/Theme.h"

#include <QTest>

#include <set>

using namespace corvane;

class TestFrameworkColor : public QObject {
    Q_OBJECT

private slots:
    void hasAColorForEach_data();
    void hasAColorForEach();
    void givesEachItsOwn();
};

void TestFrameworkColor::hasAColorForEach_data()
{
    QTest::addColumn<AIFramework>("framework");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("Ollama") << AIFramework::ollama << QColor::fromRgbF(0.36F, 0.78F, 0.95F);
    QTest::newRow("MLX") << AIFramework::mlx << QColor::fromRgbF(1.0F, 0.62F, 0.78F);
    QTest::newRow("llama.cpp") << AIFramework::llamaCpp << QColor::fromRgbF(0.95F, 0.65F, 0.3F);
    QTest::newRow("LM Studio") << AIFramework::lmStudio << QColor::fromRgbF(0.55F, 0.85F, 0.5F);
    QTest::newRow("KoboldCpp") << AIFramework::koboldCpp << QColor::fromRgbF(0.85F, 0.55F, 0.95F);
    QTest::newRow("whisper.cpp") << AIFramework::whisperCpp
                                 << QColor::fromRgbF(0.75F, 0.78F, 0.85F);
    QTest::newRow("vLLM") << AIFramework::vllm << QColor::fromRgbF(1.0F, 0.45F, 0.45F);
    QTest::newRow("ComfyUI") << AIFramework::comfyUI << QColor::fromRgbF(0.5F, 0.6F, 1.0F);
    QTest::newRow("SD WebUI") << AIFramework::sdWebUI << QColor::fromRgbF(1.0F, 0.85F, 0.4F);
    QTest::newRow("Transformers") << AIFramework::transformers
                                  << QColor::fromRgbF(0.95F, 0.55F, 0.85F);
    QTest::newRow("generic is as explanatory text") << AIFramework::generic << Theme::textSecondary;
}

void TestFrameworkColor::hasAColorForEach()
{
    QFETCH(AIFramework, framework);
    QTEST(frameworkColor(framework), "expected");
}

void TestFrameworkColor::givesEachItsOwn()
{
    std::set<QRgb> colors;
    for (const AIFramework framework : allAIFrameworks)
        colors.insert(frameworkColor(framework).rgba());
    QCOMPARE(colors.size(), allAIFrameworks.size());
}

QTEST_APPLESS_MAIN(TestFrameworkColor)
#include "tst_FrameworkColor.moc"
