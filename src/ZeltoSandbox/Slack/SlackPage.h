#pragma once

#include <Platform/Result.h>
#include <ZeltoSandbox/Slack/SlackArguments.h>
#include <ZeltoSandbox/Slack/SlackError.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// The records that one response gives of a list, by their positions, and the cursor that leads to the next
// ones.
struct SlackPage {
    static constexpr std::size_t maximum = 1000; // records, where a client asks for a number of them

    std::size_t first = 0;
    std::size_t end = 0;
    std::string nextCursor; // empty at the end of the list

    // The page that "cursor" and "limit" ask for, of a list whose records have these identifiers. `kind` is
    // what cursors begin with; `usual` is the number of records without a limit.
    static Result<SlackPage, SlackError> of(const SlackArguments& arguments,
                                            const std::vector<std::string_view>& identifiers,
                                            std::string_view kind, std::size_t usual);

    JSONObject metadata() const { return {{"next_cursor", nextCursor}}; }
};

} // namespace zelto::sandbox
