#include <ZeltoHost/Process/CommandWords.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <unistd.h>

namespace zelto {

namespace {

class WordReader {
  public:
    explicit WordReader(std::string_view command) : remaining_(command) {}

    // Whether all quotes are closed and there is no backslash at the end.
    bool read() {
        while (!remaining_.empty()) {
            const char next = take();
            if (next == ' ' || next == '\t' || next == '\n') {
                endWord();
            } else if (!readPiece(next)) {
                return false;
            }
        }
        endWord();
        return true;
    }

    std::vector<std::string> words;

  private:
    bool readPiece(char next) {
        inWord_ = true;
        if (next == '\'' || next == '"') {
            return readQuoted(next);
        }
        if (next == '\\') {
            return readEscaped();
        }
        word_ += next;
        return true;
    }

    bool readQuoted(char quote) {
        while (!remaining_.empty()) {
            const char next = take();
            if (next == quote) {
                return true;
            }
            const bool isEscape = next == '\\' && quote == '"' && !remaining_.empty() &&
                                  (remaining_.front() == '"' || remaining_.front() == '\\');
            word_ += isEscape ? take() : next;
        }
        return false;
    }

    bool readEscaped() {
        if (remaining_.empty()) {
            return false;
        }
        word_ += take();
        return true;
    }

    char take() {
        const char next = remaining_.front();
        remaining_.remove_prefix(1);
        return next;
    }

    void endWord() {
        if (inWord_) {
            words.push_back(std::exchange(word_, {}));
        }
        inWord_ = false;
    }

    std::string_view remaining_;
    std::string word_;
    bool inWord_ = false;
};

bool isProgram(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) && ::access(path.c_str(), X_OK) == 0;
}

std::optional<std::filesystem::path> ifProgram(const std::filesystem::path& path) {
    return isProgram(path) ? std::optional(path) : std::nullopt;
}

} // namespace

Result<std::vector<std::string>, CommandFault> commandWords(std::string_view command) {
    if (command.find('\0') != std::string_view::npos) {
        return failure(CommandFault{"holds a NUL"});
    }
    WordReader reader(command);
    if (!reader.read()) {
        return failure(CommandFault{"leaves a quote or a backslash open"});
    }
    if (reader.words.empty() || reader.words.front().empty()) {
        return failure(CommandFault{"names no program"});
    }
    return std::move(reader.words);
}

std::optional<std::filesystem::path> findProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) {
        std::error_code ignored;
        return ifProgram(std::filesystem::absolute(name, ignored));
    }
    const char* variable = std::getenv("PATH");
    std::string_view folders = variable != nullptr ? variable : "/usr/local/bin:/usr/bin:/bin";
    while (!folders.empty() && !name.empty()) {
        const auto folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folder.size() + 1, folders.size()));
        if (!folder.starts_with('/')) {
            continue;
        }
        if (auto found = ifProgram(std::filesystem::path(folder) / name)) {
            return found;
        }
    }
    return std::nullopt;
}

} // namespace zelto
