// SQLite's C interface with owners (https://www.sqlite.org/c3ref/intro.html). Operations answer
// SQLite's result codes; nothing throws.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace desktop {

/// A prepared statement, kept for many runs. Must not outlive its database.
class Statement {
 public:
  /// Answers SQLITE_OK, or why the text cannot be prepared.
  int prepare(sqlite3* database, const char* sql);
  explicit operator bool() const { return statement_ != nullptr; }  ///< true once prepared

  // Parameters are numbered from 1. Texts and bytes must stay alive until the run ends.
  void bind(int parameter, std::string_view text);
  void bindBytes(int parameter, std::string_view bytes);
  void bind(int parameter, std::optional<std::int64_t> number);  ///< none binds NULL

  /// SQLITE_ROW, SQLITE_DONE, or why it failed.
  int step() { return sqlite3_step(statement_.get()); }

  // Columns of the row, numbered from 0.
  std::string text(int column) const;
  std::string bytes(int column) const;
  std::optional<std::int64_t> integer(int column) const;  ///< none for NULL

  /// Ends the run, and with it the statement's hold on the file.
  void reset();

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// Resets a statement when the work with its rows is over.
class StatementRun {
 public:
  explicit StatementRun(Statement& statement) : statement_(statement) {}
  ~StatementRun() { statement_.reset(); }
  StatementRun(const StatementRun&) = delete;
  StatementRun& operator=(const StatementRun&) = delete;

 private:
  Statement& statement_;
};

/// A connection to a database file.
class Database {
 public:
  /// Opens a path (or a file: address with SQLITE_OPEN_URI); result codes are extended ones.
  int open(const std::string& path, int flags);
  /// Opens a database that lies in memory, and on the disk as far as it grows large; it is gone
  /// once it is closed.
  int openTemporary();
  void close() { database_.reset(); }

  sqlite3* handle() const { return database_.get(); }
  explicit operator bool() const { return database_ != nullptr; }

  /// Runs statements that answer nothing, or whose answer does not matter.
  int execute(const char* sql);

  /// The first number that a query answers; a result code in its place when there is none.
  int readInteger(const char* sql, std::int64_t& number);

  /// Makes this database the same as another one is at one moment, which is held meanwhile.
  int copyFrom(Database& other);

  /// Closing leaves the write-ahead log as it is, even for the last connection.
  void leaveLogOnClose();

  /// True when the path no longer names the file that is open.
  bool hasMoved() const;

 private:
  struct Close {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
  };
  std::unique_ptr<sqlite3, Close> database_;
};

/// A transaction, undone unless it is committed; what is read in one is as it was at one moment.
class Transaction {
 public:
  enum class Kind { read, write };
  Transaction(Database& database, Kind kind)
      : database_(database),
        result_(database.execute(kind == Kind::read ? "BEGIN" : "BEGIN IMMEDIATE")) {}
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  int begun() const { return result_; }  ///< SQLITE_OK, or why it could not begin
  int commit() { return database_.execute("COMMIT"); }

 private:
  Database& database_;
  int result_;
};

/// Brings a database forward: step n leads from version n (its user_version) to n + 1. All steps
/// that are due are one commit; a database of this version or a newer one is left as it is.
int migrate(Database& database, std::span<const char* const> steps);

}  // namespace desktop
