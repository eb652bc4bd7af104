// The host's side of the data interface: what its objects are made of. For the host program and this
// layer; a plug-in never includes it.
#pragma once

#include "platform/fmwrapper/decimal.h"
#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fm {

/// Counts the objects that are alive, so that a test can show that a call released all it made.
/// One thread at a time, like the objects.
class Counted {
public:
    Counted() { ++alive; }
    Counted(const Counted&) { ++alive; }
    Counted(Counted&&) noexcept { ++alive; }
    Counted& operator=(const Counted&) = default;
    Counted& operator=(Counted&&) = default;
    ~Counted() { --alive; }
    static std::int64_t alive;
};

/// Leaves new elements as they are: streams of gigabytes are filled right after they are made.
template <class Value>
struct UnclearedAllocator : std::allocator<Value> {
    template <class Other>
    struct rebind {
        using other = UnclearedAllocator<Other>;
    };
    template <class Other, class... Arguments>
    void construct(Other* place, Arguments&&... arguments) {
        if constexpr (sizeof...(Arguments) == 0) {
            ::new (static_cast<void*>(place)) Other;
        } else {
            ::new (static_cast<void*>(place)) Other(std::forward<Arguments>(arguments)...);
        }
    }
};

using Bytes = std::vector<std::uint8_t, UnclearedAllocator<std::uint8_t>>;

struct Stream {
    std::uint32_t type; ///< four-character code, first character in the most significant byte
    std::shared_ptr<const Bytes> bytes;
};

class HostEngine;

} // namespace fm

struct FM_Text : fm::Counted {
    FM_Text() = default;
    explicit FM_Text(std::u16string text) : units(std::move(text)) {}
    std::u16string units;
};

struct FM_FixPt : fm::Counted {
    FM_FixPt() = default;
    explicit FM_FixPt(fm::Decimal number) : value(std::move(number)) {}
    fm::Decimal value;
};

struct FM_QuadChar : fm::Counted {
    std::uint32_t code = 0;
};

struct FM_Locale : fm::Counted {
    std::int32_t type = kFM_LocaleEnglish;
};

struct FM_BinaryData : fm::Counted {
    std::vector<fm::Stream> streams;
    std::u16string reference; ///< of a container without streams: the text that names its file

    [[nodiscard]] std::int32_t IndexOf(std::uint32_t type) const;
};

/// One value. The conversions to other kinds are made when first asked for and kept until the value
/// changes, since callers borrow them.
struct FM_Data : fm::Counted {
    FM_Data() = default;
    explicit FM_Data(std::u16string text) { SetText(std::move(text)); }
    explicit FM_Data(fm::Decimal number) { SetNumber(std::move(number)); }

    void SetText(std::u16string text);
    void SetNumber(fm::Decimal number);
    void SetContainer(const FM_BinaryData& container);

    [[nodiscard]] FM_NativeType Type() const { return type_; }
    [[nodiscard]] bool IsEmpty() const;
    [[nodiscard]] const FM_Text& AsText() const;
    [[nodiscard]] const FM_FixPt& AsNumber() const;
    [[nodiscard]] const FM_BinaryData& AsContainer() const;
    [[nodiscard]] bool AsBoolean() const;
    /// True when AsNumber stands for digits that are there, not for a text without any.
    [[nodiscard]] bool HasNumber() const;

    FM_Locale locale;

private:
    FM_NativeType type_ = kFM_TypeText;
    mutable std::optional<FM_Text> text_;
    mutable std::optional<FM_FixPt> number_;
    mutable bool has_number_ = false;
    mutable std::unique_ptr<FM_BinaryData> container_;

public:
    FM_Data(const FM_Data& other);
    FM_Data(FM_Data&& other) noexcept = default;
    FM_Data& operator=(const FM_Data& other);
    FM_Data& operator=(FM_Data&& other) noexcept = default;
    ~FM_Data() = default;
};

struct FM_DataVect : fm::Counted {
    std::vector<FM_Data> values;
};

struct FM_ExprEnv : fm::Counted {
    fm::HostEngine* engine = nullptr; ///< none until the current-environment service has filled it
};
