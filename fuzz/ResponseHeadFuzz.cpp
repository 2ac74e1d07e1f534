// The head of a response: whatever lines come, its fields are valid text that is bounded by what came.

#include "Require.h"

#include <Platform/HTTP/ResponseHeadInternal.h>
#include <Platform/UTF8.h>

#include <cstdint>

using namespace zelto;

namespace {

// Each line with its end, as the transport gets them.
std::string_view takeLine(std::string_view& bytes) {
    const auto line = bytes.substr(0, bytes.find('\n') == bytes.npos ? bytes.size() : bytes.find('\n') + 1);
    bytes.remove_prefix(line.size());
    return line;
}

bool isPlain(std::string_view text) {
    return isValidUTF8(text) && text.find_first_of("\n") == text.npos;
}

void check(const ResponseHead& head, std::size_t size) {
    std::size_t length = 0;
    for (const auto& field : head.headers().fields()) {
        require(isPlain(field.name) && isPlain(field.value));
        length += field.name.size() + field.value.size();
    }
    // A byte of Latin-1 takes two in UTF-8, and so may what joins a repeated field.
    require(length <= 2 * size);
    require(!head.isComplete() || head.status() >= 200);
    static_cast<void>(head.contentLength());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    ResponseHead head;
    while (!bytes.empty()) {
        const bool wasComplete = head.isComplete();
        const auto progress = head.take(takeLine(bytes));
        require(progress != ResponseHead::Progress::complete || (!wasComplete && head.isComplete()));
        if (progress == ResponseHead::Progress::tooManyFields) {
            break;
        }
    }
    check(head, size);
    return 0;
}
