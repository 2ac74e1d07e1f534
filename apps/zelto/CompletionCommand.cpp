#include "Commands.h"
#include "Completions.h"

namespace zelto::cli {

Outcome<Report> runCompletion(const Invocation& invocation, const Terminal&) {
    return Report{{}, {}, completionsFor(invocation.value("SHELL").value())};
}

} // namespace zelto::cli
