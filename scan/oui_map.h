#pragma once

#include <QHash>
#include <QString>

#include <atomic>
#include <mutex>

// The vendor table: OUI key "XX:XX:XX" to vendor name, read once from "oui-mapping.txt" and
// shared by every thread that names access points.
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

    // Parses the file format: "\n"-separated lines, "\t"-separated fields, later keys win.
    static QHash<QString, QString> parse(const QByteArray& utf8);

private:
    void install(QHash<QString, QString> table);

    mutable std::mutex mutex_;
    QHash<QString, QString> table_;
    std::atomic<bool> loaded_{false};
};
