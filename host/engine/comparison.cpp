#include "host/engine/comparison.h"

#include "platform/text/utf.h"

#include <algorithm>

namespace host {
namespace {

int CompareTexts(std::u16string_view left, std::u16string_view right) {
    std::size_t left_position = 0;
    std::size_t right_position = 0;
    while (left_position < left.size() && right_position < right.size()) {
        const char32_t a = utf::Next(left, left_position);
        const char32_t b = utf::Next(right, right_position);
        if (a == b) continue;
        const char32_t lower_a = utf::ToLower(a);
        const char32_t lower_b = utf::ToLower(b);
        if (lower_a != lower_b) return lower_a < lower_b ? -1 : 1;
    }
    return static_cast<int>(left_position < left.size()) - static_cast<int>(right_position < right.size());
}

bool SameStreams(const FM_BinaryData& left, const FM_BinaryData& right) {
    return std::ranges::equal(left.streams, right.streams, [](const fm::Stream& a, const fm::Stream& b) {
        return a.type == b.type && (a.bytes == b.bytes || *a.bytes == *b.bytes);
    });
}

} // namespace

int Compare(const FM_Data& left, const FM_Data& right) {
    const bool number = left.Type() == kFM_TypeNumber || right.Type() == kFM_TypeNumber;
    if (number && left.HasNumber() && right.HasNumber())
        return fm::Compare(left.AsNumber().value, right.AsNumber().value);
    const int order = CompareTexts(left.AsText().units, right.AsText().units);
    if (order == 0 && left.Type() == kFM_TypeContainer && right.Type() == kFM_TypeContainer &&
        !SameStreams(left.AsContainer(), right.AsContainer()))
        return 1;
    return order;
}

bool Holds(Operator comparison, const FM_Data& left, const FM_Data& right) {
    const int order = Compare(left, right);
    switch (comparison) {
    case Operator::kEqual: return order == 0;
    case Operator::kNotEqual: return order != 0;
    case Operator::kLess: return order < 0;
    case Operator::kGreater: return order > 0;
    case Operator::kLessOrEqual: return order <= 0;
    default: return order >= 0;
    }
}

} // namespace host
