#include "adapters/files/config_registry.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <toml++/toml.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "adapters/files/atomic_file.h"
#include "adapters/posix/links.h"
#include "adapters/posix/posix_file.h"
#include "vane/components/form.h"
#include "vane/components/library_error.h"

namespace vane {
namespace {

constexpr const char* kValues = "values";
constexpr const char* kWindows = "Windows";
constexpr char kSubkeySeparator = '\\';
constexpr mode_t kPrivateFile = S_IRUSR | S_IWUSR;
constexpr std::size_t kMaxFile = 4 << 20;  // more than any settings
constexpr const char* kCannotRead = "Cannot read";

// What the file holds. Text that is no TOML has no table.
struct Content {
  std::string text;
  std::optional<toml::table> table;
  std::string trouble;  // what is wrong with the text
};

// The whole file; a missing one is empty. Raises `std::runtime_error`, also for anything but a
// regular file: nobody keeps settings in a pipe, and reading one would wait.
std::string ReadFile(const std::filesystem::path& path) {
  const CDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  if (!file.IsOpen()) {
    if (errno == ENOENT || errno == ENOTDIR) return {};
    RaiseFileError(errno, kCannotRead, path);
  }
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) RaiseFileError(errno, kCannotRead, path);
  if (!S_ISREG(status.st_mode)) RaiseFileError("it is no regular file", kCannotRead, path);
  std::string text;
  char block[4096];
  for (;;) {
    const ssize_t size = ::read(file.Get(), block, sizeof block);
    if (size == 0) return text;
    if (size > 0) {
      text.append(block, static_cast<std::size_t>(size));
    } else if (errno != EINTR) {
      RaiseFileError(errno, kCannotRead, path);
    }
    if (text.size() > kMaxFile) RaiseFileError("it is too large", kCannotRead, path);
  }
}

Content ReadContent(const std::filesystem::path& path) {
  Content content;
  content.text = ReadFile(path);
  try {
    content.table = toml::parse(content.text, path.string());
  } catch (const toml::parse_error& error) {
    std::ostringstream trouble;
    trouble << "'" << path.string() << "' is damaged, line " << error.source().begin.line << ": "
            << error.description();
    content.trouble = trouble.str();
  }
  return content;
}

// The tables from the root of the file down to the one that holds a value.
std::vector<std::string> TablesOf(const std::string& subkey) {
  std::vector<std::string> tables = {kValues};
  std::istringstream parts(subkey);
  for (std::string part; std::getline(parts, part, kSubkeySeparator);) {
    if (!part.empty()) tables.push_back(part);
  }
  return tables;
}

// Lets one process at a time change the file. The lock has a file of its own, because the file
// itself is replaced by each write.
class CFileLock {
 public:
  explicit CFileLock(const std::filesystem::path& path)
      : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kPrivateFile)) {
    if (!file_.IsOpen()) RaiseFileError(errno, "Cannot make the lock file", path);
    while (::flock(file_.Get(), LOCK_EX) != 0) {
      if (errno != EINTR) RaiseFileError(errno, "Cannot lock", path);
    }
  }

 private:
  CDescriptor file_;
};

// The table that holds the values of `subkey`; null where there is none.
template <class Table>
Table* FindTable(Table& file, const std::string& subkey) {
  Table* table = &file;
  for (const std::string& key : TablesOf(subkey)) {
    auto* const node = table->get(key);
    table = node ? node->as_table() : nullptr;
    if (!table) break;
  }
  return table;
}

template <class T>
std::optional<T> Find(const toml::table& file, const std::string& name, const std::string& subkey) {
  const toml::table* table = FindTable(file, subkey);
  const toml::value<T>* value = table ? table->get_as<T>(name) : nullptr;
  return value ? std::optional<T>(value->get()) : std::nullopt;
}

template <class Number>
std::string ShortestText(Number number) {
  std::array<char, 32> text;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

// Whether the next reader will find the value in `text`. It won't when a name or the value isn't
// UTF-8: that can't be said in TOML.
template <class T>
bool ReadsBack(const std::string& text, const std::string& name, const T& value,
               const std::string& subkey) {
  try {
    return Find<T>(toml::parse(text), name, subkey) == value;
  } catch (const toml::parse_error&) {
    return false;
  }
}

void PutAside(const std::filesystem::path& file, const std::string& text) {
  for (int n = 1;; ++n) {
    const std::filesystem::path aside = file.string() + ".damaged-" + std::to_string(n);
    if (std::filesystem::exists(std::filesystem::symlink_status(aside))) continue;
    WriteFileAtomically(aside, text, kPrivateFile);
    return;
  }
}

}  // namespace

std::filesystem::path CConfigRegistry::DefaultPath() {
  const auto variable = [](const char* name) -> std::filesystem::path {
    const char* value = std::getenv(name);
    return value ? value : "";
  };
  std::filesystem::path folder = variable("XDG_CONFIG_HOME");
  if (!folder.is_absolute()) {
    std::filesystem::path home = variable("HOME");
    if (home.empty()) {
      const passwd* user = ::getpwuid(::getuid());
      if (!user) {
        throw LibraryError(ERR_PLATFORM_CALL, "CConfigRegistry - DefaultPath",
                           "This user has no home folder for the settings.");
      }
      home = user->pw_dir;
    }
    folder = home / ".config";
  }
  return folder / "VaneT312B" / "registry.toml";
}

CConfigRegistry::CConfigRegistry(std::function<void(const std::string&)> report,
                                 std::filesystem::path path)
    : report_(std::move(report)), path_(std::move(path)) {}

std::int32_t CConfigRegistry::ReadBoolean(const std::string& name, bool fallback,
                                          std::uint32_t root, const std::string& subkey) {
  return Read<bool>(name, fallback, root, subkey) ? 1 : 0;
}

std::string CConfigRegistry::ReadText(const std::string& name, const std::string& fallback,
                                      std::uint32_t root, const std::string& subkey) {
  return Read<std::string>(name, fallback, root, subkey);
}

std::optional<std::string> CConfigRegistry::FindText(const std::string& name,
                                                     const std::string& subkey) const {
  Content content = ReadContent(path_);
  if (!content.table) throw std::runtime_error(content.trouble);
  const toml::table* table = FindTable(*content.table, subkey);
  const toml::node* node = table ? table->get(name) : nullptr;
  if (!node) return std::nullopt;
  if (const auto* text = node->as_string()) return text->get();
  if (const auto* whole = node->as_integer()) return ShortestText(whole->get());
  if (const auto* real = node->as_floating_point()) return ShortestText(real->get());
  throw std::invalid_argument("neither a text nor a number");
}

void CConfigRegistry::WriteBoolean(const std::string& name, bool value, const std::string& subkey) {
  Write(name, value, subkey);
}

void CConfigRegistry::WriteText(const std::string& name, const std::string& value,
                                const std::string& subkey) {
  Write(name, value, subkey);
}

void CConfigRegistry::Remove(const std::string& name, const std::string& subkey) {
  const std::filesystem::path file = FollowLinks(path_);
  if (!std::filesystem::exists(file)) return;
  const CFileLock lock(file.string() + ".lock");
  Content content = ReadContent(file);
  if (!content.table) throw std::runtime_error(content.trouble);
  toml::table* table = FindTable(*content.table, subkey);
  if (!table || table->erase(name) == 0) return;
  std::ostringstream text;
  text << *content.table << '\n';
  WriteFileAtomically(file, text.str(), kPrivateFile);
}

void CConfigRegistry::RestoreFormPlacement(ui::CForm& form, std::int32_t, bool) {
  const std::string text = ReadText(form.Name(), {}, kCurrentUserRoot, kWindows);
  std::array<std::int32_t, 4> numbers;
  const char* next = text.data();
  const char* const end = next + text.size();
  for (std::int32_t& number : numbers) {
    const auto [stop, error] = std::from_chars(next, end, number);
    const bool islast = &number == &numbers.back();
    if (error != std::errc() || (islast ? stop != end : stop == end || *stop != ',')) return;
    next = stop + 1;
  }
  const auto [left, top, width, height] = numbers;
  if (width > 0 && height > 0) form.SetPlace({left, top, width, height});
}

void CConfigRegistry::SaveFormPlacement(ui::CForm& form, std::int32_t, bool) {
  if (!form.Place()) return;
  const auto [left, top, width, height] = *form.Place();
  std::string text;
  for (const std::int32_t number : {left, top, width, height}) {
    text += (text.empty() ? "" : ",") + std::to_string(number);
  }
  WriteText(form.Name(), text, kWindows);
}

template <class T>
T CConfigRegistry::Read(const std::string& name, const T& fallback, std::uint32_t root,
                        const std::string& subkey) {
  if (root != kCurrentUserRoot) return fallback;
  Content content;
  try {
    content = ReadContent(path_);
  } catch (const std::runtime_error& error) {
    content.trouble = error.what();
  }
  if (!content.table) {
    ReportOnce(content.trouble + ". The default settings are used.");
    return fallback;
  }
  return Find<T>(*content.table, name, subkey).value_or(fallback);
}

template <class T>
void CConfigRegistry::Write(const std::string& name, const T& value, const std::string& subkey) {
  const std::filesystem::path file = FollowLinks(path_);
  MakePrivateFolders(file.parent_path());
  const CFileLock lock(file.string() + ".lock");
  Content content = ReadContent(file);
  const bool damaged = !content.table;
  if (damaged) content.table.emplace();

  const auto refuse = [&](const std::string& key, const char* why) {
    throw LibraryError(ERR_PLATFORM_CALL, "CConfigRegistry - Write",
                       "Cannot keep '" + key + "' in '" + file.string() + "': " + why);
  };
  toml::table* table = &*content.table;
  for (const std::string& key : TablesOf(subkey)) {
    toml::node& node = table->insert(key, toml::table{}).first->second;
    if (!node.is_table()) refuse(key, "a value has that name.");
    table = node.as_table();
  }
  const toml::node* present = table->get(name);
  if (present && present->is_table()) refuse(name, "a table has that name.");
  table->insert_or_assign(name, value);

  std::ostringstream text;
  text << *content.table << '\n';
  if (!ReadsBack(text.str(), name, value, subkey)) refuse(name, "the text is not UTF-8.");
  if (damaged) PutAside(file, content.text);
  WriteFileAtomically(file, text.str(), kPrivateFile);
}

void CConfigRegistry::ReportOnce(const std::string& trouble) {
  if (report_) std::exchange(report_, nullptr)(trouble);
}

}  // namespace vane
