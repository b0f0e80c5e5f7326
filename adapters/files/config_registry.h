// The user's registry as a text file: a TOML file in the user's configuration folder.
//
// The values lie in the table `[values]`, a sub key is a table inside it ("a\b" is `[values.a.b]`).
// The file is read at every use, so that what another program or an editor has changed since is
// seen. A write keeps every entry that it doesn't know, but not the file's comments and order.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "vane/components/registry.h"

namespace vane {

class CConfigRegistry : public CVaneRegistry {
 public:
  /// `VaneT312B/registry.toml` in `$XDG_CONFIG_HOME`, or in `.config` of the user's home folder.
  /// Raises `LibraryError` for a user without a home folder.
  static std::filesystem::path DefaultPath();

  /// `report` gets one text when the file is there and can't be used, such as a damaged one or a
  /// pipe: no more than once, at its first use. The file itself isn't touched before the first
  /// write.
  explicit CConfigRegistry(std::function<void(const std::string&)> report,
                           std::filesystem::path path = DefaultPath());

  // Reading. It doesn't fail: a missing or unusable file, a value of another kind and a root other
  // than the user's give the fallback.

  std::int32_t ReadBoolean(const std::string& name, bool fallback, std::uint32_t root,
                           const std::string& subkey) override;
  std::string ReadText(const std::string& name, const std::string& fallback, std::uint32_t root,
                       const std::string& subkey) override;

  /// For hosts, which want to know why there is no value: the text under `name`, or a number as the
  /// shortest text that reads back equal; nothing where the file has no such entry. Raises
  /// `std::invalid_argument` for any other kind of value, and `std::runtime_error` when the file is
  /// there and can't be used.
  std::optional<std::string> FindText(const std::string& name, const std::string& subkey) const;

  const std::filesystem::path& Path() const { return path_; }

  // Writing, for hosts. The file is read anew under a lock, so that two programs lose nothing of
  // each other's, and replaced as a whole. A file that can't be understood is first put aside as
  // `registry.toml.damaged-<n>`. Raises `std::runtime_error` when the file can't be read or
  // written, and `LibraryError` for a text that isn't UTF-8 and when a value would take the place
  // of a sub key or the other way round; the file then stays as it was.

  void WriteBoolean(const std::string& name, bool value, const std::string& subkey = {});
  void WriteText(const std::string& name, const std::string& value, const std::string& subkey = {});

  /// Takes the entry away. A file without it, and one that isn't there, stays as it is; one that
  /// can't be understood is left alone too, and raises `std::runtime_error`.
  void Remove(const std::string& name, const std::string& subkey = {});

  // Places of windows: the text "left,top,width,height" under the window's name in "Windows".

  void RestoreFormPlacement(ui::CForm& form, std::int32_t variant, bool flag) override;
  void SaveFormPlacement(ui::CForm& form, std::int32_t variant, bool flag) override;

 private:
  template <class T>
  T Read(const std::string& name, const T& fallback, std::uint32_t root, const std::string& subkey);
  template <class T>
  void Write(const std::string& name, const T& value, const std::string& subkey);
  void ReportOnce(const std::string& trouble);

  std::function<void(const std::string&)> report_;
  std::filesystem::path path_;
};

}  // namespace vane
