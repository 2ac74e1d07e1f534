#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zelto {

// An empty folder that is removed with its content when the test ends.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        auto pattern = (std::filesystem::temp_directory_path() / "zelto-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make " + pattern);
        }
        path_ = pattern;
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

    // Writes a file into the folder and gives its path.
    std::filesystem::path write(std::string_view name, std::string_view content) const {
        const auto file = path_ / name;
        std::ofstream stream(file, std::ios::binary);
        stream.write(content.data(), static_cast<std::streamsize>(content.size()));
        stream.close();
        if (!stream) {
            throw std::runtime_error("cannot write " + file.string());
        }
        return file;
    }

    static std::string read(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

  private:
    std::filesystem::path path_;
};

} // namespace zelto
