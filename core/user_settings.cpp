#include "core/user_settings.h"

namespace core {

bool settingIsOn(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool();
    case QMetaType::QString:
    case QMetaType::QByteArray: {
        const QString text = value.toString().trimmed();
        return text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || text == QLatin1String("1");
    }
    default: {
        bool ok = false;
        const double number = value.toDouble(&ok);
        return ok && number == 1.0;
    }
    }
}

} // namespace core
