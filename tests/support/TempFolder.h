#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// A folder for one test, removed with the object.
class TempFolder {
  public:
    TempFolder() : path_((std::filesystem::temp_directory_path() / "kelm-test-XXXXXX").string()) {
        if (mkdtemp(path_.data()) == nullptr) std::abort();
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string path(const std::string& name) const { return path_ + "/" + name; }

    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }

  private:
    std::string path_;
};
