#include "recorder/database.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace vane::recorder {
namespace {

constexpr int kBusyPatience = 10'000;  // ms; a reader holds the file for moments only

}  // namespace

void CStatement::Finish::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

CStatement::CStatement(CDatabase& database, std::string_view sql) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  const int result = sqlite3_prepare_v2(database.Handle(), sql.data(), static_cast<int>(sql.size()),
                                        &statement, nullptr);
  statement_.reset(statement);
  if (result != SQLITE_OK) database_.Fail();
}

CStatement& CStatement::Bind(int place, std::int64_t value) {
  sqlite3_bind_int64(statement_.get(), place, value);
  return *this;
}

CStatement& CStatement::Bind(int place, double value) {
  sqlite3_bind_double(statement_.get(), place, value);
  return *this;
}

CStatement& CStatement::Bind(int place, const std::string& value) {
  sqlite3_bind_text64(statement_.get(), place, value.data(), value.size(), SQLITE_TRANSIENT,
                      SQLITE_UTF8);
  return *this;
}

CStatement& CStatement::BindNull(int place) {
  sqlite3_bind_null(statement_.get(), place);
  return *this;
}

bool CStatement::Next() {
  const int result = sqlite3_step(statement_.get());
  if (result == SQLITE_ROW) return true;
  if (result == SQLITE_DONE) return false;
  database_.Fail();
}

void CStatement::Run() {
  try {
    while (Next()) continue;
  } catch (...) {
    Reset();
    throw;
  }
  Reset();
}

void CStatement::Reset() { sqlite3_reset(statement_.get()); }

std::int64_t CStatement::Whole(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

double CStatement::Real(int column) const {
  return sqlite3_column_double(statement_.get(), column);
}

std::string CStatement::Text(int column) const {
  const auto* const text =
      reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
  if (text == nullptr) return {};
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

bool CStatement::IsNull(int column) const {
  return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

void CDatabase::Finish::operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }

CDatabase::CDatabase(const std::filesystem::path& path, EAccess access) : path_(path) {
  if (access == EAccess::READ) {
    OpenToRead();
    return;
  }
  Open(path.string(), SQLITE_OPEN_READWRITE | (access == EAccess::MAKE ? SQLITE_OPEN_CREATE : 0));
}

void CDatabase::Open(const std::string& name, int flags) {
  sqlite3* handle = nullptr;
  const int result = sqlite3_open_v2(name.c_str(), &handle, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  handle_.reset(handle);
  if (result != SQLITE_OK) Fail();
  sqlite3_extended_result_codes(handle, 1);
  sqlite3_busy_timeout(handle, kBusyPatience);
}

// Reading needs files beside this one, which are taken away again; where none can be made, a file
// that is complete in itself can be read all the same.
void CDatabase::OpenToRead() {
  const std::filesystem::path folder = path_.has_parent_path() ? path_.parent_path() : ".";
  if (access(folder.c_str(), W_OK) == 0 && access(path_.c_str(), W_OK) == 0) {
    Open(path_.string(), SQLITE_OPEN_READWRITE);
    return Run("PRAGMA query_only = 1");
  }
  std::error_code none;
  if (std::filesystem::exists(path_.string() + "-shm", none)) {
    return Open(path_.string(), SQLITE_OPEN_READONLY);
  }
  std::string name = "file:";
  for (const char c : std::filesystem::absolute(path_).string()) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned char>(c));
    name +=
        std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '/' ? std::string(1, c) : escape;
  }
  Open(name + "?immutable=1", SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
}

void CDatabase::Run(const std::string& sql) {
  if (sqlite3_exec(Handle(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail();
}

std::int64_t CDatabase::Number(const std::string& sql) {
  CStatement statement(*this, sql);
  return statement.Next() ? statement.Whole(0) : 0;
}

void CDatabase::Fail() const {
  const int code = sqlite3_extended_errcode(Handle());
  const int cause = sqlite3_system_errno(Handle());
  std::string text = path_.string() + ": ";
  // What the file's own library calls a full disk, and what it has no word for: no room for the
  // index that readers and the writer share, or a quota.
  const bool isioerror = (code & 0xFF) == SQLITE_IOERR || (code & 0xFF) == SQLITE_CANTOPEN;
  if ((code & 0xFF) == SQLITE_FULL || code == SQLITE_IOERR_SHMSIZE ||
      (isioerror && (cause == ENOSPC || cause == EDQUOT))) {
    throw CDiskFull(text + "there is no room on the disk.");
  }
  if (code == SQLITE_NOTADB) throw CStoreError(text + "it is no recording.");
  text += sqlite3_errmsg(Handle());
  if (isioerror && cause != 0) text += std::string(" (") + std::strerror(cause) + ")";
  throw CStoreError(text + ".");
}

CTransaction::CTransaction(CDatabase& database, bool iswriting) : database_(database) {
  database_.Run(iswriting ? "BEGIN IMMEDIATE" : "BEGIN");
}

CTransaction::~CTransaction() {
  // A failure may have taken it back already.
  if (isopen_ && sqlite3_get_autocommit(database_.Handle()) == 0) {
    sqlite3_exec(database_.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
  }
}

void CTransaction::Commit() {
  database_.Run("COMMIT");
  isopen_ = false;
}

}  // namespace vane::recorder
