#include "arguments/ModelArgument.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// Deliberately without ".pt".
constexpr std::array modelFileSuffixes{".gguf"_L1, ".safetensors"_L1, ".bin"_L1, ".ckpt"_L1,
                                       ".pth"_L1};

constexpr auto repositoryMark = "models--"_L1; ///< Of a folder in Hugging Face's cache.

constexpr std::array modelFlags{"--model"_L1,
                                "--model-path"_L1,
                                "--model_path"_L1,
                                "--model-id"_L1,
                                "--model_id"_L1,
                                "--ckpt"_L1,
                                "--checkpoint"_L1,
                                "--ckpt-path"_L1,
                                "--ckpt_path"_L1,
                                "--weights"_L1,
                                "--base-model"_L1,
                                "--model_name_or_path"_L1,
                                "--model-name-or-path"_L1,
                                "--pretrained_model_name_or_path"_L1,
                                "--diffusion-model"_L1};
constexpr std::array repositoryFlags{"-hf"_L1, "-hfr"_L1, "--hf-repo"_L1};
constexpr std::array repositoryFileFlags{"-hff"_L1, "--hf-file"_L1};
constexpr std::array urlFlags{"-mu"_L1, "--model-url"_L1};
constexpr std::array aliasFlags{"-a"_L1, "--alias"_L1};
constexpr std::array contextFlags{
    "--ctx-size"_L1,      "--context-length"_L1, "--context_length"_L1, "--max-model-len"_L1,
    "--max_model_len"_L1, "--contextsize"_L1,    "--num-ctx"_L1,        "--n_ctx"_L1,
    "--n-ctx"_L1,         "--ctx_size"_L1};

/// Their values are files that come on top of a model, or results.
constexpr std::array besidesFlags{
    "--lora"_L1,           "--lora-scaled"_L1, "--mmproj"_L1,      "-mm"_L1,
    "--control-vector"_L1, "-md"_L1,           "--model-draft"_L1, "--vae"_L1,
    "--clip_l"_L1,         "--clip_g"_L1,      "--t5xxl"_L1,       "--control-net"_L1,
    "--model-vocoder"_L1,  "-mv"_L1,           "--outfile"_L1,     "--spec-draft-hf"_L1,
    "--embeddings"_L1,     "--taesd"_L1};

/// Options of `ollama run` and of servers that take the next argument as their value.
constexpr std::array valuedOptions{
    "--format"_L1, "--keepalive"_L1, "--dimensions"_L1, "--width"_L1, "--height"_L1,
    "--steps"_L1,  "--seed"_L1,      "--negative"_L1,   "--host"_L1,  "--port"_L1};
constexpr std::array plainOptions{"--nowordwrap"_L1, "--verbose"_L1,      "--insecure"_L1,
                                  "--think"_L1,      "--hidethinking"_L1, "--truncate"_L1};

/// Long flags in any case, as the first rules compare them; short ones as they are. Arguments are
/// not copied for it: they may be secrets.
template <typename Flags>
bool isOneOf(const Flags &flags, QStringView argument)
{
    const auto sensitivity = argument.startsWith("--"_L1) ? Qt::CaseInsensitive : Qt::CaseSensitive;
    return std::ranges::any_of(
        flags, [&](QLatin1StringView flag) { return argument.compare(flag, sensitivity) == 0; });
}

/// The value of the first of these flags, behind it or behind its "=".
template <typename Flags>
std::optional<QString> valueOf(const QStringList &argv, const Flags &flags)
{
    for (qsizetype i = 1; i < argv.size(); ++i) {
        if (i + 1 < argv.size() && isOneOf(flags, argv[i]))
            return argv[i + 1];
        const qsizetype equals = argv[i].indexOf(u'=');
        if (equals > 0 && isOneOf(flags, QStringView(argv[i]).first(equals)))
            return argv[i].sliced(equals + 1);
    }
    return std::nullopt;
}

std::optional<QString> ambiguousModel(const QStringList &argv)
{
    for (qsizetype i = 1; i + 1 < argv.size(); ++i) {
        if (argv[i] == "-m"_L1 && (isModelFileName(argv[i + 1]) || argv[i + 1].contains(u'/')))
            return argv[i + 1];
    }
    return std::nullopt;
}

std::optional<QString> modelFile(const QStringList &argv)
{
    for (qsizetype i = 0; i < argv.size(); ++i) {
        if (isModelFileName(argv[i]) && (i == 0 || !isOneOf(besidesFlags, argv[i - 1]))
            && !argv[i].startsWith(u'-'))
            return argv[i];
    }
    return std::nullopt;
}

bool isHex(QStringView text, qsizetype digits)
{
    return text.size() == digits && std::ranges::all_of(text, [](QChar c) {
               return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
           });
}

/// The digits of a file name such as "sha256-8eeb…", "sha256:8eeb…" or of the digest alone.
std::optional<QString> digestOf(const QString &fileName)
{
    QStringView digits = fileName;
    if (fileName.startsWith("sha256-"_L1) || fileName.startsWith("sha256:"_L1))
        digits = digits.sliced(7);
    if (isHex(digits, 64) || isHex(digits, 40))
        return digits.toString();
    return std::nullopt;
}

QString shortDigest(const QString &digest)
{
    return u"blob "_s + digest.first(12);
}

/// Without ".gguf" and without the number of a part ("-00001-of-00003").
QString stemOf(const QString &fileName)
{
    static const QRegularExpression ending(u"(-\\d{5}-of-\\d{5})?\\.gguf$"_s,
                                           QRegularExpression::CaseInsensitiveOption);
    QString stem = fileName;
    return stem.remove(ending);
}

QString withFile(const QString &repository, const QString &file)
{
    return file.isEmpty() ? repository : repository + u" · "_s + file;
}

/// What stands behind the host of a page on Hugging Face: "org/name/resolve/main/file.gguf".
QString repositoryOfUrl(const QString &path)
{
    const QStringList pieces = path.split(u'/', Qt::SkipEmptyParts);
    if (pieces.size() < 2)
        return path;
    const QString &last = pieces.last();
    const bool isFile = pieces.size() > 2 && last.endsWith(".gguf"_L1, Qt::CaseInsensitive);
    return withFile(pieces[0] + u'/' + pieces[1], isFile ? stemOf(last) : QString());
}

/// The name in a URL; absent for any other text.
std::optional<QString> nameOfUrl(const QString &text)
{
    constexpr std::array hubs{"https://huggingface.co/"_L1, "hf://"_L1, "huggingface://"_L1};
    for (const auto hub : hubs) {
        if (text.startsWith(hub, Qt::CaseInsensitive))
            return repositoryOfUrl(text.sliced(hub.size()));
    }
    const qsizetype scheme = text.indexOf("://"_L1);
    if (scheme < 0)
        return std::nullopt;
    const QString path = text.sliced(scheme + 3);
    const QString withoutQuery = path.first(
        std::min(path.size(), path.indexOf(u'?') >= 0 ? path.indexOf(u'?') : path.size()));
    return shortModelName(u'/' + withoutQuery);
}

} // namespace

bool isModelFileName(const QString &name)
{
    constexpr qsizetype longestSuffix = 12; // Longer arguments are not copied: they may be secrets.
    const QString lower = name.last(std::min(name.size(), longestSuffix)).toLower();
    return std::ranges::any_of(modelFileSuffixes,
                               [&lower](auto suffix) { return lower.endsWith(suffix); });
}

QString shortModelName(const QString &path)
{
    const QString whole = path.trimmed();
    const QStringList pieces = whole.split(u'/', Qt::SkipEmptyParts);
    if (!whole.contains(u'/') || pieces.isEmpty())
        return whole;
    // A relative "owner/name" is the identifier of a model and stays whole.
    const bool identifier = pieces.size() == 2 && !whole.startsWith(u'/');
    return identifier && !isModelFileName(pieces.last()) ? whole : pieces.last();
}

std::optional<ModelArgument> modelArgument(const QStringList &argv)
{
    if (auto text = valueOf(argv, modelFlags))
        return ModelArgument{.text = *std::move(text)};
    if (auto text = valueOf(argv, repositoryFlags))
        return ModelArgument{.text = *std::move(text),
                             .file = valueOf(argv, repositoryFileFlags).value_or(QString()),
                             .isRepository = true};
    if (auto text = valueOf(argv, urlFlags))
        return ModelArgument{.text = *std::move(text)};
    if (auto text = ambiguousModel(argv))
        return ModelArgument{.text = *std::move(text)};
    if (auto text = modelFile(argv))
        return ModelArgument{.text = *std::move(text)};
    return std::nullopt;
}

std::optional<QString> aliasArgument(const QStringList &argv)
{
    return valueOf(argv, aliasFlags);
}

std::optional<QString> argumentBehind(const QStringList &arguments, QLatin1StringView command)
{
    qsizetype i = arguments.indexOf(command) + 1;
    if (i == 0)
        return std::nullopt;
    for (; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (!argument.startsWith(u'-'))
            return argument;
        if (isOneOf(valuedOptions, argument))
            ++i;
        else if (!isOneOf(plainOptions, argument) && !argument.contains(u'='))
            return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::uint64_t> contextArgument(const QStringList &argv)
{
    constexpr std::uint64_t most = 1 << 30; // A thousand times the longest of today's.
    const auto text = valueOf(argv, contextFlags);
    bool isNumber = false;
    const auto tokens = text ? text->toULongLong(&isNumber) : 0;
    // 0 means the model's own.
    if (!isNumber || tokens == 0 || tokens > most)
        return std::nullopt;
    return tokens;
}

QString modelNameOf(const QString &text)
{
    const QString whole = text.trimmed();
    if (const auto cached = cachedRepository(whole))
        return withFile(cached->repository, cached->file);
    if (auto name = nameOfUrl(whole))
        return *std::move(name);
    const QString base = shortModelName(whole);
    if (const auto digest = digestOf(base))
        return shortDigest(*digest);
    return base;
}

QString modelNameOf(const ModelArgument &argument)
{
    if (!argument.isRepository)
        return modelNameOf(argument.text);
    const QString file = argument.file.sliced(argument.file.lastIndexOf(u'/') + 1);
    return withFile(argument.text.trimmed(), stemOf(file));
}

std::optional<CachedRepository> cachedRepository(const QString &path)
{
    const QStringList pieces = path.split(u'/', Qt::SkipEmptyParts);
    const auto found = std::ranges::find_if(
        pieces, [](const QString &piece) { return piece.startsWith(repositoryMark); });
    if (found == pieces.end() || found->size() == repositoryMark.size())
        return std::nullopt;
    QString repository = found->sliced(repositoryMark.size());
    const qsizetype separator = repository.indexOf("--"_L1);
    if (separator > 0)
        repository.replace(separator, 2, u"/"_s);
    const bool hasFile = pieces.end() - found > 3 && *(found + 1) == "snapshots"_L1;
    const bool isGGUF = hasFile && pieces.last().endsWith(".gguf"_L1, Qt::CaseInsensitive);
    return CachedRepository{.repository = repository,
                            .file = isGGUF ? stemOf(pieces.last()) : QString()};
}

std::optional<OllamaBlob> ollamaBlob(const QString &path)
{
    constexpr auto mark = "/blobs/sha256-"_L1;
    const qsizetype at = path.lastIndexOf(mark);
    if (at < 0)
        return std::nullopt;
    const QString digest = path.sliced(at + mark.size());
    if (!isHex(digest, 64))
        return std::nullopt;
    return OllamaBlob{.store = path.first(at), .digest = digest};
}

bool saysNothing(const QString &fileName)
{
    constexpr std::array emptyStems{"model"_L1, "model.file"_L1, "weights"_L1, "ggml-model"_L1};
    const QString name = fileName.toLower();
    if (name.startsWith("blob "_L1) || digestOf(name))
        return true;
    const QString stem = stemOf(name);
    return isOneOf(emptyStems, stem) || stem.startsWith("ggml-model-"_L1)
        || (isModelFileName(name) && isOneOf(emptyStems, name.first(name.lastIndexOf(u'.'))));
}

} // namespace corvane
