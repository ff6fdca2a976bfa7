#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>

namespace scanning {

// A WHERE condition and the values for its "?" placeholders. The values never become part of
// the text, so nothing a user types can change what the statement means.
struct SqlCondition {
    SqlCondition() = default;
    // A fixed condition without values; a caller-written text is taken as it stands.
    SqlCondition(QString conditionText) : text(std::move(conditionText)) {}  // NOLINT(google-explicit-constructor)
    SqlCondition(QString conditionText, QVariantList boundValues)
        : text(std::move(conditionText)), values(std::move(boundValues))
    {
    }

    bool isEmpty() const { return text.isEmpty(); }

    QString text;
    QVariantList values;
};

} // namespace scanning
