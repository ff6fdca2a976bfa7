#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

namespace scan {

// The vendor table: OUI key "XX:XX:XX" to vendor name, read once from "oui-mapping.txt" and
// shared by every thread that names access points. It keeps the file's bytes and an index of
// the hex keys, so loading costs one pass and no string per entry; names are made on lookup.
class OuiMap {
public:
    static constexpr const char* resourcePath = ":/oui-mapping.txt";

    static OuiMap& shared();

    // Loads the bundled table unless a table is already in place.
    void ensureLoaded();
    // Replaces the table with the given file; a missing file leaves an empty table.
    void loadFrom(const QString& path);
    // Vendor text for an exact key with its "#" comment cut and blanks trimmed; null when absent.
    QString vendorForKey(const QString& key) const;
    qsizetype size() const;

    // The file format: "\n"-separated lines, "\t"-separated fields, later keys win.
    struct Table {
        struct Entry {
            std::uint32_t key;     // the three octets of an upper-case "XX:XX:XX" key
            std::uint32_t offset;  // the vendor text in bytes
            std::uint32_t length;
        };
        QByteArray bytes;
        std::vector<Entry> entries;       // sorted by key, one per key
        QHash<QString, QString> others;   // keys of any other shape, matched exactly
    };
    static Table parse(QByteArray utf8);

private:
    void install(Table table);

    mutable std::mutex mutex_;
    Table table_;
    std::atomic<bool> loaded_{false};
};

} // namespace scan
