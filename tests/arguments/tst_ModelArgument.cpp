#include "arguments/ModelArgument.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

const QString hex64 = u"8eeb52dfb3bb9aefdf9d1ef24b3bdbcfbe82238798c4b918278320b6fcef18fe"_s;
const QString hex40 = u"9217f5db79a29953eb74d5343926648285ec7e67"_s;

} // namespace

class TestModelArgument : public QObject {
    Q_OBJECT

private slots:
    void namesModels_data();
    void namesModels();
    void knowsWhatSaysNothing_data();
    void knowsWhatSaysNothing();
    void knowsOllamasStore_data();
    void knowsOllamasStore();
};

void TestModelArgument::namesModels_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *title, const QString &text, const QString &name) {
        QTest::newRow(title) << text << name;
    };
    const QString hub = u"/home/me/.cache/huggingface/hub/"_s;
    row("a file", u"/models/q.gguf"_s, u"q.gguf"_s);
    row("a repository", u"Qwen/Qwen3-8B"_s, u"Qwen/Qwen3-8B"_s);
    row("a snapshot", hub + u"models--Qwen--Qwen3-8B/snapshots/"_s + hex40, u"Qwen/Qwen3-8B"_s);
    row("a snapshot with a slash behind it",
        hub + u"models--Qwen--Qwen3-8B/snapshots/"_s + hex40 + u'/', u"Qwen/Qwen3-8B"_s);
    row("a GGUF file of a snapshot",
        hub + u"models--Qwen--Q-GGUF/snapshots/"_s + hex40 + u"/Q-8B-Q4_K_M.gguf"_s,
        u"Qwen/Q-GGUF · Q-8B-Q4_K_M"_s);
    row("a part of a GGUF file in a folder",
        hub + u"models--a--b/snapshots/"_s + hex40 + u"/Q4/b-Q4-00001-of-00002.gguf"_s,
        u"a/b · b-Q4"_s);
    row("another file of a snapshot",
        hub + u"models--a--b/snapshots/"_s + hex40 + u"/model.safetensors"_s, u"a/b"_s);
    row("a repository without an owner", hub + u"models--gpt2/snapshots/"_s + hex40, u"gpt2"_s);
    row("a blob of a repository", hub + u"models--a--b/blobs/"_s + hex64, u"a/b"_s);
    row("a folder called models--", u"/models--/x.gguf"_s, u"x.gguf"_s);
    row("a blob", u"/m/blobs/sha256-"_s + hex64, u"blob 8eeb52dfb3bb"_s);
    row("a folder named by a digest", u"/m/snapshots/"_s + hex40, u"blob 9217f5db79a2"_s);
    row("a digest in capitals is a name", u"/m/"_s + hex40.toUpper(), hex40.toUpper());
    row("a URL", u"https://example.org/a/q.gguf?download=true"_s, u"q.gguf"_s);
    row("a URL of the hub", u"https://huggingface.co/org/repo/resolve/main/q.gguf"_s,
        u"org/repo · q"_s);
    row("a hub's own scheme", u"HF://mlc-ai/Llama-3-8B"_s, u"mlc-ai/Llama-3-8B"_s);
    row("a scheme without a path", u"hf://"_s, u""_s);
    row("nothing", u""_s, u""_s);
    row("blanks", u"  "_s, u""_s);
    row("a slash", u"/"_s, u"/"_s);
}

void TestModelArgument::namesModels()
{
    QFETCH(QString, text);
    QTEST(modelNameOf(text), "name");
}

void TestModelArgument::knowsWhatSaysNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("nothing");
    QTest::newRow("model.gguf") << u"model.gguf"_s << true;
    QTest::newRow("model.file") << u"model.file"_s << true;
    QTest::newRow("a part of model.gguf") << u"model-00001-of-00003.gguf"_s << true;
    QTest::newRow("model.safetensors") << u"model.safetensors"_s << true;
    QTest::newRow("llama.cpp's own output") << u"ggml-model-q4_0.gguf"_s << true;
    QTest::newRow("a digest") << hex64 << true;
    QTest::newRow("a blob") << u"sha256-"_s + hex64 << true;
    QTest::newRow("a blob's short name") << u"blob 8eeb52dfb3bb"_s << true;
    QTest::newRow("a model's name") << u"qwen3-8b.gguf"_s << false;
    QTest::newRow("a repository") << u"Qwen/Qwen3-8B"_s << false;
    QTest::newRow("hexadecimal but short") << u"deadbeef"_s << false;
    QTest::newRow("nothing at all") << u""_s << false;
}

void TestModelArgument::knowsWhatSaysNothing()
{
    QFETCH(QString, name);
    QTEST(saysNothing(name), "nothing");
}

void TestModelArgument::knowsOllamasStore_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("store");
    QTest::newRow("a user's") << u"/home/me/.ollama/models/blobs/sha256-"_s + hex64
                              << u"/home/me/.ollama/models"_s;
    QTest::newRow("a short digest") << u"/m/blobs/sha256-8eeb"_s << u""_s;
    QTest::newRow("something behind the digest")
        << u"/m/blobs/sha256-"_s + hex64 + u"/x"_s << u""_s;
    QTest::newRow("another folder") << u"/m/sha256-"_s + hex64 << u""_s;
}

void TestModelArgument::knowsOllamasStore()
{
    QFETCH(QString, path);
    QFETCH(QString, store);
    const auto blob = ollamaBlob(path);
    QCOMPARE(blob ? blob->store : QString(), store);
    if (blob)
        QCOMPARE(blob->digest, hex64);
}

QTEST_APPLESS_MAIN(TestModelArgument)
#include "tst_ModelArgument.moc"
