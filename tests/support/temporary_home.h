// A home folder for one test: a temporary folder that HOME and the XDG variables point into. With the object the folder
// goes, and the variables get their old values back.
#ifndef NVSUPPORT_TESTS_SUPPORT_TEMPORARY_HOME_H
#define NVSUPPORT_TESTS_SUPPORT_TEMPORARY_HOME_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace nvsupport::testing {

// Sets an environment variable for as long as the object lives.
class ScopedVariable {
 public:
  ScopedVariable(std::string variable, const std::string& value) : name(std::move(variable)) {
    if (const char* old = std::getenv(name.c_str())) former = old;
    setenv(name.c_str(), value.c_str(), 1);
  }
  ~ScopedVariable() { former ? setenv(name.c_str(), former->c_str(), 1) : unsetenv(name.c_str()); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  std::string name;
  std::optional<std::string> former;
};

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "nvsupport-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string operator/(const std::string& name) const { return (path / name).string(); }
  std::filesystem::path path;
};

inline std::string ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

inline void WriteWholeFile(const std::filesystem::path& path, const std::string& bytes) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

// XDG_CONFIG_HOME is config, XDG_CONFIG_DIRS etc, XDG_DATA_HOME data, XDG_DOCUMENTS_DIR documents in `folder`; none
// of them exists yet.
class TemporaryHome {
 public:
  // Write the registry file of the user or of the machine. The text follows the first line, which is always the same.
  void WriteUserRegistry(const std::string& text) const { WriteRegistry("config", text); }
  void WriteMachineRegistry(const std::string& text) const { WriteRegistry("etc", text); }

  TemporaryFolder folder;

 private:
  void WriteRegistry(const std::string& where, const std::string& text) const {
    WriteWholeFile(folder.path / where / "norvane" / "registry.reg", "REGEDIT4\n\n" + text);
  }

  ScopedVariable home{"HOME", folder.path.string()};
  ScopedVariable configHome{"XDG_CONFIG_HOME", folder / "config"};
  ScopedVariable configDirs{"XDG_CONFIG_DIRS", folder / "etc"};
  ScopedVariable dataHome{"XDG_DATA_HOME", folder / "data"};
  ScopedVariable documents{"XDG_DOCUMENTS_DIR", folder / "documents"};
};

}  // namespace nvsupport::testing

#endif
