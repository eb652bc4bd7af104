// The parameters of an effect and their values, each a number whatever its kind; and their form as text,
// which the settings dialog and the XML description share.
#pragma once

#include "platform/quicktime/types.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace qt {

struct EffectChoice {
    std::string_view word;  ///< in texts
    std::string_view label; ///< for people
};

struct EffectParameter {
    enum class Kind : std::uint8_t {
        kNumber, ///< kept to 1/65536
        kWhole,  ///< a number without a fraction
        kChoice, ///< place in `choices`, from 0
        kToggle, ///< 0 or 1
        kColour  ///< 0xRRGGBB; as text "#rrggbb"
    };
    Kind kind;
    /// In texts: lower-case letters and digits. The first four characters, which differ within an effect,
    /// are the type of its atom.
    std::string_view key;
    std::string_view label;
    double minimum;
    double maximum;
    double standard;
    std::string_view unit; ///< kPixelUnit, or others for people; may be empty
    std::span<const EffectChoice> choices;
};

/// Unit of lengths in the image, which a smaller preview shows smaller.
inline constexpr std::string_view kPixelUnit = "pixels";

constexpr EffectParameter NumberParameter(std::string_view key, std::string_view label, double minimum,
                                          double maximum, double standard, std::string_view unit = {}) {
    return {EffectParameter::Kind::kNumber, key, label, minimum, maximum, standard, unit, {}};
}
constexpr EffectParameter WholeParameter(std::string_view key, std::string_view label, double minimum,
                                         double maximum, double standard, std::string_view unit = {}) {
    return {EffectParameter::Kind::kWhole, key, label, minimum, maximum, standard, unit, {}};
}
/// From 0 to 100 percent.
constexpr EffectParameter PercentParameter(std::string_view key, std::string_view label, double standard) {
    return NumberParameter(key, label, 0, 100, standard, "percent");
}
constexpr EffectParameter ChoiceParameter(std::string_view key, std::string_view label,
                                          std::span<const EffectChoice> choices, std::size_t standard = 0) {
    return {EffectParameter::Kind::kChoice, key, label,  0, static_cast<double>(choices.size() - 1),
            static_cast<double>(standard),  {},  choices};
}
constexpr EffectParameter ToggleParameter(std::string_view key, std::string_view label, bool standard) {
    return {EffectParameter::Kind::kToggle, key, label, 0, 1, standard ? 1.0 : 0.0, {}, {}};
}
constexpr EffectParameter ColourParameter(std::string_view key, std::string_view label,
                                          std::uint32_t standard) {
    return {EffectParameter::Kind::kColour, key, label, 0, 0xFFFFFF, static_cast<double>(standard), {}, {}};
}

inline constexpr std::size_t kMostParameters = 12; ///< of an effect

/// A value for each parameter of an effect, always in its range. Allocates nothing.
class EffectValues {
public:
    /// The standard values. The parameters outlive them.
    explicit EffectValues(std::span<const EffectParameter> parameters);

    [[nodiscard]] std::span<const EffectParameter> parameters() const { return parameters_; }
    [[nodiscard]] double At(std::size_t index) const { return values_[index]; }

    /// By the parameter's key, which must be one of the effect's.
    [[nodiscard]] double Number(std::string_view key) const;
    [[nodiscard]] double Fraction(std::string_view key) const { return Number(key) / 100; } ///< of percents
    [[nodiscard]] std::int32_t Whole(std::string_view key) const {
        return static_cast<std::int32_t>(Number(key));
    }
    [[nodiscard]] bool Toggle(std::string_view key) const { return Number(key) != 0; }
    [[nodiscard]] std::uint32_t Colour(std::string_view key) const {
        return static_cast<std::uint32_t>(Number(key));
    }

    /// Brings the value into the parameter's range; NaN is the standard value.
    void Set(std::size_t index, double value);
    /// The place of the parameter with this key; nullopt when there is none.
    [[nodiscard]] std::optional<std::size_t> Find(std::string_view key) const;
    /// A text that is no value of the parameter is the standard value.
    void SetText(std::size_t index, std::string_view text);
    [[nodiscard]] std::string TextAt(std::size_t index) const;

    /// For a picture shown at this scale.
    void ScaleLengths(double scale);

private:
    std::span<const EffectParameter> parameters_;
    std::array<double, kMostParameters> values_{};
};

} // namespace qt
