#pragma once

#include "platform/linux/nl80211_parsers.h"

#include <netlink/attr.h>
#include <netlink/genl/genl.h>
#include <netlink/msg.h>

#include <array>

// Length-checked reading of netlink attributes, shared by the nl80211 parsers.
namespace platform::nl80211::attributes {

template <int Max>
using AttributeTable = std::array<nlattr*, Max + 1>;

template <std::size_t Size>
inline bool parseTopLevel(nl_msg* message, std::array<nlattr*, Size>& table)
{
    table.fill(nullptr);
    if (message == nullptr)
        return false;
    nlmsghdr* header = nlmsg_hdr(message);
    if (!genlmsg_valid_hdr(header, 0))
        return false;
    auto* generic = static_cast<genlmsghdr*>(nlmsg_data(header));
    return nla_parse(table.data(), static_cast<int>(Size - 1), genlmsg_attrdata(generic, 0),
                     genlmsg_attrlen(generic, 0), nullptr)
           == 0;
}

template <std::size_t Size>
inline bool parseNested(nlattr* attribute, std::array<nlattr*, Size>& table)
{
    table.fill(nullptr);
    return attribute != nullptr && nla_parse_nested(table.data(), static_cast<int>(Size - 1), attribute, nullptr) == 0;
}

// libnl's getters read whatever follows the header, so a short attribute must be refused here.
inline std::optional<std::uint32_t> readU32(const nlattr* attribute)
{
    if (attribute == nullptr || nla_len(attribute) < 4)
        return std::nullopt;
    return nla_get_u32(attribute);
}

inline std::optional<std::uint16_t> readU16(const nlattr* attribute)
{
    if (attribute == nullptr || nla_len(attribute) < 2)
        return std::nullopt;
    return nla_get_u16(attribute);
}

inline std::optional<std::uint8_t> readU8(const nlattr* attribute)
{
    if (attribute == nullptr || nla_len(attribute) < 1)
        return std::nullopt;
    return nla_get_u8(attribute);
}

// Kernel puts several signed quantities (dBm, mBm) into unsigned attributes.
inline std::optional<int> readS8(const nlattr* attribute)
{
    const auto value = readU8(attribute);
    if (!value)
        return std::nullopt;
    return static_cast<int>(static_cast<std::int8_t>(*value));
}

inline std::optional<int> readS32(const nlattr* attribute)
{
    const auto value = readU32(attribute);
    if (!value)
        return std::nullopt;
    return static_cast<std::int32_t>(*value);
}

inline QByteArray readBytes(const nlattr* attribute)
{
    if (attribute == nullptr)
        return {};
    return QByteArray(static_cast<const char*>(nla_data(attribute)), nla_len(attribute));
}

// Strings from the kernel end with NUL, but a damaged one might not; never read past the payload.
inline QString readString(const nlattr* attribute)
{
    const QByteArray bytes = readBytes(attribute);
    const qsizetype end = bytes.indexOf('\0');
    return QString::fromUtf8(end < 0 ? bytes : bytes.left(end));
}

inline QString readMac(const nlattr* attribute)
{
    if (attribute == nullptr || nla_len(attribute) < 6)
        return {};
    return macText(readBytes(attribute).left(6));
}

} // namespace platform::nl80211::attributes
