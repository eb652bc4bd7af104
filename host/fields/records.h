// The records of a table. Record numbers count from 1 and only grow; changes belong into a transaction of the
// caller. Each operation's text says what failed, empty on success.
#pragma once

#include "host/fields/catalogue.h"
#include "host/fields/connection.h"
#include "platform/fmwrapper/objects.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host {

/// A field of a record as it is listed: all but the bytes of its streams.
struct FieldFacts {
    struct Stream {
        std::string type;   ///< four bytes
        std::uint64_t size; ///< bytes
    };
    std::string text; ///< UTF-8; of a number its decimal digits, of a container its reference
    std::vector<Stream> streams;
};

/// A value of a field, as ValueFor gives it.
struct FieldChange {
    std::size_t field; ///< index in the table
    FM_Data value;
};

class Records {
public:
    /// Both outlive the records.
    Records(Connection& connection, const Table& table);

    /// Up to `limit` numbers of records after `after` and up to `last`, in order.
    [[nodiscard]] std::string Numbers(std::int64_t after, std::int64_t last, std::size_t limit,
                                      std::vector<std::int64_t>& numbers);
    [[nodiscard]] std::string Count(std::int64_t& count);
    /// The largest number, 0 without records.
    [[nodiscard]] std::string LastNumber(std::int64_t& number);

    /// The value with all its bytes; nothing when the record is gone.
    [[nodiscard]] std::string Read(std::int64_t record, std::size_t field, FM_Data& value);
    /// One for each field, in the table's order; without text and streams when the record is gone. Room that
    /// `facts` has from another record is used again.
    [[nodiscard]] std::string ReadFacts(std::int64_t record, std::vector<FieldFacts>& facts);

    /// Why the file can't hold a container; empty when it can.
    [[nodiscard]] std::string Refusal(const FM_Data& value) const;
    /// `values` has one for each field, in the table's order.
    [[nodiscard]] std::string Insert(std::span<const FM_Data> values);
    /// A record that is gone stays so.
    [[nodiscard]] std::string Change(std::int64_t record, std::span<const FieldChange> changes);

private:
    [[nodiscard]] std::string ReadStreams(std::int64_t record, const Field& field, FM_BinaryData& container);
    [[nodiscard]] std::string ReadStreamFacts(std::int64_t record, const Field& field, FieldFacts& facts);
    [[nodiscard]] std::string WriteStreams(std::int64_t record, const Field& field,
                                           const FM_BinaryData& container);
    [[nodiscard]] std::string Problem(std::int64_t record) const;

    Connection& connection_;
    const Table& table_;
    Statement numbers_;
    Statement insertion_;
    Statement row_;                   ///< all columns of a record
    std::vector<Statement> reading_;  ///< one for each field
    std::vector<Statement> changing_; ///< one for each field
    Statement streams_;
    Statement stream_deletion_;
    Statement stream_insertion_;
};

} // namespace host
