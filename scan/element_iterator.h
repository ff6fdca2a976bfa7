#pragma once

#include "scan/byte_reader.h"

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace scan {

// One information element as it lies in the string: ID, the length it declares, and its body.
struct Element {
    std::uint8_t id = 0;
    std::uint8_t declaredLength = 0;
    // The body clipped to the string: shorter than declaredLength when the element is cut off.
    ByteReader body;
    // From the body's first byte to the end of the whole string, for the decoders whose fixed
    // offsets have always read on into the following elements.
    ByteReader rest;

    bool complete() const { return body.size() == declaredLength; }
};

// Walks "ID, length, body" elements. An element whose length runs past the end is still
// yielded (with complete() false) and ends the walk, so each caller decides what a cut-off
// element is worth; a lone ID byte without its length is not an element.
class Elements {
public:
    explicit Elements(ByteReader bytes) : bytes_(bytes) {}
    explicit Elements(const QByteArray& bytes) : bytes_(bytes) {}
    // The walk only views the bytes, so they must outlive it.
    explicit Elements(QByteArray&&) = delete;

    class iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Element;
        using difference_type = std::ptrdiff_t;
        using pointer = const Element*;
        using reference = const Element&;

        iterator() = default;
        iterator(ByteReader bytes, std::size_t pos) : bytes_(bytes), pos_(pos) { load(); }

        const Element& operator*() const { return element_; }
        const Element* operator->() const { return &element_; }
        iterator& operator++()
        {
            pos_ += 2 + std::size_t{element_.declaredLength};
            load();
            return *this;
        }
        bool operator==(const iterator& other) const { return atEnd() == other.atEnd(); }

    private:
        bool atEnd() const { return !bytes_.has(pos_, 2); }
        void load()
        {
            if (atEnd())
                return;
            element_.id = bytes_[pos_];
            element_.declaredLength = bytes_[pos_ + 1];
            element_.body = bytes_.slice(pos_ + 2, element_.declaredLength);
            element_.rest = bytes_.slice(pos_ + 2, bytes_.size());
        }

        ByteReader bytes_;
        std::size_t pos_ = 0;
        Element element_;
    };

    iterator begin() const { return {bytes_, 0}; }
    iterator end() const { return {}; }

private:
    ByteReader bytes_;
};

} // namespace scan
