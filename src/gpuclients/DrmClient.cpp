#include "gpuclients/DrmClient.h"

#include "platform/KernelText.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr std::size_t mostNames = 64; ///< Of engines or regions; drivers have less than ten.

/// Cuts `prefix` off the key; false when it does not begin with it or nothing is left.
bool takePrefix(std::string_view &key, std::string_view prefix)
{
    if (!key.starts_with(prefix) || key.size() == prefix.size())
        return false;
    key.remove_prefix(prefix.size());
    return true;
}

/// "1234", "1234 KiB" (once "kB") or "1234 MiB".
std::optional<std::uint64_t> parseBytes(std::string_view text)
{
    const auto word = takeWord(text);
    const auto count = word ? parseUnsigned(*word) : std::nullopt;
    const std::string_view unit = trimmed(text);
    if (!count)
        return std::nullopt;
    if (unit.empty())
        return byteCount(*count, 1);
    if (unit == "KiB" || unit == "kB")
        return byteCount(*count, 1 << 10);
    return unit == "MiB" ? byteCount(*count, 1 << 20) : std::nullopt;
}

/// "1234 ns", or "1234" cycles.
std::optional<std::uint64_t> parseCount(std::string_view text, std::string_view unit)
{
    const auto word = takeWord(text);
    return word && trimmed(text) == unit ? parseUnsigned(*word) : std::nullopt;
}

/// "12.34%", by amdgpu until 5.18.
std::optional<double> parsePercent(std::string_view text)
{
    if (!text.ends_with('%'))
        return std::nullopt;
    text.remove_suffix(1);
    const auto percent = parseDecimal(text);
    if (!percent || !(*percent >= 0 && *percent <= 100))
        return std::nullopt;
    return *percent / 100;
}

/// Regions under the several keys that drivers have for them.
struct RankedRegion {
    DrmRegion region = {};
    int rank = 0; ///< A higher one stands in for a lower one.
};

class Reader {
public:
    std::optional<DrmClient> read(std::string_view text)
    {
        while (const auto line = takeKeyValue(text))
            readLine(line->key, line->value);
        if (m_client.address.empty())
            return std::nullopt;
        for (RankedRegion &ranked : m_regions)
            m_client.regions.push_back(std::move(ranked.region));
        return std::move(m_client);
    }

private:
    void readLine(std::string_view key, std::string_view value)
    {
        if (key == "drm-pdev" || key == "pdev")
            setOnce(m_client.address, value);
        else if (key == "drm-client-id" || key == "pasid")
            setOnce(m_client.id, value);
        else if (takePrefix(key, "drm-engine-capacity-"))
            setCapacity(key, value);
        else if (takePrefix(key, "drm-engine-"))
            setOnce(key, &DrmEngine::busy, parseCount(value, "ns"));
        else if (takePrefix(key, "drm-total-cycles-"))
            setOnce(key, &DrmEngine::total, parseCount(value, ""));
        else if (takePrefix(key, "drm-cycles-"))
            setOnce(key, &DrmEngine::busy, parseCount(value, ""));
        else if (takePrefix(key, "drm-resident-"))
            setRegion(key, 3, value);
        else if (takePrefix(key, "drm-memory-"))
            setRegion(key, 2, value);
        else if (takePrefix(key, "drm-total-"))
            setRegion(key, 1, value);
        else if (key.ends_with(" mem"))
            setRegion(key.substr(0, key.size() - 4), 2, value);
        else if (const auto share = parsePercent(value))
            setOnce(key, &DrmEngine::share, share);
    }

    static void setOnce(std::string &field, std::string_view value)
    {
        constexpr std::size_t longest = 64;
        if (field.empty() && value.size() <= longest)
            field = value;
    }

    template <typename Value>
    void setOnce(std::string_view name, std::optional<Value> DrmEngine::*field,
                 std::optional<Value> value)
    {
        DrmEngine *const named = value ? engine(name) : nullptr;
        if (named && !(named->*field))
            named->*field = value;
    }

    void setCapacity(std::string_view name, std::string_view value)
    {
        const auto capacity = parseUnsigned(value);
        DrmEngine *const named = capacity && *capacity > 0 ? engine(name) : nullptr;
        if (named)
            named->capacity = *capacity;
    }

    /// Null when there are too many.
    DrmEngine *engine(std::string_view name)
    {
        const auto known = std::ranges::find(m_client.engines, name, &DrmEngine::name);
        if (known != m_client.engines.end())
            return &*known;
        if (m_client.engines.size() == mostNames)
            return nullptr;
        return &m_client.engines.emplace_back(DrmEngine{.name = std::string(name)});
    }

    void setRegion(std::string_view name, int rank, std::string_view value)
    {
        const auto bytes = parseBytes(value);
        if (!bytes)
            return;
        const auto known = std::ranges::find_if(
            m_regions, [name](const RankedRegion &ranked) { return ranked.region.name == name; });
        if (known == m_regions.end() && m_regions.size() < mostNames)
            m_regions.push_back({{std::string(name), *bytes}, rank});
        else if (known != m_regions.end() && known->rank < rank)
            *known = {{std::string(name), *bytes}, rank};
    }

    DrmClient m_client = {};
    std::vector<RankedRegion> m_regions = {};
};

/// Of the card itself, by the names of amdgpu and xe, and of i915.
bool isOwnMemory(std::string_view region)
{
    return region.starts_with("vram") || region.starts_with("local")
        || region.starts_with("stolen-local");
}

/// Of the machine, as far as the GPU reaches it: not amdgpu's "cpu".
bool isSharedMemory(std::string_view region)
{
    return region == "gtt" || region.starts_with("system") || region.starts_with("stolen");
}

} // namespace

std::optional<DrmClient> parseDrmClient(std::string_view fdinfo)
{
    return Reader().read(fdinfo);
}

std::optional<std::uint64_t> drmClientBytes(const DrmClient &client, bool integrated)
{
    std::optional<std::uint64_t> sum;
    for (const DrmRegion &region : client.regions) {
        if (isOwnMemory(region.name) || (integrated && isSharedMemory(region.name)))
            sum = sum.value_or(0) + region.bytes;
    }
    return sum;
}

} // namespace corvane
