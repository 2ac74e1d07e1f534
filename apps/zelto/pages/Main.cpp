#include <commandline/Completions.h>
#include <commandline/ManPages.h>

#include <Platform/FileManager.h>

#include <cstdio>
#include <filesystem>
#include <string>

// zelto-pages DIRECTORY: writes the sources of the man pages and the completions, for the build.

namespace {

using namespace zelto;

bool write(const std::filesystem::path& file, const std::string& text) {
    constexpr auto readableByAll = 0644;
    const auto written = FileManager::writeFileAtomically(file, text, readableByAll);
    if (!written) {
        std::fprintf(stderr, "%s\n", written.error().message().c_str());
    }
    return written.has_value();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: zelto-pages DIRECTORY\n", stderr);
        return 2;
    }
    const std::filesystem::path directory(argv[1]);
    bool succeeded = write(directory / "zelto.1.scd", cli::manPage()) &&
                     write(directory / "zelto.bash", cli::bashCompletions()) &&
                     write(directory / "_zelto", cli::zshCompletions()) &&
                     write(directory / "zelto.fish", cli::fishCompletions());
    for (const auto& command : cli::commands()) {
        succeeded =
            succeeded && write(directory / (cli::manPageName(command) + ".1.scd"), cli::manPage(command));
    }
    return succeeded ? 0 : 1;
}
