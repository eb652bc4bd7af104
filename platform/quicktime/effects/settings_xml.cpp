#include "platform/quicktime/effects/settings_xml.h"

#include "platform/quicktime/type_codes.h"

#include <algorithm>
#include <array>
#include <expat.h>
#include <limits>
#include <memory>
#include <new>

namespace qt {
namespace {

using Kind = EffectParameter::Kind;

std::string RangeText(const EffectParameter& parameter) {
    std::string text;
    switch (parameter.kind) {
    case Kind::kToggle: return "0 or 1";
    case Kind::kColour: return "#rrggbb";
    case Kind::kChoice:
        for (const EffectChoice& choice : parameter.choices)
            text.append(text.empty() ? "one of " : ", ").append(choice.word);
        return text;
    default: break;
    }
    EffectValues ends(std::span(&parameter, 1));
    ends.Set(0, parameter.minimum);
    text = ends.TextAt(0) + " to ";
    ends.Set(0, parameter.maximum);
    text += ends.TextAt(0);
    if (!parameter.unit.empty()) text.append(" ").append(parameter.unit);
    return text;
}

void AppendParameter(const EffectParameter& parameter, const std::string& value, std::string& xml) {
    xml.append("  <!-- ").append(parameter.label).append(": ").append(RangeText(parameter));
    xml.append(", default ").append(EffectValues(std::span(&parameter, 1)).TextAt(0)).append(" -->\n");
    xml.append("  <").append(parameter.key).append(">").append(value);
    xml.append("</").append(parameter.key).append(">\n");
}

/// What the parser's callbacks collect. Nothing here allocates or throws: the parser is C.
class Reader {
public:
    explicit Reader(XML_Parser parser) : parser_(parser) {}

    void Begin(std::string_view name, const char** attributes) {
        constexpr int kDeepest = 64;
        if (++depth_ > kDeepest) Stop();
        if (depth_ == 1 && name == "effect") ReadType(attributes);
        if (depth_ == 2 && settings_) parameter_ = settings_->values.Find(name);
        size_ = 0;
    }

    void Add(std::string_view text) {
        if (depth_ != 2 || !parameter_) return;
        const std::size_t added = std::min(text.size(), text_.size() - size_);
        std::copy_n(text.data(), added, text_.data() + size_);
        size_ += added;
    }

    void End() {
        if (depth_-- != 2 || !parameter_) return;
        const bool complete = size_ < text_.size();
        settings_->values.SetText(*parameter_,
                                  complete ? std::string_view(text_.data(), size_) : std::string_view());
        parameter_.reset();
    }

    void Stop() { XML_StopParser(parser_, XML_FALSE); }

    [[nodiscard]] const std::optional<EffectSettings>& settings() const { return settings_; }

private:
    void ReadType(const char** attributes) {
        for (; attributes[0] != nullptr; attributes += 2) {
            if (std::string_view(attributes[0]) != "type") continue;
            const Effect* effect = FindEffect(CodeOfText(attributes[1]));
            if (effect != nullptr)
                settings_.emplace(EffectSettings{effect, EffectValues(effect->parameters)});
        }
    }

    XML_Parser parser_;
    int depth_ = 0;
    std::optional<EffectSettings> settings_;
    std::optional<std::size_t> parameter_; ///< whose element is open
    std::array<char, 64> text_{};          ///< of that element; more than that is no value
    std::size_t size_ = 0;
};

void XMLCALL OnBegin(void* reader, const char* name, const char** attributes) {
    static_cast<Reader*>(reader)->Begin(name, attributes);
}

void XMLCALL OnEnd(void* reader, const char*) {
    static_cast<Reader*>(reader)->End();
}

void XMLCALL OnText(void* reader, const char* text, int size) {
    static_cast<Reader*>(reader)->Add({text, static_cast<std::size_t>(size)});
}

void XMLCALL OnDocumentType(void* reader, const char*, const char*, const char*, int) {
    static_cast<Reader*>(reader)->Stop();
}

struct ParserFree {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

} // namespace

std::string EffectSettingsToXml(const EffectSettings& settings) {
    const Effect& effect = *settings.effect;
    std::string xml = "<?xml version=\"1.0\"?>\n<!-- ";
    xml.append(effect.name)
        .append(effect.sources == 1 ? ": one image" : ": two images, A and B")
        .append(" -->\n");
    xml.append("<effect type=\"").append(TextOfCode(effect.type)).append("\">\n");
    for (std::size_t i = 0; i < effect.parameters.size(); ++i)
        AppendParameter(effect.parameters[i], settings.values.TextAt(i), xml);
    return xml.append("</effect>\n");
}

std::optional<EffectSettings> EffectSettingsFromXml(std::string_view xml) {
    if (xml.size() > std::numeric_limits<int>::max()) return std::nullopt;
    const std::unique_ptr<XML_ParserStruct, ParserFree> parser(XML_ParserCreate("UTF-8"));
    if (parser == nullptr) throw std::bad_alloc();
    Reader reader(parser.get());
    XML_SetUserData(parser.get(), &reader);
    XML_SetElementHandler(parser.get(), OnBegin, OnEnd);
    XML_SetCharacterDataHandler(parser.get(), OnText);
    XML_SetStartDoctypeDeclHandler(parser.get(), OnDocumentType);
    const XML_Status status = XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE);
    return status == XML_STATUS_OK ? reader.settings() : std::nullopt;
}

} // namespace qt
