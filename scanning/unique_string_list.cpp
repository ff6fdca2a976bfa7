#include "scanning/unique_string_list.h"

namespace scanning {

bool UniqueStringList::append(const QString& text)
{
    if (members_.contains(text))
        return false;
    members_.insert(text);
    items_.append(text);
    return true;
}

void UniqueStringList::remove(const QString& text)
{
    if (members_.remove(text))
        items_.removeOne(text);
}

void UniqueStringList::clear()
{
    items_.clear();
    members_.clear();
}

} // namespace scanning
