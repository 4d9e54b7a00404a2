// A folder of its own for a test that works on files.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/// Made empty, and removed at the end with all that is in it. Its path holds no dot.
class Folder {
public:
    Folder() {
        std::string pattern = std::filesystem::temp_directory_path() / "klv-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        _path = pattern;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(_path); }

    const std::filesystem::path& path() const { return _path; }

    /// The path of the file or folder `name` in this folder.
    std::string operator/(const std::string& name) const { return _path / name; }

    /// @return the path of the file
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(_path / name, std::ios::binary) << text;
        return _path / name;
    }

    /// @return the text of the file `name`
    std::string read(const std::string& name) const {
        std::ifstream file(_path / name, std::ios::binary);
        if (!file) throw std::runtime_error("no file " + name);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    bool has(const std::string& name) const { return std::filesystem::exists(_path / name); }

private:
    std::filesystem::path _path;
};
