// What tests of a host's components need of the machine: files, a folder for them, a terminal.
#pragma once

#include <gtest/gtest.h>
#include <pty.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace vane::test {

inline std::string FileText(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

class CTemporaryFolder {
 public:
  CTemporaryFolder() {
    std::string name = testing::TempDir() + "vane-XXXXXX";
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    path_ = name;
  }
  ~CTemporaryFolder() { std::filesystem::remove_all(path_); }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// What has been written to `to` and can be read at `from`. The mark behind it makes sure that all
/// of it is there.
inline std::string Printed(int from, int to) {
  EXPECT_EQ(write(to, "\x04", 1), 1);
  std::string text;
  char c = 0;
  while (read(from, &c, 1) == 1 && c != '\x04') text += c;
  return text;
}

/// A terminal of 60 columns with its user's end; it shows just what a program prints.
class CUserTerminal {
 public:
  CUserTerminal() {
    winsize size{24, 60, 0, 0};
    EXPECT_EQ(openpty(&user, &host, nullptr, nullptr, &size), 0);
    termios plain{};
    tcgetattr(host, &plain);
    plain.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    plain.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(host, TCSANOW, &plain);
  }
  ~CUserTerminal() {
    close(user);
    close(host);
  }

  /// What has been printed since the last look.
  std::string Screen() const { return Printed(user, host); }
  void Type(const std::string& text) const {
    EXPECT_EQ(write(user, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  int user = -1, host = -1;
};

}  // namespace vane::test
