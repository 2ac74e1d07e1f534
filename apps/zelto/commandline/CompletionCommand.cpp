#include "commandline/Commands.h"
#include "commandline/Completions.h"

namespace zelto::cli {

Outcome<Report> runCompletion(const Invocation& invocation, const Terminal&) {
    auto script = completionsFor(invocation.value("SHELL").value());
    return Report{{{"script", script}}, std::move(script)};
}

} // namespace zelto::cli
