#include "models/OllamaManifest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>

namespace corvane {

namespace {

constexpr std::string_view modelLayer = "application/vnd.ollama.image.model";

/// Receives a manifest's values one by one as the parser reads them. A function that returns false
/// ends the parse.
class ManifestReader : public nlohmann::json_sax<nlohmann::json> {
public:
    OllamaManifest take() { return std::move(m_manifest); }

    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool binary(binary_t &) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t &) override { return true; }

    bool key(string_t &name) override
    {
        if (m_depth == 1)
            m_list = name == "layers" ? List::layers
                : name == "manifests" ? List::manifests
                                      : List::other;
        else if (m_depth == itemDepth)
            m_field = name == "mediaType" ? Field::mediaType
                : name == "digest"        ? Field::digest
                                          : Field::other;
        return true;
    }

    bool string(string_t &text) override
    {
        if (m_depth == itemDepth && m_list != List::other) {
            if (m_field == Field::mediaType)
                m_isModel = text == modelLayer;
            else if (m_field == Field::digest)
                m_digest = digestDigits(text);
        }
        return true;
    }

    bool start_object(std::size_t) override
    {
        m_isModel = false;
        m_digest.reset();
        m_field = Field::other;
        return enter();
    }

    bool end_object() override
    {
        if (m_depth == itemDepth && m_digest) {
            if (m_list == List::layers && m_isModel)
                add(m_manifest.models);
            else if (m_list == List::manifests)
                add(m_manifest.manifests);
        }
        --m_depth;
        return true;
    }

    bool start_array(std::size_t) override { return enter(); }

    bool end_array() override
    {
        --m_depth;
        return true;
    }

    bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &) override
    {
        return false;
    }

private:
    enum class List : std::uint8_t { other, layers, manifests };
    enum class Field : std::uint8_t { other, mediaType, digest };

    static constexpr int itemDepth = 3; ///< Of an object in a list of the outermost object.
    static constexpr int deepest = 32;

    bool enter() { return ++m_depth <= deepest; }

    void add(std::vector<std::string> &digests)
    {
        if (digests.size() < mostDigests)
            digests.push_back(*m_digest);
        m_digest.reset();
    }

    OllamaManifest m_manifest;
    int m_depth = 0;
    List m_list = List::other;
    Field m_field = Field::other;
    bool m_isModel = false;                   ///< Of the item that is being read.
    std::optional<std::string> m_digest = {}; ///< The same.
};

} // namespace

std::optional<OllamaManifest> parseOllamaManifest(std::string_view json)
{
    ManifestReader reader;
    if (!nlohmann::json::sax_parse(json.begin(), json.end(), &reader))
        return std::nullopt;
    return reader.take();
}

std::optional<std::string> digestDigits(std::string_view digest)
{
    constexpr std::string_view algorithm = "sha256";
    constexpr std::size_t digits = 64;
    if (digest.size() != algorithm.size() + 1 + digits || !digest.starts_with(algorithm)
        || (digest[algorithm.size()] != ':' && digest[algorithm.size()] != '-'))
        return std::nullopt;
    digest.remove_prefix(algorithm.size() + 1);
    const bool isHex = std::ranges::all_of(
        digest, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
    return isHex ? std::optional(std::string(digest)) : std::nullopt;
}

std::string ollamaName(std::string_view host, std::string_view space, std::string_view model,
                       std::string_view tag)
{
    std::string name;
    const bool isRegistry = host == "registry.ollama.ai" || host == "ollama.com";
    if (!isRegistry)
        name += std::string(host) + '/';
    if (!isRegistry || space != "library")
        name += std::string(space) + '/';
    return name + std::string(model) + ':' + std::string(tag);
}

} // namespace corvane
