#include "scan/oui_map.h"

#include "scan/log_category.h"

#include <QFile>
#include <QStringView>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

namespace scan {

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcScan) << "vendor table" << path << "cannot be read; every vendor shows as Unknown";
        return {};
    }
    return file.readAll();
}

int hexValue(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    return -1;
}

// "XX:XX:XX" with upper-case hex digits as three octets; nullopt for any other shape, which
// then matches only itself.
char16_t unit(QChar c) { return c.unicode(); }
char16_t unit(char c) { return static_cast<unsigned char>(c); }

template <typename Text>
std::optional<std::uint32_t> packedKey(const Text& key)
{
    if (key.size() != 8 || unit(key[2]) != u':' || unit(key[5]) != u':')
        return std::nullopt;
    std::uint32_t packed = 0;
    for (const std::size_t i : {0u, 1u, 3u, 4u, 6u, 7u}) {
        const int digit = hexValue(unit(key[i]));
        if (digit < 0)
            return std::nullopt;
        packed = packed << 4 | static_cast<std::uint32_t>(digit);
    }
    return packed;
}

// The field between first and end without surrounding blanks (as QString::trimmed counts them).
std::pair<std::size_t, std::size_t> trimmed(std::string_view line, std::size_t first, std::size_t end)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; };
    while (first < end && blank(line[first]))
        ++first;
    while (end > first && blank(line[end - 1]))
        --end;
    return {first, end - first};
}

} // namespace

OuiMap& OuiMap::shared()
{
    static OuiMap map;
    return map;
}

void OuiMap::ensureLoaded()
{
    // Checked without the lock first: every lookup passes here.
    if (loaded_.load(std::memory_order_acquire)) {
        return;
    }
    std::lock_guard lock(mutex_);
    if (!loaded_.load(std::memory_order_relaxed)) {
        table_ = parse(readAll(QString::fromLatin1(resourcePath)));
        loaded_.store(true, std::memory_order_release);
    }
}

void OuiMap::loadFrom(const QString& path) { install(parse(readAll(path))); }

void OuiMap::install(Table table)
{
    std::lock_guard lock(mutex_);
    std::swap(table_, table);
    loaded_.store(true, std::memory_order_release);
}

QString OuiMap::vendorForKey(const QString& key) const
{
    std::lock_guard lock(mutex_);
    if (const auto packed = packedKey(QStringView(key))) {
        const auto& entries = table_.entries;
        const auto it = std::lower_bound(entries.cbegin(), entries.cend(), *packed,
                                         [](const Table::Entry& entry, std::uint32_t wanted) { return entry.key < wanted; });
        if (it == entries.cend() || it->key != *packed)
            return {};
        // Empty, not null: a key whose vendor text is blank is still a known key.
        return it->length == 0 ? QString(QLatin1String("")) : QString::fromUtf8(table_.bytes.constData() + it->offset, it->length);
    }
    return table_.others.value(key);
}

qsizetype OuiMap::size() const
{
    std::lock_guard lock(mutex_);
    return static_cast<qsizetype>(table_.entries.size()) + table_.others.size();
}

OuiMap::Table OuiMap::parse(QByteArray utf8)
{
    Table table;
    table.bytes = std::move(utf8);
    const char* const data = table.bytes.constData();
    const auto size = static_cast<std::size_t>(table.bytes.size());
    table.entries.reserve(size / 24);
    std::size_t lineStart = 0;
    while (lineStart < size) {
        const char* newline = static_cast<const char*>(std::memchr(data + lineStart, '\n', size - lineStart));
        const std::size_t lineEnd = newline ? static_cast<std::size_t>(newline - data) : size;
        const std::string_view line(data + lineStart, lineEnd - lineStart);
        const std::size_t tab = line.find('\t');
        if (tab != std::string_view::npos) {
            const std::size_t vendorStart = tab + 1;
            std::size_t vendorEnd = std::min(line.find('\t', vendorStart), line.size());
            // The comment is cut here rather than on every lookup: the result is the same.
            vendorEnd = std::min(line.find('#', vendorStart), vendorEnd);
            const auto [first, length] = trimmed(line, vendorStart, vendorEnd);
            const std::string_view keyText = line.substr(0, tab);
            if (const auto packed = packedKey(keyText)) {
                table.entries.push_back({*packed, static_cast<std::uint32_t>(lineStart + first),
                                         static_cast<std::uint32_t>(length)});
            } else {
                table.others.insert(QString::fromUtf8(keyText.data(), static_cast<qsizetype>(keyText.size())),
                                    QString::fromUtf8(line.data() + first, static_cast<qsizetype>(length)));
            }
        }
        lineStart = lineEnd + 1;
    }
    // Stable, so among repeated keys the last line stays last and wins.
    std::stable_sort(table.entries.begin(), table.entries.end(),
                     [](const Table::Entry& a, const Table::Entry& b) { return a.key < b.key; });
    std::vector<Table::Entry> unique;
    unique.reserve(table.entries.size());
    for (const Table::Entry& entry : table.entries) {
        if (!unique.empty() && unique.back().key == entry.key)
            unique.back() = entry;
        else
            unique.push_back(entry);
    }
    table.entries = std::move(unique);
    return table;
}

} // namespace scan
