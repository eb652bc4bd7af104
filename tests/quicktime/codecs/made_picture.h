// QuickDraw pictures put together by hand, and what they draw as text.
#pragma once

#include "tests/quicktime/codecs/codec_checks.h"

#include <initializer_list>
#include <string>

namespace corvane::test {

/// A picture without the file's header, with the operations that follow each other.
class MadePicture {
public:
    MadePicture(int width, int height, bool wide = true) : wide_(wide) {
        Word(0);
        Frame(0, 0, height, width);
        if (wide) {
            Words({0x11, 0x2FF, 0xC00, 0xFFFF, 0xFFFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        } else {
            Word(0x1101);
        }
    }

    MadePicture& Operation(int operation) {
        if (!wide_) return Byte(operation);
        if (bytes_.size() % 2 != 0) Byte(0);
        return Word(operation);
    }
    MadePicture& Byte(int value) {
        bytes_.push_back(static_cast<std::byte>(value));
        return *this;
    }
    MadePicture& Word(int value) { return Byte(value >> 8).Byte(value); }
    MadePicture& Long(long value) {
        return Word(static_cast<int>(value >> 16)).Word(static_cast<int>(value));
    }
    MadePicture& ByteRun(std::initializer_list<int> values) {
        for (const int value : values) Byte(value);
        return *this;
    }
    MadePicture& Words(std::initializer_list<int> values) {
        for (const int value : values) Word(value);
        return *this;
    }
    MadePicture& Frame(int top, int left, int bottom, int right) { return Words({top, left, bottom, right}); }
    MadePicture& Append(const Bytes& bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        return *this;
    }
    /// The header of a pixel map behind its row bytes; bounds at the origin.
    MadePicture& Map(int width, int height, int pack_type, int pixel_size, int components) {
        Frame(0, 0, height, width)
            .Words({0, pack_type, 0, 0, 72, 0, 72, 0, pixel_size > 8 ? 16 : 0, pixel_size});
        return Words({components, pixel_size > 8 ? 8 : pixel_size, 0, 0, 0, 0, 0, 0});
    }

    [[nodiscard]] Bytes End() const {
        Bytes whole = bytes_;
        if (wide_ && whole.size() % 2 != 0) whole.push_back({});
        if (wide_) whole.push_back({});
        whole.push_back(std::byte{0xFF});
        return whole;
    }

private:
    bool wide_;
    Bytes bytes_;
};

inline std::string Drawn(const Bytes& picture) {
    return Drawn(qt::kPictCodec, picture);
}

} // namespace corvane::test
