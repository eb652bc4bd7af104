#include "host/fields/record_messages.h"

#include "platform/text/utf.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

namespace host {
namespace {

using Json = nlohmann::ordered_json;

Json JsonOf(const Table& table, const FieldChange& change) {
    const FM_Data& value = change.value;
    Json json = {{"field", table.fields[change.field].name}};
    if (value.Type() == kFM_TypeContainer) {
        json["reference"] = utf::ToUtf8(value.AsContainer().reference);
        json["streams"] = Json::array();
        for (const fm::Stream& stream : value.AsContainer().streams)
            json["streams"].push_back({{"code", stream.type}, {"size", stream.bytes->size()}});
    } else {
        json[value.Type() == kFM_TypeNumber ? "number" : "text"] = utf::ToUtf8(value.AsText().units);
    }
    return json;
}

FM_Data ContainerOf(const Json& json, const ByteSource& source, bool& complete) {
    FM_BinaryData container;
    container.reference = utf::ToUtf16(json.at("reference").get<std::string>());
    for (const Json& stream : json.at("streams")) {
        const auto bytes = std::make_shared<fm::Bytes>(stream.at("size").get<std::uint32_t>());
        complete = complete && source(bytes->data(), bytes->size());
        container.streams.push_back({stream.at("code").get<std::uint32_t>(), bytes});
    }
    FM_Data value;
    value.SetContainer(container);
    return value;
}

FM_Data ValueOf(const Json& json, const ByteSource& source, bool& complete) {
    if (json.contains("streams")) return ContainerOf(json, source, complete);
    if (!json.contains("number")) return FM_Data(utf::ToUtf16(json.at("text").get<std::string>()));
    const auto number = fm::Decimal::Parse(json.at("number").get<std::string>());
    return number ? FM_Data(*number) : FM_Data();
}

} // namespace

Message MessageOf(const Table& table, const RecordResult& result) {
    Json json = {{"record", result.record}, {"chosen", result.chosen}};
    if (const auto& failure = result.failure) {
        json["failure"] = {{"part", failure->part},
                           {"function", failure->function},
                           {"code", failure->code},
                           {"message", failure->message}};
    }
    json["changes"] = Json::array();
    for (const FieldChange& change : result.changes) json["changes"].push_back(JsonOf(table, change));
    Message message{json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n', {}};
    for (const FieldChange& change : result.changes)
        for (const fm::Stream& stream : change.value.AsContainer().streams)
            message.streams.push_back(stream.bytes);
    return message;
}

std::optional<RecordResult> ReadMessage(const Table& table, std::string_view line, const ByteSource& source) {
    try {
        const Json json = Json::parse(line);
        RecordResult result{.record = json.at("record").get<std::int64_t>(),
                            .chosen = json.at("chosen").get<bool>(),
                            .changes = {},
                            .failure = {}};
        if (json.contains("failure")) {
            const Json& failure = json.at("failure");
            result.failure = RecordFailure{
                failure.at("part").get<std::string>(), failure.at("function").get<std::string>(),
                failure.at("code").get<std::int32_t>(), failure.at("message").get<std::string>()};
        }
        bool complete = true;
        for (const Json& change : json.at("changes")) {
            const Field* field = table.Find(change.at("field").get<std::string>());
            if (field == nullptr) return std::nullopt;
            result.changes.push_back(
                {static_cast<std::size_t>(field - table.fields.data()), ValueOf(change, source, complete)});
        }
        return complete ? std::optional(std::move(result)) : std::nullopt;
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

} // namespace host
