#include "models/Quantisation.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

using Text = std::optional<QString>;

class TestQuantisation : public QObject {
    Q_OBJECT

private slots:
    void knowsFileTypes();
    void readsNames_data();
    void readsNames();
};

void TestQuantisation::knowsFileTypes()
{
    QCOMPARE(quantisationOfFileType(15), Text(u"Q4_K_M"_s));
    QCOMPARE(quantisationOfFileType(0), Text(u"F32"_s));
    QCOMPARE(quantisationOfFileType(38), Text(u"MXFP4"_s));
    QCOMPARE(quantisationOfFileType(4), Text());
    QCOMPARE(quantisationOfFileType(0xffffffff), Text());
}

void TestQuantisation::readsNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Text>("expected");
    const auto row = [](const QString &name, const Text &expected) {
        QTest::newRow(qPrintable(name)) << name << expected;
    };
    row(u"qwen2.5-7b.Q4_K_M.gguf"_s, u"Q4_K_M"_s);
    row(u"qwen3:8b-q8_0"_s, u"Q8_0"_s);
    row(u"org/model:Q5_K_M"_s, u"Q5_K_M"_s);
    row(u"org/repo · model-UD-Q4_K_XL"_s, u"UD-Q4_K_XL"_s);
    row(u"x-IQ4_XS.gguf"_s, u"IQ4_XS"_s);
    row(u"x-iq3_xxs.gguf"_s, u"IQ3_XXS"_s);
    row(u"ggml-model-q4_0.gguf"_s, u"Q4_0"_s);
    row(u"mlx-community/Llama-3-8B-4bit"_s, u"4-bit"_s);
    row(u"model-8-bit"_s, u"8-bit"_s);
    row(u"Qwen3-8B-AWQ"_s, u"AWQ"_s);
    row(u"llama-f16.gguf"_s, u"F16"_s);
    row(u"gpt-oss-20b-MXFP4.gguf"_s, u"MXFP4"_s);
    row(u"qwen3:8b"_s, {});
    row(u"Q4everyone"_s, {});
    row(u"IQ-test"_s, {});
    row(u"64bit"_s, {});
    row(u""_s, {});
}

void TestQuantisation::readsNames()
{
    QFETCH(QString, name);
    QTEST(quantisationInName(name), "expected");
}

QTEST_APPLESS_MAIN(TestQuantisation)
#include "tst_Quantisation.moc"
