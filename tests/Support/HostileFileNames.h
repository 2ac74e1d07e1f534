#pragma once

#include <string>
#include <vector>

namespace zelto {

// 200 names as a mail or a drive may give them, which are to stay in the folder that they are meant for. Some
// of them name "precious" above it, and "link" in it.
inline std::vector<std::string> hostileFileNames() {
    const std::string parts[] = {"../precious",
                                 "/etc/passwd",
                                 "..",
                                 ".",
                                 "",
                                 std::string("a\0b", 3),
                                 "CON",
                                 ".bashrc",
                                 "-rf",
                                 "a ",
                                 " a",
                                 "a.",
                                 "link",
                                 "link.part",
                                 "x/../../precious",
                                 "..\\precious",
                                 "\u202Egnp.exe",
                                 "a\nb",
                                 "%2e%2e%2fprecious",
                                 std::string(300, 'n'),
                                 "\xff\xfe",
                                 "~",
                                 "$HOME",
                                 "nul.txt",
                                 "a:b"};
    std::vector<std::string> names;
    for (const auto& part : parts) {
        for (const auto* suffix : {"", ".txt", "/", "/..", "/../../precious", "\\..\\precious", " .", "/."}) {
            names.push_back(part + suffix);
        }
    }
    return names;
}

} // namespace zelto
