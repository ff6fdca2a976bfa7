#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace scan {

// A bounds-checked view of untrusted bytes with a read position: every read says whether the
// bytes were there instead of reading past the end. The view never owns its bytes.
class ByteReader {
public:
    ByteReader() = default;
    ByteReader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    explicit ByteReader(const QByteArray& bytes)
        : data_(reinterpret_cast<const std::uint8_t*>(bytes.constData())),
          size_(static_cast<std::size_t>(bytes.size()))
    {
    }
    explicit ByteReader(QByteArray&&) = delete;

    std::size_t size() const { return size_; }
    std::size_t position() const { return pos_; }
    std::size_t remaining() const { return size_ - pos_; }
    const std::uint8_t* data() const { return data_; }

    // Random access from the start of the view, independent of the read position.
    bool has(std::size_t offset, std::size_t count = 1) const
    {
        return offset <= size_ && count <= size_ - offset;
    }
    // Unchecked: only after has() said yes.
    std::uint8_t operator[](std::size_t offset) const { return data_[offset]; }
    std::optional<std::uint8_t> at(std::size_t offset) const
    {
        return has(offset) ? std::optional<std::uint8_t>(data_[offset]) : std::nullopt;
    }
    bool startsWith(std::size_t offset, const std::uint8_t (&prefix)[3]) const
    {
        return has(offset, 3) && data_[offset] == prefix[0] && data_[offset + 1] == prefix[1]
            && data_[offset + 2] == prefix[2];
    }
    // The bytes [offset, offset + count) as a view of their own, clipped to what is there.
    ByteReader slice(std::size_t offset, std::size_t count) const
    {
        if (offset > size_)
            return {};
        return {data_ + offset, count < size_ - offset ? count : size_ - offset};
    }

    // Sequential reads; a read that does not fit consumes nothing.
    std::optional<std::uint8_t> u8()
    {
        if (!has(pos_))
            return std::nullopt;
        return data_[pos_++];
    }
    std::optional<std::uint16_t> le16()
    {
        if (!has(pos_, 2))
            return std::nullopt;
        const auto value = static_cast<std::uint16_t>(data_[pos_] | (data_[pos_ + 1] << 8));
        pos_ += 2;
        return value;
    }
    bool skip(std::size_t count)
    {
        if (!has(pos_, count))
            return false;
        pos_ += count;
        return true;
    }
    // Moves to the end: nothing more is read from this view.
    void exhaust() { pos_ = size_; }

private:
    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t pos_ = 0;
};

} // namespace scan
