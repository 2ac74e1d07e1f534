#include "commandline/Completions.h"

namespace zelto::cli {

std::string completionsFor(std::string_view shell) {
    if (shell == "zsh") {
        return zshCompletions();
    }
    return shell == "fish" ? fishCompletions() : bashCompletions();
}

} // namespace zelto::cli
