#include <ZeltoHost/SignIn/SignInWords.h>

#include <utility>

namespace zelto {

std::string withWords(std::string sentence, const std::string& words) {
    return words.empty() ? sentence : std::move(sentence) + " It says: \"" + words + "\".";
}

} // namespace zelto
