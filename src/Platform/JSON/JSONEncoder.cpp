#include <Platform/JSON/JSONEncoder.h>

namespace zelto {

std::string JSONEncoder::indented(std::string_view json, int width) {
    std::string text;
    text.reserve(json.size() * 2);
    std::size_t depth = 0;
    const auto breakLine = [&] { text.append(1, '\n').append(depth * static_cast<std::size_t>(width), ' '); };
    for (std::size_t at = 0; at < json.size(); ++at) {
        const char c = json[at];
        if (c == '"') {
            const auto begin = at++;
            while (json[at] != '"') {
                at += json[at] == '\\' ? 2 : 1;
            }
            text.append(json.substr(begin, at + 1 - begin));
        } else if (c == '{' || c == '[') {
            text += c;
            if (json[at + 1] == '}' || json[at + 1] == ']') {
                text += json[++at];
            } else {
                ++depth;
                breakLine();
            }
        } else if (c == '}' || c == ']') {
            --depth;
            breakLine();
            text += c;
        } else if (c == ',') {
            text += c;
            breakLine();
        } else if (c == ':') {
            text += ": ";
        } else {
            text += c;
        }
    }
    return text;
}

} // namespace zelto
