#include "host/fields/connection.h"

#include "host/modules/sqlite_library.h"

#include <algorithm>
#include <filesystem>
#include <sys/statvfs.h>
#include <thread>
#include <utility>

namespace host {
namespace {

constexpr auto kPause = std::chrono::milliseconds(2);
constexpr int kMostPauses = 60'000; // two minutes

// Another process holds the file. SQLite's own waiting gets ever longer, and then loses every race against a
// process that takes the file again and again.
int OnBusy(void*, int times) {
    if (times >= kMostPauses) return 0;
    std::this_thread::sleep_for(kPause);
    return 1;
}

// Whether the file system can only be read: then SQLite can't put its log and its locks beside the file. A
// log that is there would be passed over; without one the file is whole.
bool CanOnlyBeRead(const std::string& path) {
    struct statvfs facts = {};
    std::error_code error;
    return ::statvfs(path.c_str(), &facts) == 0 && (facts.f_flag & ST_RDONLY) != 0 &&
           !std::filesystem::exists(path + "-wal", error);
}

// The form of a path that takes options (https://www.sqlite.org/uri.html).
std::string Unchanging(const std::string& path) {
    std::string text = "file:";
    for (const char c : path) {
        switch (c) {
        case '%': text += "%25"; break;
        case '?': text += "%3f"; break;
        case '#': text += "%23"; break;
        default: text += c;
        }
    }
    return text + "?immutable=1";
}

// A value that is open for reading or writing in pieces.
class OpenValue {
public:
    OpenValue(sqlite3* connection, const char* table, std::int64_t row, bool writable) {
        good_ = g_sqlite->blob_open(connection, "main", table, "bytes", row, writable ? 1 : 0, &value_) ==
                SQLITE_OK;
    }
    ~OpenValue() { g_sqlite->blob_close(value_); }
    OpenValue(const OpenValue&) = delete;
    OpenValue& operator=(const OpenValue&) = delete;

    // Moves all bytes by `move` (value, piece, its size, its place).
    template <class Byte, class Move>
    bool InPieces(std::span<Byte> bytes, Move move) {
        constexpr std::size_t kPiece = std::size_t{8} << 20;
        std::size_t done = 0;
        while (good_ && done < bytes.size()) {
            const std::size_t size = std::min(kPiece, bytes.size() - done);
            good_ = move(value_, bytes.data() + done, static_cast<int>(size), static_cast<int>(done)) ==
                    SQLITE_OK;
            done += size;
        }
        return good_;
    }

private:
    sqlite3_blob* value_ = nullptr;
    bool good_ = false;
};

} // namespace

void Statement::Finalizer::operator()(sqlite3_stmt* statement) const {
    g_sqlite->finalize(statement);
}

void Statement::Bind(int parameter, std::int64_t value) {
    g_sqlite->bind_int64(statement_.get(), parameter, value);
}

void Statement::Bind(int parameter, double value) {
    g_sqlite->bind_double(statement_.get(), parameter, value);
}

void Statement::Bind(int parameter, std::string_view text) {
    g_sqlite->bind_text64(statement_.get(), parameter, text.data() != nullptr ? text.data() : "", text.size(),
                          SQLITE_STATIC, SQLITE_UTF8);
}

// A value that is too large for the file leaves the parameter empty, which its column refuses.
void Statement::BindBytes(int parameter, std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return BindRoom(parameter, 0);
    g_sqlite->bind_blob64(statement_.get(), parameter, bytes.data(), bytes.size(), SQLITE_STATIC);
}

void Statement::BindRoom(int parameter, std::uint64_t size) {
    g_sqlite->bind_zeroblob64(statement_.get(), parameter, size);
}

void Statement::BindNothing(int parameter) {
    g_sqlite->bind_null(statement_.get(), parameter);
}

bool Statement::Step() {
    const int answer = statement_ != nullptr ? g_sqlite->step(statement_.get()) : SQLITE_MISUSE;
    good_ = answer == SQLITE_ROW || answer == SQLITE_DONE;
    if (answer == SQLITE_ROW) return true;
    End();
    return false;
}

bool Statement::Run() {
    Step();
    End();
    return good_;
}

void Statement::End() {
    if (statement_ != nullptr) g_sqlite->reset(statement_.get());
}

bool Statement::IsNothing(int column) const {
    return g_sqlite->column_type(statement_.get(), column) == SQLITE_NULL;
}

bool Statement::IsInteger(int column) const {
    return g_sqlite->column_type(statement_.get(), column) == SQLITE_INTEGER;
}

bool Statement::IsReal(int column) const {
    return g_sqlite->column_type(statement_.get(), column) == SQLITE_FLOAT;
}

std::int64_t Statement::Integer(int column) const {
    return g_sqlite->column_int64(statement_.get(), column);
}

double Statement::Real(int column) const {
    return g_sqlite->column_double(statement_.get(), column);
}

std::string_view Statement::Text(int column) const {
    const unsigned char* text = g_sqlite->column_text(statement_.get(), column);
    if (text == nullptr) return {};
    return {reinterpret_cast<const char*>(text),
            static_cast<std::size_t>(g_sqlite->column_bytes(statement_.get(), column))};
}

void Connection::Closer::operator()(sqlite3* connection) const {
    g_sqlite->close_v2(connection);
}

std::string Connection::Open(const std::string& path) {
    path_ = path;
    if (!g_sqlite.Load()) return path + ": " + modules::Load("sqlite").reason;
    sqlite3* connection = nullptr;
    std::error_code error;
    const std::string file = std::filesystem::canonical(path, error).string(); // SQLite follows links, too
    const bool only_read = !error && CanOnlyBeRead(file);
    const int flags = only_read ? SQLITE_OPEN_READONLY | SQLITE_OPEN_URI : SQLITE_OPEN_READWRITE;
    const int answer = g_sqlite->open_v2((only_read ? Unchanging(file) : path).c_str(), &connection,
                                         flags | SQLITE_OPEN_NOMUTEX, nullptr);
    connection_.reset(connection);
    if (answer != SQLITE_OK) return Problem();
    g_sqlite->busy_handler(connection, OnBusy, nullptr);
    // A name in quotes that no column has is an error, not a text.
    for (const int option : {SQLITE_DBCONFIG_DQS_DML, SQLITE_DBCONFIG_DQS_DDL})
        g_sqlite->db_config(connection, option, 0, static_cast<int*>(nullptr));
    // A process that dies loses nothing that was committed; a machine that loses its power may lose the
    // latest transactions, each as a whole. The log beside the file is worked off, which waits for the disk
    // twice, every 64 MiB.
    return Execute("PRAGMA synchronous = NORMAL; PRAGMA wal_autocheckpoint = 16384;"
                   "PRAGMA journal_size_limit = 67108864; PRAGMA trusted_schema = OFF;")
               ? ""
               : Problem();
}

bool Connection::Execute(const char* statements) {
    return g_sqlite->exec(connection_.get(), statements, nullptr, nullptr, nullptr) == SQLITE_OK;
}

Statement Connection::Prepare(const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    g_sqlite->prepare_v3(connection_.get(), text.data(), static_cast<int>(text.size()),
                         SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    return Statement(statement);
}

std::int64_t Connection::ChangedRows() const {
    return g_sqlite->changes64(connection_.get());
}

std::int64_t Connection::LastRow() const {
    return g_sqlite->last_insert_rowid(connection_.get());
}

std::uint64_t Connection::LargestValue() const {
    return static_cast<std::uint64_t>(g_sqlite->limit(connection_.get(), SQLITE_LIMIT_LENGTH, -1));
}

bool Connection::ReadBytes(const char* table, std::int64_t row, std::span<std::uint8_t> bytes) {
    return OpenValue(connection_.get(), table, row, false).InPieces(bytes, g_sqlite->blob_read);
}

bool Connection::WriteBytes(const char* table, std::int64_t row, std::span<const std::uint8_t> bytes) {
    return OpenValue(connection_.get(), table, row, true).InPieces(bytes, g_sqlite->blob_write);
}

std::string Connection::Problem() const {
    return path_ + ": " + g_sqlite->errmsg(connection_.get());
}

// One that could not be taken is missed in speed only.
Snapshot::Snapshot(Connection& connection) : connection_(connection) {
    (void)connection_.Execute("BEGIN");
}

Snapshot::~Snapshot() {
    (void)connection_.Execute("COMMIT");
}

Transaction::Transaction(Connection& connection)
    : connection_(connection), open_(connection.Execute("BEGIN IMMEDIATE")) {}

Transaction::~Transaction() {
    if (open_) (void)connection_.Execute("ROLLBACK");
}

bool Transaction::Commit() {
    if (!open_ || !connection_.Execute("COMMIT")) return false;
    open_ = false;
    return true;
}

} // namespace host
