// An SQLite file, as far as recordings need one.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace vane::recorder {

/// What is wrong with the file of a recording, with a text for the user.
class CStoreError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// There is no room. What was to be written can be tried again when there is.
class CDiskFull final : public CStoreError {
 public:
  using CStoreError::CStoreError;
};

class CDatabase;

/// A statement that is prepared once and run often. The database outlives it.
class CStatement {
 public:
  CStatement(CDatabase& database, std::string_view sql);

  // Values for its places, from 1 on.
  CStatement& Bind(int place, std::int64_t value);
  CStatement& Bind(int place, double value);
  CStatement& Bind(int place, const std::string& value);
  CStatement& Bind(int place, const char* value) { return Bind(place, std::string(value)); }
  template <class T>
  CStatement& Bind(int place, const std::optional<T>& value) {
    return value ? Bind(place, *value) : BindNull(place);
  }
  CStatement& BindNull(int place);

  /// The next row; false behind the last.
  bool Next();

  /// To its end; then it can be bound and run again, also when this raises.
  void Run();
  void Reset();

  // Of the row, from 0 on.
  std::int64_t Whole(int column) const;
  double Real(int column) const;
  std::string Text(int column) const;
  bool IsNull(int column) const;

 private:
  struct Finish {
    void operator()(sqlite3_stmt* statement) const;
  };

  CDatabase& database_;
  std::unique_ptr<sqlite3_stmt, Finish> statement_;
};

class CDatabase {
 public:
  enum class EAccess : std::int32_t { READ, WRITE, MAKE };

  CDatabase(const std::filesystem::path& path, EAccess access);

  void Run(const std::string& sql);
  std::int64_t Number(const std::string& sql);

  sqlite3* Handle() const { return handle_.get(); }

  /// Raises what the latest failure was.
  [[noreturn]] void Fail() const;

 private:
  struct Finish {
    void operator()(sqlite3* handle) const;
  };

  void Open(const std::string& name, int flags);
  void OpenToRead();

  std::filesystem::path path_;
  std::unique_ptr<sqlite3, Finish> handle_;
};

/// All or nothing: without `Commit` everything since its making is taken back.
class CTransaction {
 public:
  /// Without `iswriting` it is a look at the file as it is now.
  explicit CTransaction(CDatabase& database, bool iswriting = true);
  ~CTransaction();
  CTransaction(const CTransaction&) = delete;
  CTransaction& operator=(const CTransaction&) = delete;

  /// The disk has it all when this returns.
  void Commit();

 private:
  CDatabase& database_;
  bool isopen_ = true;
};

}  // namespace vane::recorder
