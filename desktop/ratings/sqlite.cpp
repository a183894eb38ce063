#include "desktop/ratings/sqlite.h"

namespace desktop {

int Statement::prepare(sqlite3* database, const char* sql) {
  sqlite3_stmt* prepared = nullptr;
  const int result =
      sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
  statement_.reset(prepared);
  return result;
}

void Statement::bind(int parameter, std::string_view text) {
  // A null pointer would bind NULL in place of the empty text.
  const char* bytes = text.data() != nullptr ? text.data() : "";
  sqlite3_bind_text64(statement_.get(), parameter, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

void Statement::bindBytes(int parameter, std::string_view bytes) {
  sqlite3_bind_blob64(statement_.get(), parameter, bytes.data(), bytes.size(), SQLITE_STATIC);
}

void Statement::bind(int parameter, std::optional<std::int64_t> number) {
  if (!number) {
    sqlite3_bind_null(statement_.get(), parameter);
    return;
  }
  sqlite3_bind_int64(statement_.get(), parameter, *number);
}

std::string Statement::text(int column) const {
  const unsigned char* bytes = sqlite3_column_text(statement_.get(), column);
  if (bytes == nullptr) return {};
  const int length = sqlite3_column_bytes(statement_.get(), column);
  return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

std::string Statement::bytes(int column) const {
  const void* bytes = sqlite3_column_blob(statement_.get(), column);
  if (bytes == nullptr) return {};
  const int length = sqlite3_column_bytes(statement_.get(), column);
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

std::optional<std::int64_t> Statement::integer(int column) const {
  if (sqlite3_column_type(statement_.get(), column) == SQLITE_NULL) return std::nullopt;
  return sqlite3_column_int64(statement_.get(), column);
}

void Statement::reset() {
  sqlite3_reset(statement_.get());
  sqlite3_clear_bindings(statement_.get());
}

int Database::open(const std::string& path, int flags) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
  database_.reset(opened);
  if (opened != nullptr) sqlite3_extended_result_codes(opened, 1);
  return result;
}

int Database::openTemporary() {
  const int result = open("", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  if (result != SQLITE_OK) return result;
  return execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA cache_size = -32768");
}

int Database::execute(const char* sql) {
  return sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr);
}

int Database::readInteger(const char* sql, std::int64_t& number) {
  Statement query;
  if (const int result = query.prepare(database_.get(), sql); result != SQLITE_OK) return result;
  const int result = query.step();
  if (result != SQLITE_ROW) return result;
  number = query.integer(0).value_or(0);
  return SQLITE_OK;
}

int Database::copyFrom(Database& other) {
  sqlite3_backup* copying = sqlite3_backup_init(database_.get(), "main", other.handle(), "main");
  if (copying == nullptr) return sqlite3_extended_errcode(database_.get());
  const int result = sqlite3_backup_step(copying, -1);
  const int finished = sqlite3_backup_finish(copying);
  return result == SQLITE_DONE ? finished : result;
}

void Database::leaveLogOnClose() {
  sqlite3_db_config(database_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

bool Database::hasMoved() const {
  int moved = 0;
  if (!database_) return false;
  sqlite3_file_control(database_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return moved != 0;
}

Transaction::~Transaction() {
  if (result_ == SQLITE_OK && sqlite3_get_autocommit(database_.handle()) == 0) {
    database_.execute("ROLLBACK");
  }
}

int migrate(Database& database, std::span<const char* const> steps) {
  Transaction transaction(database, Transaction::Kind::write);
  if (transaction.begun() != SQLITE_OK) return transaction.begun();
  std::int64_t version = 0;
  if (const int result = database.readInteger("PRAGMA user_version", version);
      result != SQLITE_OK) {
    return result;
  }
  const auto newest = static_cast<std::int64_t>(steps.size());
  if (version < 0 || version >= newest) return SQLITE_OK;
  for (const char* step : steps.subspan(static_cast<std::size_t>(version))) {
    if (const int result = database.execute(step); result != SQLITE_OK) return result;
  }
  const std::string mark = "PRAGMA user_version = " + std::to_string(newest);
  if (const int result = database.execute(mark.c_str()); result != SQLITE_OK) return result;
  return transaction.commit();
}

}  // namespace desktop
