#pragma once

#include <QString>
#include <QStringList>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

// Writes JSON objects, one per line, into one large buffer that goes to a stdio stream in big
// chunks: per-field stdio calls would cost more than decoding the frames themselves.
class JsonWriter {
public:
    explicit JsonWriter(std::FILE* sink, std::size_t chunkBytes = 1u << 20);
    ~JsonWriter();
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    void beginObject()
    {
        append("{");
        firstInObject_ = true;
    }
    // Closes the object and ends the line.
    void endObject() { append("}\n"); }

    void key(std::string_view name)
    {
        char* p = reserve(name.size() + 4);
        char* const start = p;
        if (!firstInObject_)
            *p++ = ',';
        firstInObject_ = false;
        *p++ = '"';
        std::memcpy(p, name.data(), name.size());
        p += name.size();
        *p++ = '"';
        *p++ = ':';
        used_ += static_cast<std::size_t>(p - start);
    }

    // A null QString is written as null; invalid UTF-16 becomes U+FFFD so the output stays UTF-8.
    void value(const QString& text)
    {
        if (text.isNull())
            null();
        else
            string(text, 0);
    }
    void value(const std::optional<QStringList>& texts);
    void value(double number);
    template <std::integral T>
    void value(T number) { integer(static_cast<std::int64_t>(number)); }
    void null() { append("null"); }

    template <typename T>
    void field(std::string_view name, const T& v)
    {
        key(name);
        value(v);
    }

    // Writes out what is buffered; false once any write to the stream has failed.
    bool flush();

private:
    void integer(std::int64_t number);
    // lead, when not 0, is written just before the opening quote (a list's comma).
    void string(const QString& text, char lead);

    // Room for bytes more at the end of the buffer; the caller advances used_ by what it wrote.
    char* reserve(std::size_t bytes)
    {
        if (capacity_ - used_ < bytes)
            return makeRoom(bytes);
        return buffer_.get() + used_;
    }
    char* makeRoom(std::size_t bytes);

    void append(std::string_view text)
    {
        std::memcpy(reserve(text.size()), text.data(), text.size());
        used_ += text.size();
    }

    std::FILE* sink_;
    std::size_t capacity_;
    std::unique_ptr<char[]> buffer_;
    std::size_t used_ = 0;
    bool firstInObject_ = true;
    bool failed_ = false;
};
