// How a worker process tells what it worked out for a record: a line of JSON, and behind it the bytes of the
// streams that the line lists, one after the other.
#pragma once

#include "host/fields/record_work.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Message {
    std::string line; ///< with its end
    std::vector<std::shared_ptr<const fm::Bytes>> streams;
};
/// Fills the buffer with the bytes that come next; false when it can't.
using ByteSource = std::function<bool(std::uint8_t* buffer, std::size_t size)>;

Message MessageOf(const Table& table, const RecordResult& result);

/// `line` without its line end. nullopt when it is no message about this table, or bytes are missing.
std::optional<RecordResult> ReadMessage(const Table& table, std::string_view line, const ByteSource& source);

} // namespace host
