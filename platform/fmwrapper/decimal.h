// Exact decimal numbers, as the database host keeps them.
#pragma once

#include <cstdint>
#include <gmpxx.h>
#include <optional>
#include <string>
#include <string_view>

namespace fm {

/// A decimal of any sign: units × 10^-scale. Sums, differences and products are exact up to the limits
/// below; a quotient is rounded to at least 16 places and 16 significant digits.
class Decimal {
public:
    static constexpr int kMaxPlaces = 400; ///< further places are rounded away, half away from zero
    static constexpr int kMaxDigits = 800; ///< larger results have no value (std::nullopt)

    Decimal() = default;
    explicit Decimal(std::int64_t value);

    /// Digits with an optional sign and point ("-12.50"); nothing else. No digits: nullopt.
    static std::optional<Decimal> Parse(std::string_view digits);

    /// Reads a text as the host does: all digits, the first point, a minus before the first digit; every
    /// other character is passed over. nullopt when the text holds no digit.
    static std::optional<Decimal> FromText(std::string_view utf8);
    static std::optional<Decimal> FromText(std::u16string_view text);

    /// The shortest decimal that reads back as `value`; nullopt for infinities and NaN.
    static std::optional<Decimal> FromDouble(double value);

    [[nodiscard]] std::string ToText() const; ///< "-0.75", "12", never an exponent
    [[nodiscard]] double ToDouble() const;
    [[nodiscard]] std::int64_t ToInteger() const; ///< truncated toward zero, held at the ends of the range
    [[nodiscard]] bool IsZero() const { return units_ == 0; }
    [[nodiscard]] int Sign() const { return sgn(units_); }

    [[nodiscard]] Decimal Negated() const;
    [[nodiscard]] Decimal Floor() const;
    [[nodiscard]] Decimal Truncated() const;
    /// Rounded to `places` digits after the point (before it when negative), half away from zero.
    [[nodiscard]] Decimal Rounded(int places) const;

    friend std::optional<Decimal> operator+(const Decimal& a, const Decimal& b);
    friend std::optional<Decimal> operator-(const Decimal& a, const Decimal& b);
    friend std::optional<Decimal> operator*(const Decimal& a, const Decimal& b);
    /// nullopt also for a zero divisor.
    friend std::optional<Decimal> operator/(const Decimal& a, const Decimal& b);
    friend int Compare(const Decimal& a, const Decimal& b);

private:
    Decimal(mpz_class units, int scale);
    [[nodiscard]] mpz_class UnitsAt(int scale) const;
    static std::optional<Decimal> Checked(Decimal value);

    mpz_class units_;
    int scale_ = 0; ///< 0 to kMaxPlaces; no trailing zero is kept in the places
};

int Compare(const Decimal& a, const Decimal& b);

} // namespace fm
