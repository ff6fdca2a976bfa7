#include "graphs/color_codes_manager.h"

#include "scan/scaned_result_info.h"

#include <QByteArray>
#include <QFile>
#include <QStringList>

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>

namespace graphs {

namespace {

// Releases a parsed property-list tree however the load ends.
struct PlistDeleter {
    void operator()(plist_t node) const { plist_free(node); }
};
using PlistTree = std::unique_ptr<void, PlistDeleter>;

// "r,g,b" on the 0-255 scale; a missing or unreadable component counts as 0.
ColourCodePtr colourFromText(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    double components[3] = {0.0, 0.0, 0.0};
    for (qsizetype i = 0; i < 3 && i < parts.size(); ++i) {
        bool ok = false;
        const double value = parts.at(i).trimmed().toDouble(&ok);
        components[i] = ok ? value / 255.0 : 0.0;
    }
    return std::make_shared<const ColourCode>(components[0], components[1], components[2]);
}

QString stringValue(plist_t node)
{
    char* text = nullptr;
    plist_get_string_val(node, &text);
    const QString result = QString::fromUtf8(text);
    std::free(text);
    return result;
}

// The single entry of one group dictionary: its name and its list of colour texts.
std::pair<QString, plist_t> firstEntry(plist_t dictionary)
{
    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(dictionary, &iterator);
    if (!iterator)
        return {QString(), nullptr};
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(dictionary, iterator, &key, &value);
    std::free(iterator);
    const QString name = QString::fromUtf8(key);
    std::free(key);
    return {name, value};
}

std::shared_ptr<ColorCodesForChannels> groupFromArray(plist_t colours)
{
    auto group = std::make_shared<ColorCodesForChannels>();
    if (plist_get_node_type(colours) != PLIST_ARRAY)
        return group;
    const std::uint32_t count = plist_array_get_size(colours);
    for (std::uint32_t i = 0; i < count; ++i) {
        const plist_t item = plist_array_get_item(colours, i);
        if (plist_get_node_type(item) == PLIST_STRING)
            group->addColorCode(colourFromText(stringValue(item)));
    }
    return group;
}

PlistTree readPlist(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    const QByteArray bytes = file.readAll();
    if (bytes.isEmpty() || bytes.size() > std::numeric_limits<std::uint32_t>::max())
        return nullptr;
    plist_t root = nullptr;
    plist_from_memory(bytes.constData(), static_cast<std::uint32_t>(bytes.size()), &root);
    return PlistTree(root);
}

} // namespace

ColorCodesManager& ColorCodesManager::sharedColorManager()
{
    static ColorCodesManager shared{QLatin1String(resourcePath)};
    return shared;
}

ColorCodesManager::ColorCodesManager(const QString& plistPath) { loadColors(plistPath); }

void ColorCodesManager::loadColors(const QString& plistPath)
{
    const PlistTree root = readPlist(plistPath);
    if (!root || plist_get_node_type(root.get()) != PLIST_ARRAY)
        return;
    const std::lock_guard<std::mutex> lock(mutex_);
    const std::uint32_t count = plist_array_get_size(root.get());
    for (std::uint32_t i = 0; i < count; ++i) {
        const plist_t entry = plist_array_get_item(root.get(), i);
        if (plist_get_node_type(entry) != PLIST_DICT)
            continue;
        const auto [name, colours] = firstEntry(entry);
        if (name.isEmpty() || !colours)
            continue;
        channelsToCodesDictionary_.insert(name + QLatin1Char('-'), groupFromArray(colours));
    }
}

QString ColorCodesManager::getKeyForColorCodeChannels(int channel)
{
    struct Range {
        int first;
        int last;
        const char* name;
    };
    static constexpr Range ranges[] = {
        {std::numeric_limits<int>::min(), 4, "1-4"},
        {5, 8, "5-8"},
        {9, 14, "9-14"},
        {34, 38, "34-36-38"},
        {39, 44, "40-42-44"},
        {46, 52, "46-48-52"},
        {56, 64, "56-60-64"},
        {100, 108, "100-104-108"},
        {112, 120, "112-116-120"},
        {124, 132, "124-128-132"},
        {136, 140, "136-140"},
        {149, 149, "149"},
        {153, 153, "153"},
        {157, 157, "157"},
        {161, 161, "161"},
        {165, 165, "165"},
    };
    for (const Range& range : ranges) {
        if (channel >= range.first && channel <= range.last)
            return QLatin1String(range.name);
    }
    // Channels between the listed groups borrow one group's colours rather than going without.
    return QStringLiteral("112-116-120");
}

ColourCodePtr ColorCodesManager::getColorCode(const scan::ScanedResultInfo* record)
{
    if (!record)
        return nullptr;
    const std::shared_ptr<ColorCodesForChannels> group =
        groupForKey(getKeyForColorCodeChannels(record->originalChannel) + QLatin1Char('-'));
    return group ? group->getColorCode(record) : nullptr;
}

std::shared_ptr<ColorCodesForChannels> ColorCodesManager::groupForKey(const QString& groupKey) const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return channelsToCodesDictionary_.value(groupKey);
}

int ColorCodesManager::groupCount() const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return static_cast<int>(channelsToCodesDictionary_.size());
}

} // namespace graphs
