// SPDX-License-Identifier: Apache-2.0
//
// SQLite with what the resources need of it: prepared statements that stay prepared, and one
// connection per request at work.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvane::sandbox {

/// The rows of a running statement. Texts point into the current row and die with the next step.
class Rows {
 public:
  explicit Rows(sqlite3_stmt* statement) : statement_(statement) {}
  ~Rows();
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  [[nodiscard]] bool next();

  [[nodiscard]] bool isNull(int column) const;
  [[nodiscard]] std::string_view text(int column) const;
  [[nodiscard]] std::int64_t integer(int column) const;
  [[nodiscard]] double real(int column) const;
  [[nodiscard]] bool boolean(int column) const { return integer(column) != 0; }

  [[nodiscard]] std::optional<std::string_view> optionalText(int column) const;
  [[nodiscard]] std::optional<std::int64_t> optionalInteger(int column) const;
  [[nodiscard]] std::optional<double> optionalReal(int column) const;

 private:
  sqlite3_stmt* statement_;
};

/// One SQLite connection, for one thread at a time.
class DatabaseConnection {
 public:
  explicit DatabaseConnection(const std::filesystem::path& file);

  /// The statement is prepared once and kept under its text. One query of a text runs at a time.
  template <class... Values>
  [[nodiscard]] Rows query(const std::string& sql, const Values&... values) {
    sqlite3_stmt* statement = prepare(sql);
    int index = 0;
    (bind(statement, ++index, values), ...);
    return Rows{statement};
  }

  /// Runs a statement without rows and returns how many rows it changed.
  template <class... Values>
  int execute(const std::string& sql, const Values&... values) {
    {
      Rows rows = query(sql, values...);
      while (rows.next()) {
      }
    }
    return sqlite3_changes(handle_.get());
  }

  void executeScript(const char* sql);
  /// Puts a copy of another file's data into this one's place, in one go.
  void copyFrom(const DatabaseConnection& other);
  [[nodiscard]] std::int64_t lastInsertId() const {
    return sqlite3_last_insert_rowid(handle_.get());
  }

 private:
  friend class Transaction;
  sqlite3_stmt* prepare(const std::string& sql);

  static void bind(sqlite3_stmt* statement, int index, std::string_view value);
  static void bind(sqlite3_stmt* statement, int index, const std::string& value) {
    bind(statement, index, std::string_view{value});
  }
  static void bind(sqlite3_stmt* statement, int index, const char* value) {
    bind(statement, index, std::string_view{value});
  }
  static void bind(sqlite3_stmt* statement, int index, std::integral auto value) {
    sqlite3_bind_int64(statement, index, static_cast<sqlite3_int64>(value));
  }
  static void bind(sqlite3_stmt* statement, int index, double value) {
    sqlite3_bind_double(statement, index, value);
  }
  static void bind(sqlite3_stmt* statement, int index, std::nullptr_t) {
    sqlite3_bind_null(statement, index);
  }
  template <class T>
  static void bind(sqlite3_stmt* statement, int index, const std::optional<T>& value) {
    value ? bind(statement, index, *value) : bind(statement, index, nullptr);
  }

  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
  };
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3, Close> handle_;
  std::unordered_map<std::string, std::unique_ptr<sqlite3_stmt, Finalize>> statements_;
};

/// Takes the write lock at once; what is not committed is rolled back.
class Transaction {
 public:
  explicit Transaction(DatabaseConnection& connection);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void commit();

 private:
  DatabaseConnection& connection_;
  bool open_ = true;
};

/// A file, and the connections to it that are idle at the moment.
class Database {
 public:
  explicit Database(std::filesystem::path file) : file_(std::move(file)) {}

  class Lease {
   public:
    Lease(Database& database, std::unique_ptr<DatabaseConnection> connection)
        : database_(database), connection_(std::move(connection)) {}
    ~Lease() { database_.giveBack(std::move(connection_)); }
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
    [[nodiscard]] DatabaseConnection& operator*() const { return *connection_; }
    [[nodiscard]] DatabaseConnection* operator->() const { return connection_.get(); }

   private:
    Database& database_;
    std::unique_ptr<DatabaseConnection> connection_;
  };

  [[nodiscard]] Lease lease();

 private:
  void giveBack(std::unique_ptr<DatabaseConnection> connection);

  std::filesystem::path file_;
  std::mutex mutex_;
  std::vector<std::unique_ptr<DatabaseConnection>> idle_;
};

}  // namespace orvane::sandbox
