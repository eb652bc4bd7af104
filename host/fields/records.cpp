#include "host/fields/records.h"

#include "host/engine/stream_type.h"
#include "host/fields/field_value.h"
#include "platform/text/utf.h"

#include <utility>

namespace host {
namespace {

constexpr const char* kStreamTable = "corvane_streams";
// SQLite makes a second copy of a value that it is given as a whole, and none of one that it is given in
// pieces, which however it may write twice.
constexpr std::size_t kWholeValue = std::size_t{64} << 20;
constexpr std::uint64_t kRowRoom = 1024; ///< of the other columns

} // namespace

Records::Records(Connection& connection, const Table& table)
    : connection_(connection),
      table_(table),
      numbers_(connection.Prepare("SELECT id FROM " + SqlName(table.name) +
                                  " WHERE id > ? AND id <= ? ORDER BY id LIMIT ?")),
      streams_(connection.Prepare("SELECT id, type, length(bytes) FROM corvane_streams "
                                  "WHERE field = ? AND record = ? ORDER BY position")),
      stream_deletion_(connection.Prepare("DELETE FROM corvane_streams WHERE field = ? AND record = ?")),
      stream_insertion_(connection.Prepare("INSERT INTO corvane_streams (field, record, position, type, "
                                           "bytes) VALUES (?, ?, ?, ?, ?)")) {
    std::string columns;
    std::string places;
    for (const Field& field : table.fields) {
        columns += (columns.empty() ? "" : ", ") + SqlName(field.name);
        places += places.empty() ? "?" : ", ?";
        reading_.push_back(connection.Prepare("SELECT " + SqlName(field.name) + " FROM " +
                                              SqlName(table.name) + " WHERE id = ?"));
        changing_.push_back(connection.Prepare("UPDATE " + SqlName(table.name) + " SET " +
                                               SqlName(field.name) + " = ? WHERE id = ?"));
    }
    insertion_ = connection.Prepare("INSERT INTO " + SqlName(table.name) + " (" + columns + ") VALUES (" +
                                    places + ")");
    row_ = connection.Prepare("SELECT " + columns + " FROM " + SqlName(table.name) + " WHERE id = ?");
}

std::string Records::Problem(std::int64_t record) const {
    return "record " + std::to_string(record) + ": " + connection_.Problem();
}

std::string Records::Numbers(std::int64_t after, std::int64_t last, std::size_t limit,
                             std::vector<std::int64_t>& numbers) {
    numbers.clear();
    numbers_.Bind(1, after);
    numbers_.Bind(2, last);
    numbers_.Bind(3, static_cast<std::int64_t>(limit));
    while (numbers_.Step()) numbers.push_back(numbers_.Integer(0));
    return numbers_.Good() ? "" : connection_.Problem();
}

std::string Records::Count(std::int64_t& count) {
    Statement query = connection_.Prepare("SELECT count(*) FROM " + SqlName(table_.name));
    if (!query.Step()) return connection_.Problem();
    count = query.Integer(0);
    return {};
}

std::string Records::LastNumber(std::int64_t& number) {
    Statement query = connection_.Prepare("SELECT coalesce(max(id), 0) FROM " + SqlName(table_.name));
    if (!query.Step()) return connection_.Problem();
    number = query.Integer(0);
    return {};
}

std::string Records::Read(std::int64_t record, std::size_t field, FM_Data& value) {
    const Field& described = table_.fields[field];
    Statement& reading = reading_[field];
    reading.Bind(1, record);
    value = reading.Step() ? ColumnValue(reading, 0, described.type) : ValueFor(described.type, FM_Data());
    const bool good = reading.Good();
    reading.End();
    if (!good) return Problem(record);
    if (described.type != FieldType::kContainer) return {};
    FM_BinaryData container = value.AsContainer();
    std::string problem = ReadStreams(record, described, container);
    if (!container.streams.empty()) container.reference.clear();
    value.SetContainer(container);
    return problem;
}

std::string Records::ReadStreams(std::int64_t record, const Field& field, FM_BinaryData& container) {
    streams_.Bind(1, field.id);
    streams_.Bind(2, record);
    std::string problem;
    while (problem.empty() && streams_.Step()) {
        const auto type = StreamType(streams_.Text(1));
        const auto bytes = std::make_shared<fm::Bytes>(static_cast<std::size_t>(streams_.Integer(2)));
        if (!type) {
            problem = "record " + std::to_string(record) + ": a stream's type has not four bytes";
        } else if (!connection_.ReadBytes(kStreamTable, streams_.Integer(0), *bytes)) {
            problem = Problem(record);
        } else {
            container.streams.push_back({*type, bytes});
        }
    }
    if (problem.empty() && !streams_.Good()) problem = Problem(record);
    streams_.End();
    return problem;
}

std::string Records::ReadFacts(std::int64_t record, std::vector<FieldFacts>& facts) {
    facts.resize(table_.fields.size());
    row_.Bind(1, record);
    const bool found = row_.Step();
    std::string problem = row_.Good() ? "" : Problem(record);
    for (std::size_t i = 0; problem.empty() && i < facts.size(); ++i) {
        const FieldType type = table_.fields[i].type;
        const int column = static_cast<int>(i);
        facts[i].text.clear();
        facts[i].streams.clear();
        if (found && type == FieldType::kNumber) {
            facts[i].text = utf::ToUtf8(ColumnValue(row_, column, type).AsText().units);
        } else if (found) {
            facts[i].text = row_.Text(column);
        }
        if (type == FieldType::kContainer) problem = ReadStreamFacts(record, table_.fields[i], facts[i]);
    }
    row_.End();
    return problem;
}

std::string Records::ReadStreamFacts(std::int64_t record, const Field& field, FieldFacts& facts) {
    streams_.Bind(1, field.id);
    streams_.Bind(2, record);
    while (streams_.Step())
        facts.streams.push_back(
            {std::string(streams_.Text(1)), static_cast<std::uint64_t>(streams_.Integer(2))});
    return streams_.Good() ? "" : Problem(record);
}

std::string Records::Refusal(const FM_Data& value) const {
    for (const fm::Stream& stream : value.AsContainer().streams)
        if (stream.bytes->size() + kRowRoom > connection_.LargestValue())
            return "a stream of " + std::to_string(stream.bytes->size()) +
                   " bytes is too large for the database";
    return {};
}

std::string Records::Insert(std::span<const FM_Data> values) {
    std::vector<std::string> texts(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        BindColumn(insertion_, static_cast<int>(i) + 1, values[i], texts[i]);
    if (!insertion_.Run()) return connection_.Problem();
    const std::int64_t record = connection_.LastRow();
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (table_.fields[i].type != FieldType::kContainer) continue;
        std::string problem = WriteStreams(record, table_.fields[i], values[i].AsContainer());
        if (!problem.empty()) return problem;
    }
    return {};
}

std::string Records::Change(std::int64_t record, std::span<const FieldChange> changes) {
    std::string text;
    for (const FieldChange& change : changes) {
        const Field& field = table_.fields[change.field];
        Statement& changing = changing_[change.field];
        BindColumn(changing, 1, change.value, text);
        changing.Bind(2, record);
        if (!changing.Run()) return Problem(record);
        if (connection_.ChangedRows() == 0) return {};
        if (field.type != FieldType::kContainer) continue;
        stream_deletion_.Bind(1, field.id);
        stream_deletion_.Bind(2, record);
        if (!stream_deletion_.Run()) return Problem(record);
        std::string problem = WriteStreams(record, field, change.value.AsContainer());
        if (!problem.empty()) return problem;
    }
    return {};
}

std::string Records::WriteStreams(std::int64_t record, const Field& field, const FM_BinaryData& container) {
    std::int64_t position = 0;
    for (const fm::Stream& stream : container.streams) {
        const fm::Bytes& bytes = *stream.bytes;
        const std::string type = StreamTypeText(stream.type);
        const bool whole = bytes.size() <= kWholeValue;
        stream_insertion_.Bind(1, field.id);
        stream_insertion_.Bind(2, record);
        stream_insertion_.Bind(3, position++);
        stream_insertion_.Bind(4, type);
        if (whole) {
            stream_insertion_.BindBytes(5, bytes);
        } else {
            stream_insertion_.BindRoom(5, bytes.size());
        }
        if (!stream_insertion_.Run() ||
            (!whole && !connection_.WriteBytes(kStreamTable, connection_.LastRow(), bytes)))
            return Problem(record);
    }
    return {};
}

} // namespace host
