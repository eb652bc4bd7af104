// A connection to an SQLite file: statements, transactions, and large values in pieces.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace host {

/// A prepared statement. Parameters count from 1, columns from 0. It does not outlive its connection.
class Statement {
public:
    /// Of no connection: every step fails.
    Statement() = default;
    explicit Statement(sqlite3_stmt* statement) : statement_(statement) {}

    void Bind(int parameter, std::int64_t value);
    void Bind(int parameter, double value);
    /// The bytes are not copied: they stay as they are until the statement has ended.
    void Bind(int parameter, std::string_view text);
    void BindBytes(int parameter, std::span<const std::uint8_t> bytes);
    /// A place for that many bytes, to be written in pieces.
    void BindRoom(int parameter, std::uint64_t size);
    void BindNothing(int parameter);

    /// True when there is a row. At the end and after a failure the statement is ready to start anew, with
    /// its parameters as they were.
    bool Step();
    /// For a statement without rows, or when no more are wanted: steps once and ends. False when it failed.
    bool Run();
    void End();
    /// False when the latest step failed; the connection knows why.
    [[nodiscard]] bool Good() const { return good_; }

    [[nodiscard]] bool IsNothing(int column) const;
    [[nodiscard]] bool IsInteger(int column) const;
    [[nodiscard]] bool IsReal(int column) const;
    [[nodiscard]] std::int64_t Integer(int column) const;
    [[nodiscard]] double Real(int column) const;
    /// Good until the next step.
    [[nodiscard]] std::string_view Text(int column) const;

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
    bool good_ = true;
};

/// Of one thread.
class Connection {
public:
    /// Opens an existing file and waits for other processes from then on. The text says what failed; empty
    /// on success.
    [[nodiscard]] std::string Open(const std::string& path);

    /// Runs statements without parameters and rows.
    [[nodiscard]] bool Execute(const char* statements);
    /// A statement that fails at every step when the text is wrong.
    [[nodiscard]] Statement Prepare(const std::string& text);
    /// Row number that the latest insertion made.
    [[nodiscard]] std::int64_t LastRow() const;
    /// How many rows the latest change touched.
    [[nodiscard]] std::int64_t ChangedRows() const;
    /// In bytes, all columns of a row together.
    [[nodiscard]] std::uint64_t LargestValue() const;

    /// Reads, or writes, all of the value in column `bytes` of a row. The size is that of the value.
    [[nodiscard]] bool ReadBytes(const char* table, std::int64_t row, std::span<std::uint8_t> bytes);
    [[nodiscard]] bool WriteBytes(const char* table, std::int64_t row, std::span<const std::uint8_t> bytes);

    /// Why the latest call failed, for a person.
    [[nodiscard]] std::string Problem() const;

private:
    struct Closer {
        void operator()(sqlite3* connection) const;
    };
    std::unique_ptr<sqlite3, Closer> connection_;
    std::string path_;
};

/// While it lives, reading sees the file as it was at the first reading, and need not lock it anew each time.
/// Meanwhile the log beside the file can only grow.
class Snapshot {
public:
    explicit Snapshot(Connection& connection);
    ~Snapshot();
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

private:
    Connection& connection_;
};

/// Takes the file's one right to write, and gives all changes up unless they are committed.
class Transaction {
public:
    explicit Transaction(Connection& connection);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// False when it could not begin; the connection knows why.
    [[nodiscard]] bool Good() const { return open_; }
    [[nodiscard]] bool Commit();

private:
    Connection& connection_;
    bool open_;
};

} // namespace host
