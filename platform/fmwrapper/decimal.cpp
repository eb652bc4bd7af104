#include "platform/fmwrapper/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

namespace fm {
namespace {

constexpr int kQuotientDigits = 16;

// Without these GMP ends the process when there is no memory.
void* Allocate(std::size_t size) {
    if (void* block = std::malloc(size)) return block;
    throw std::bad_alloc();
}

void* Reallocate(void* block, std::size_t /*old_size*/, std::size_t size) {
    if (void* larger = std::realloc(block, size)) return larger;
    throw std::bad_alloc();
}

void Free(void* block, std::size_t /*size*/) {
    std::free(block);
}

[[maybe_unused]] const bool g_memory_set = (mp_set_memory_functions(Allocate, Reallocate, Free), true);

mpz_class PowerOfTen(int exponent) {
    mpz_class power;
    mpz_ui_pow_ui(power.get_mpz_t(), 10, static_cast<unsigned long>(exponent));
    return power;
}

// Quotient rounded to the nearest integer, half away from zero.
mpz_class DivideRounded(const mpz_class& dividend, const mpz_class& divisor) {
    mpz_class doubled = abs(dividend) * 2 + abs(divisor);
    mpz_class quotient = doubled / (abs(divisor) * 2);
    return sgn(dividend) * sgn(divisor) < 0 ? mpz_class(-quotient) : quotient;
}

int DigitCount(const mpz_class& value) {
    return static_cast<int>(mpz_sizeinbase(value.get_mpz_t(), 10));
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Of UTF-8 or UTF-16: only ASCII counts, and what the digits are found among may be long.
template <class Text>
std::optional<Decimal> ReadDigits(Text text) {
    std::string digits;
    bool point = false;
    bool negative = false;
    bool any = false;
    for (const auto unit : text) {
        const char character = unit > 0x20 && unit < 0x7F ? static_cast<char>(unit) : ' ';
        if (IsDigit(character)) {
            digits.push_back(character);
            any = true;
        } else if (character == '.' && !point) {
            digits.push_back(character);
            point = true;
        } else if (character == '-' && !any) {
            negative = true;
        }
        if (digits.size() > Decimal::kMaxDigits) break;
    }
    if (!any) return std::nullopt;
    return Decimal::Parse(negative ? "-" + digits : digits);
}

} // namespace

Decimal::Decimal(std::int64_t value) : units_(static_cast<long>(value)) {}

Decimal::Decimal(mpz_class units, int scale) : units_(std::move(units)), scale_(scale) {
    if (scale_ > kMaxPlaces) {
        units_ = DivideRounded(units_, PowerOfTen(scale_ - kMaxPlaces));
        scale_ = kMaxPlaces;
    }
    if (units_ == 0) scale_ = 0;
    while (scale_ > 0 && mpz_divisible_ui_p(units_.get_mpz_t(), 10) != 0) {
        mpz_divexact_ui(units_.get_mpz_t(), units_.get_mpz_t(), 10);
        --scale_;
    }
}

std::optional<Decimal> Decimal::Checked(Decimal value) {
    if (DigitCount(value.units_) > kMaxDigits) return std::nullopt;
    return value;
}

std::optional<Decimal> Decimal::Parse(std::string_view digits) {
    std::string units;
    int scale = 0;
    bool point = false;
    bool negative = false;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const char character = digits[i];
        if (IsDigit(character)) {
            units.push_back(character);
            if (point) ++scale;
        } else if (character == '.' && !point) {
            point = true;
        } else if ((character == '-' || character == '+') && i == 0) {
            negative = character == '-';
        } else {
            return std::nullopt;
        }
    }
    if (units.empty() || units.size() > kMaxDigits) return std::nullopt;
    mpz_class value(units, 10);
    return Checked(Decimal(negative ? mpz_class(-value) : value, scale));
}

std::optional<Decimal> Decimal::FromText(std::string_view utf8) {
    return ReadDigits(utf8);
}

std::optional<Decimal> Decimal::FromText(std::u16string_view text) {
    return ReadDigits(text);
}

std::optional<Decimal> Decimal::FromDouble(double value) {
    if (!std::isfinite(value)) return std::nullopt;
    // The fixed form is no choice: it writes large values out in full, past the shortest digits.
    std::array<char, 32> buffer{};
    const char* end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific).ptr;
    const char* mark = std::find<const char*>(buffer.data(), end, 'e');
    int exponent = 0;
    std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, exponent);
    const auto digits = Parse({buffer.data(), static_cast<std::size_t>(mark - buffer.data())});
    if (!digits) return std::nullopt;
    const int scale = digits->scale_ - exponent;
    if (scale >= 0) return Decimal(digits->units_, scale);
    return Decimal(mpz_class(digits->units_ * PowerOfTen(-scale)), 0);
}

std::string Decimal::ToText() const {
    std::string digits = mpz_class(abs(units_)).get_str();
    const auto places = static_cast<std::size_t>(scale_);
    if (places > 0) {
        if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
        digits.insert(digits.size() - places, ".");
    }
    return sgn(units_) < 0 ? "-" + digits : digits;
}

double Decimal::ToDouble() const {
    const std::string digits = ToText();
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc::result_out_of_range && scale_ < DigitCount(units_))
        return Sign() * std::numeric_limits<double>::max();
    return value;
}

std::int64_t Decimal::ToInteger() const {
    const mpz_class whole = Truncated().units_;
    if (whole.fits_slong_p()) return whole.get_si();
    return sgn(whole) < 0 ? std::numeric_limits<std::int64_t>::min()
                          : std::numeric_limits<std::int64_t>::max();
}

Decimal Decimal::Negated() const {
    Decimal result = *this;
    result.units_ = -result.units_;
    return result;
}

Decimal Decimal::Floor() const {
    mpz_class whole;
    mpz_fdiv_q(whole.get_mpz_t(), units_.get_mpz_t(), PowerOfTen(scale_).get_mpz_t());
    return {whole, 0};
}

Decimal Decimal::Truncated() const {
    return scale_ == 0 ? *this : Decimal(mpz_class(units_ / PowerOfTen(scale_)), 0);
}

Decimal Decimal::Rounded(int places) const {
    if (places >= scale_) return *this;
    if (places < -kMaxDigits) return {};
    const mpz_class rounded = DivideRounded(units_, PowerOfTen(scale_ - places));
    return places >= 0 ? Decimal(rounded, places) : Decimal(mpz_class(rounded * PowerOfTen(-places)), 0);
}

mpz_class Decimal::UnitsAt(int scale) const {
    return scale == scale_ ? units_ : mpz_class(units_ * PowerOfTen(scale - scale_));
}

std::optional<Decimal> operator+(const Decimal& a, const Decimal& b) {
    const int scale = std::max(a.scale_, b.scale_);
    return Decimal::Checked(Decimal(mpz_class(a.UnitsAt(scale) + b.UnitsAt(scale)), scale));
}

std::optional<Decimal> operator-(const Decimal& a, const Decimal& b) {
    return a + b.Negated();
}

std::optional<Decimal> operator*(const Decimal& a, const Decimal& b) {
    return Decimal::Checked(Decimal(mpz_class(a.units_ * b.units_), a.scale_ + b.scale_));
}

std::optional<Decimal> operator/(const Decimal& a, const Decimal& b) {
    if (b.IsZero()) return std::nullopt;
    // a/b = units_a × 10^(scale_b - scale_a) / units_b. Places for 16 significant digits:
    const int magnitude = (DigitCount(a.units_) - a.scale_) - (DigitCount(b.units_) - b.scale_);
    const int places = kQuotientDigits + std::max(0, -magnitude);
    const int exponent = b.scale_ - a.scale_ + places;
    const mpz_class dividend = exponent >= 0 ? mpz_class(a.units_ * PowerOfTen(exponent)) : a.units_;
    const mpz_class divisor = exponent >= 0 ? b.units_ : mpz_class(b.units_ * PowerOfTen(-exponent));
    return Decimal::Checked(Decimal(DivideRounded(dividend, divisor), places));
}

int Compare(const Decimal& a, const Decimal& b) {
    const int scale = std::max(a.scale_, b.scale_);
    return cmp(a.UnitsAt(scale), b.UnitsAt(scale));
}

} // namespace fm
