#include "platform/fmwrapper/objects.h"
#include "platform/fmwrapper/operation.h"
#include "platform/text/utf.h"

using fm::Operation;

FM_Data::FM_Data(const FM_Data& other)
    : fm::Counted(other),
      locale(other.locale),
      type_(other.type_),
      text_(other.text_),
      number_(other.number_),
      has_number_(other.has_number_),
      container_(other.container_ ? std::make_unique<FM_BinaryData>(*other.container_) : nullptr) {}

FM_Data& FM_Data::operator=(const FM_Data& other) {
    if (this != &other) *this = FM_Data(other);
    return *this;
}

void FM_Data::SetText(std::u16string text) {
    text_.emplace(std::move(text));
    number_.reset();
    container_.reset();
    type_ = kFM_TypeText;
}

void FM_Data::SetNumber(fm::Decimal number) {
    number_.emplace(std::move(number));
    has_number_ = true;
    text_.reset();
    container_.reset();
    type_ = kFM_TypeNumber;
}

void FM_Data::SetContainer(const FM_BinaryData& container) {
    container_ = std::make_unique<FM_BinaryData>(container);
    text_.reset();
    number_.reset();
    type_ = kFM_TypeContainer;
}

bool FM_Data::IsEmpty() const {
    if (type_ == kFM_TypeContainer) return container_->streams.empty() && container_->reference.empty();
    return AsText().units.empty();
}

const FM_Text& FM_Data::AsText() const {
    if (!text_) {
        text_.emplace();
        if (type_ == kFM_TypeNumber) {
            text_->units = utf::ToUtf16(number_->value.ToText());
        } else if (type_ == kFM_TypeContainer) {
            const std::int32_t path = container_->IndexOf(0x464E414D); // "FNAM"
            if (path >= 0) {
                const fm::Bytes& bytes = *container_->streams[static_cast<std::size_t>(path)].bytes;
                text_->units = utf::ToUtf16({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
            } else {
                text_->units = container_->reference;
            }
        }
    }
    return *text_;
}

const FM_FixPt& FM_Data::AsNumber() const {
    if (!number_) {
        const auto value = fm::Decimal::FromText(AsText().units);
        has_number_ = value.has_value();
        number_.emplace(value.value_or(fm::Decimal()));
    }
    return *number_;
}

const FM_BinaryData& FM_Data::AsContainer() const {
    if (!container_) container_ = std::make_unique<FM_BinaryData>();
    return *container_;
}

bool FM_Data::AsBoolean() const {
    return type_ == kFM_TypeContainer ? !IsEmpty() : !AsNumber().value.IsZero();
}

bool FM_Data::HasNumber() const {
    (void)AsNumber();
    return has_number_;
}

FM_Data* FM_Data_Constructor1(FM_Status* status) {
    return Operation("FM_Data_Constructor1", status, [] { return new FM_Data(); });
}

void FM_Data_Delete(FM_Data* data, FM_Status* status) {
    fm::Delete("FM_Data_Delete", data, status);
}

FM_NativeType FM_Data_GetNativeType(const FM_Data* data, FM_Status* status) {
    return Operation("FM_Data_GetNativeType", status, [&] { return data->Type(); });
}

bool FM_Data_IsEmpty(const FM_Data* data, FM_Status* status) {
    return Operation("FM_Data_IsEmpty", status, [&] { return data->IsEmpty(); });
}

const FM_Text* FM_Data_GetAsText(const FM_Data* data, FM_Status* status) {
    return Operation("FM_Data_GetAsText", status, [&] { return &data->AsText(); });
}

const FM_BinaryData* FM_Data_GetBinaryData(const FM_Data* data, FM_Status* status) {
    return Operation("FM_Data_GetBinaryData", status, [&] { return &data->AsContainer(); });
}

const FM_Locale* FM_Data_GetLocale(const FM_Data* data, FM_Status* status) {
    return Operation("FM_Data_GetLocale", status, [&] { return &data->locale; });
}

FM_Error FM_Data_SetAsText(FM_Data* data, const FM_Text* text, const FM_Locale* locale, FM_NativeType type,
                           FM_Status* status) {
    return Operation("FM_Data_SetAsText", status, [&]() -> FM_Error {
        if (type != kFM_TypeText) return kFM_ErrorWrongParameter;
        data->SetText(text->units);
        data->locale = *locale;
        return kFM_ErrorNone;
    });
}

FM_Error FM_Data_SetAsNumber(FM_Data* data, const FM_FixPt* number, FM_NativeType type, FM_Status* status) {
    return Operation("FM_Data_SetAsNumber", status, [&]() -> FM_Error {
        if (type != kFM_TypeNumber) return kFM_ErrorWrongParameter;
        data->SetNumber(number->value);
        return kFM_ErrorNone;
    });
}

void FM_Data_SetBinaryData(FM_Data* data, const FM_BinaryData* binary, bool force_binary, FM_Status* status) {
    Operation("FM_Data_SetBinaryData", status, [&] {
        // Without force the host would keep a lone text stream as text; this host holds no such streams.
        (void)force_binary;
        data->SetContainer(*binary);
    });
}
