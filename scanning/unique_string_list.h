#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

namespace scanning {

// Strings in the order they were first added, each held once. Every scan offers thousands of
// names to such lists, so whether one is held is answered by a set, not by walking the list.
class UniqueStringList {
public:
    // False when the text is held already; the order stays as it was.
    bool append(const QString& text);
    bool contains(const QString& text) const { return members_.contains(text); }
    void remove(const QString& text);
    void clear();
    qsizetype size() const { return items_.size(); }
    const QStringList& items() const { return items_; }

private:
    QStringList items_;
    QSet<QString> members_;
};

} // namespace scanning
