#include "host/fields/field_value.h"

#include "platform/text/utf.h"

#include <charconv>
#include <utility>

namespace host {
namespace {

FM_Data ContainerOf(std::u16string reference) {
    FM_BinaryData container;
    container.reference = std::move(reference);
    FM_Data value;
    value.SetContainer(container);
    return value;
}

// In the smallest form that gives the same decimal back, so that other programs can calculate with it.
void BindNumber(Statement& statement, int parameter, const fm::Decimal& number, std::string& text) {
    text = number.ToText();
    std::int64_t integer = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, integer);
    const double real = number.ToDouble();
    if (parsed.ptr == end && parsed.ec == std::errc()) {
        statement.Bind(parameter, integer);
    } else if (const auto again = fm::Decimal::FromDouble(real); again && Compare(*again, number) == 0) {
        statement.Bind(parameter, real);
    } else {
        statement.Bind(parameter, text);
    }
}

} // namespace

FM_Data ValueFor(FieldType type, const FM_Data& value) {
    switch (type) {
    case FieldType::kText: return FM_Data(value.AsText().units);
    case FieldType::kNumber: return value.HasNumber() ? FM_Data(value.AsNumber().value) : FM_Data();
    default: break;
    }
    return value.Type() == kFM_TypeContainer ? value : ContainerOf(value.AsText().units);
}

void BindColumn(Statement& statement, int parameter, const FM_Data& value, std::string& text) {
    if (value.Type() == kFM_TypeNumber) return BindNumber(statement, parameter, value.AsNumber().value, text);
    text =
        utf::ToUtf8(value.Type() == kFM_TypeContainer ? value.AsContainer().reference : value.AsText().units);
    if (text.empty()) {
        statement.BindNothing(parameter);
    } else {
        statement.Bind(parameter, text);
    }
}

FM_Data ColumnValue(const Statement& statement, int column, FieldType type) {
    const bool nothing = statement.IsNothing(column);
    if (type == FieldType::kContainer) return ContainerOf(utf::ToUtf16(statement.Text(column)));
    if (type == FieldType::kText || nothing) return FM_Data(utf::ToUtf16(statement.Text(column)));
    if (statement.IsInteger(column)) return FM_Data(fm::Decimal(statement.Integer(column)));
    const auto number = statement.IsReal(column) ? fm::Decimal::FromDouble(statement.Real(column))
                                                 : fm::Decimal::FromText(statement.Text(column));
    return number ? FM_Data(*number) : FM_Data();
}

} // namespace host
