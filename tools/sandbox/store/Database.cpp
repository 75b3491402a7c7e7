// SPDX-License-Identifier: Apache-2.0
#include "store/Database.h"

#include <stdexcept>

namespace orvane::sandbox {

namespace {

constexpr int busyTimeoutMillis = 10'000;

[[noreturn]] void fail(sqlite3* handle, const std::string& what) {
  throw std::runtime_error("database: " + what + ": " + sqlite3_errmsg(handle));
}

}  // namespace

Rows::~Rows() {
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

bool Rows::next() {
  const int result = sqlite3_step(statement_);
  if (result == SQLITE_ROW) return true;
  if (result == SQLITE_DONE) return false;
  fail(sqlite3_db_handle(statement_), sqlite3_sql(statement_));
}

bool Rows::isNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

std::string_view Rows::text(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  if (bytes == nullptr) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::int64_t Rows::integer(int column) const { return sqlite3_column_int64(statement_, column); }

double Rows::real(int column) const { return sqlite3_column_double(statement_, column); }

std::optional<std::string_view> Rows::optionalText(int column) const {
  return isNull(column) ? std::nullopt : std::optional{text(column)};
}

std::optional<std::int64_t> Rows::optionalInteger(int column) const {
  return isNull(column) ? std::nullopt : std::optional{integer(column)};
}

std::optional<double> Rows::optionalReal(int column) const {
  return isNull(column) ? std::nullopt : std::optional{real(column)};
}

DatabaseConnection::DatabaseConnection(const std::filesystem::path& file) {
  sqlite3* handle = nullptr;
  constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  const int result = sqlite3_open_v2(file.c_str(), &handle, flags, nullptr);
  handle_.reset(handle);
  if (result != SQLITE_OK) fail(handle, file.string());
  sqlite3_busy_timeout(handle, busyTimeoutMillis);
  executeScript(
      "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = ON;"
      "PRAGMA mmap_size = 268435456;"
      // A row that is replaced counts as deleted for whoever keeps it (store/Changes.h).
      "PRAGMA recursive_triggers = ON;");
}

sqlite3_stmt* DatabaseConnection::prepare(const std::string& sql) {
  auto& statement = statements_[sql];
  if (!statement) {
    sqlite3_stmt* raw = nullptr;
    const int result =
        sqlite3_prepare_v3(handle_.get(), sql.c_str(), static_cast<int>(sql.size() + 1),
                           SQLITE_PREPARE_PERSISTENT, &raw, nullptr);
    if (result != SQLITE_OK) fail(handle_.get(), sql);
    statement.reset(raw);
  }
  return statement.get();
}

void DatabaseConnection::bind(sqlite3_stmt* statement, int index, std::string_view value) {
  sqlite3_bind_text(statement, index, value.data(), static_cast<int>(value.size()),
                    SQLITE_TRANSIENT);
}

void DatabaseConnection::executeScript(const char* sql) {
  if (sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
    fail(handle_.get(), "script");
  }
}

void DatabaseConnection::copyFrom(const DatabaseConnection& other) {
  constexpr int everyPage = -1;
  const std::unique_ptr<sqlite3_backup, decltype(&sqlite3_backup_finish)> copy{
      sqlite3_backup_init(handle_.get(), "main", other.handle_.get(), "main"),
      &sqlite3_backup_finish};
  if (!copy) fail(handle_.get(), "copying");
  // Whoever reads at the moment is waited for as long as for any other change.
  const int result = sqlite3_backup_step(copy.get(), everyPage);
  if (result != SQLITE_DONE) {
    throw std::runtime_error(std::string{"database: copying: "} + sqlite3_errstr(result));
  }
}

Transaction::Transaction(DatabaseConnection& connection) : connection_(connection) {
  connection_.execute("BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
  if (open_) sqlite3_exec(connection_.handle_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
  connection_.execute("COMMIT");
  open_ = false;
}

Database::Lease Database::lease() {
  {
    const std::lock_guard lock{mutex_};
    if (!idle_.empty()) {
      auto connection = std::move(idle_.back());
      idle_.pop_back();
      return {*this, std::move(connection)};
    }
  }
  return {*this, std::make_unique<DatabaseConnection>(file_)};
}

void Database::giveBack(std::unique_ptr<DatabaseConnection> connection) {
  const std::lock_guard lock{mutex_};
  idle_.push_back(std::move(connection));
}

}  // namespace orvane::sandbox
