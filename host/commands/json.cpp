#include "host/commands/json.h"

#include "host/engine/stream_type.h"
#include "host/modules/nettle_library.h"
#include "platform/text/utf.h"

#include <array>
#include <nlohmann/json.hpp>

namespace host {
namespace {

using Json = nlohmann::ordered_json;

std::string Line(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Nothing when its library is not installed.
Json Sha256(const fm::Bytes& bytes) {
    if (!g_nettle.Load()) return nullptr;
    constexpr std::string_view kDigits = "0123456789abcdef";
    sha256_ctx context;
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest = {};
    g_nettle->init(&context);
    g_nettle->update(&context, bytes.size(), bytes.data());
    g_nettle->digest(&context, digest.size(), digest.data());
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

Json Streams(const FM_BinaryData& container) {
    Json streams = Json::array();
    for (const fm::Stream& stream : container.streams)
        streams.push_back({{"type", StreamTypeText(stream.type)},
                           {"size", stream.bytes->size()},
                           {"sha256", Sha256(*stream.bytes)}});
    return streams;
}

Json Container(const FieldFacts& facts) {
    Json streams = Json::array();
    for (const FieldFacts::Stream& stream : facts.streams)
        streams.push_back({{"type", stream.type}, {"size", stream.size}});
    return {{"reference", facts.text}, {"streams", streams}};
}

} // namespace

std::string JsonOf(std::string_view calculation, const Outcome& outcome) {
    const FM_Data& value = outcome.value;
    Json json = {{"calc", calculation},
                 {"error", outcome.parse_error ? Engine::kCalculationError : outcome.error}};
    if (outcome.parse_error) json["message"] = outcome.parse_error->message;
    switch (value.Type()) {
    case kFM_TypeContainer:
        json["type"] = "container";
        json["value"] = utf::ToUtf8(value.AsContainer().reference);
        json["streams"] = Streams(value.AsContainer());
        break;
    case kFM_TypeNumber:
        json["type"] = "number";
        json["value"] = value.AsNumber().value.ToText();
        break;
    default: json["type"] = "text"; json["value"] = utf::ToUtf8(value.AsText().units);
    }
    return Line(json);
}

std::string JsonOf(const fm::ExternalFunction& function) {
    return Line({{"id", function.id},
                 {"name", utf::ToUtf8(function.name)},
                 {"prototype", utf::ToUtf8(function.prototype)},
                 {"min", function.minimum},
                 {"max", function.maximum},
                 {"flags", function.flags}});
}

std::string JsonOf(const Table& table) {
    Json fields = Json::array();
    for (const Field& field : table.fields)
        fields.push_back({{"name", field.name}, {"type", FieldTypeText(field.type)}});
    return Line({{"table", table.name}, {"fields", fields}});
}

std::string JsonOf(std::int64_t record, const Table& table, const std::vector<FieldFacts>& facts) {
    Json json = {{kRecordNumber, record}};
    for (std::size_t i = 0; i < facts.size(); ++i) {
        const Field& field = table.fields[i];
        json[field.name] = field.type == FieldType::kContainer ? Container(facts[i]) : Json(facts[i].text);
    }
    return Line(json);
}

std::string JsonOf(const PluginFacts& facts) {
    return Line({{"name", facts.name},
                 {"description", facts.description},
                 {"options", facts.options},
                 {"answer", facts.answer},
                 {"version", facts.version}});
}

} // namespace host
