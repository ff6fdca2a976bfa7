#include "app/cli/json_writer.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {

constexpr char hexDigits[] = "0123456789abcdef";

// Worst case per UTF-16 unit: a control character as \u00XX.
constexpr std::size_t maxBytesPerUnit = 6;

// ASCII that goes out as it stands: one table look-up per unit in the common case.
constexpr auto plainAscii = [] {
    std::array<bool, 128> plain{};
    for (std::size_t c = 0x20; c < 0x80; ++c)
        plain[c] = c != '"' && c != '\\';
    return plain;
}();

} // namespace

JsonWriter::JsonWriter(std::FILE* sink, std::size_t chunkBytes)
    : sink_(sink), capacity_(chunkBytes < 64 ? 64 : chunkBytes), buffer_(new char[capacity_])
{
}

JsonWriter::~JsonWriter() { flush(); }

bool JsonWriter::flush()
{
    if (used_ > 0 && !failed_) {
        if (std::fwrite(buffer_.get(), 1, used_, sink_) != used_)
            failed_ = true;
    }
    used_ = 0;
    if (!failed_ && std::fflush(sink_) != 0)
        failed_ = true;
    return !failed_;
}

char* JsonWriter::makeRoom(std::size_t bytes)
{
    flush();
    if (bytes > capacity_) {
        capacity_ = bytes;
        buffer_.reset(new char[capacity_]);
    }
    return buffer_.get();
}

void JsonWriter::value(const std::optional<QStringList>& texts)
{
    if (!texts) {
        null();
        return;
    }
    append("[");
    char lead = 0;
    for (const QString& text : *texts) {
        string(text, lead);
        lead = ',';
    }
    append("]");
}

void JsonWriter::value(double number)
{
    if (!std::isfinite(number)) {
        null();
        return;
    }
    // Bands and rates have at most one decimal; printing them as tenths skips the costly
    // shortest-round-trip search, and the check keeps the text exact.
    const double tenths = std::round(number * 10);
    if (std::fabs(tenths) < 1e15 && tenths / 10 == number) {
        auto whole = static_cast<std::int64_t>(tenths);
        if (whole < 0) {
            append("-");
            whole = -whole;
        }
        integer(whole / 10);
        if (whole % 10 != 0) {
            char* out = reserve(2);
            out[0] = '.';
            out[1] = static_cast<char>('0' + whole % 10);
            used_ += 2;
        }
        return;
    }
    constexpr std::size_t room = 32;
    char* out = reserve(room);
    used_ += static_cast<std::size_t>(std::to_chars(out, out + room, number).ptr - out);
}

void JsonWriter::integer(std::int64_t number)
{
    constexpr std::size_t room = 24;
    char* out = reserve(room);
    used_ += static_cast<std::size_t>(std::to_chars(out, out + room, number).ptr - out);
}

void JsonWriter::string(const QString& text, char lead)
{
    const auto size = static_cast<std::size_t>(text.size());
    char* out = reserve(size * maxBytesPerUnit + 3);
    char* p = out;
    const auto* units = reinterpret_cast<const char16_t*>(text.constData());
    if (lead != 0)
        *p++ = lead;
    *p++ = '"';
    for (std::size_t i = 0; i < size; ++i) {
        const char16_t c = units[i];
        if (c < 0x80 && plainAscii[c]) {
            *p++ = static_cast<char>(c);
            continue;
        }
        if (c < 0x80) {
            if (c == u'"' || c == u'\\') {
                *p++ = '\\';
                *p++ = static_cast<char>(c);
            } else {
                std::memcpy(p, "\\u00", 4);
                p[4] = hexDigits[c >> 4];
                p[5] = hexDigits[c & 0xF];
                p += 6;
            }
            continue;
        }
        char32_t cp = c;
        if (c >= 0xD800 && c <= 0xDFFF) {
            const bool pairs = c <= 0xDBFF && i + 1 < size && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF;
            if (pairs) {
                cp = 0x10000 + ((static_cast<char32_t>(c) - 0xD800) << 10) + (units[i + 1] - 0xDC00);
                ++i;
            } else {
                cp = 0xFFFD;
            }
        }
        if (cp < 0x800) {
            *p++ = static_cast<char>(0xC0 | (cp >> 6));
            *p++ = static_cast<char>(0x80 | (cp & 0x3F));
        } else if (cp < 0x10000) {
            *p++ = static_cast<char>(0xE0 | (cp >> 12));
            *p++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            *p++ = static_cast<char>(0x80 | (cp & 0x3F));
        } else {
            *p++ = static_cast<char>(0xF0 | (cp >> 18));
            *p++ = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
            *p++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            *p++ = static_cast<char>(0x80 | (cp & 0x3F));
        }
    }
    *p++ = '"';
    used_ += static_cast<std::size_t>(p - out);
}
