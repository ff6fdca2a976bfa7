#include "platform/api/wireless_types.h"

namespace platform {

int InterfaceSnapshot::opMode() const
{
    switch (interfaceMode) {
    case InterfaceModeIBSS: return OpModeIBSS;
    case InterfaceModeHostAP: return OpModeHostAP;
    default: return OpModeStation;
    }
}

} // namespace platform
