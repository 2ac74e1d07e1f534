#include <Platform/Text.h>

#include <Platform/ASCII.h>
#include <Platform/UTF8.h>

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace zelto {

namespace {

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// What a byte of well-formed text counts in UTF-16 code units: the first one of a code point all of it.
std::size_t utf16UnitsOf(char byte) {
    return isContinuation(byte) ? 0u : static_cast<unsigned char>(byte) >= 0xF0 ? 2u : 1u;
}

// The sum of what each byte of the well-formed pieces counts; each ill-formed piece counts as one.
template <class UnitsOf> std::size_t sumOfUnits(std::string_view text, UnitsOf unitsOf) {
    std::size_t units = 0;
    while (!text.empty()) {
        const auto valid = text.substr(0, validUTF8Length(text));
        for (const char byte : valid) {
            units += unitsOf(byte);
        }
        text.remove_prefix(valid.size());
        if (!text.empty()) {
            text.remove_prefix(illFormedLength(text));
            ++units;
        }
    }
    return units;
}

// Creating an iterator of ICU costs as much as walking some thousand characters, so each thread keeps one.
icu::BreakIterator& iteratorOfThread() {
    thread_local const std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> made(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status)) {
            std::fprintf(stderr, "ICU has no rules for characters: %s\n", u_errorName(status));
            std::abort();
        }
        return made;
    }();
    return *iterator;
}

// ICU counts in 32 bits.
constexpr std::size_t maximumPieceLength = std::size_t{1} << 30;

// Whether a character ends between the two bytes, whatever is around them.
bool isCertainBoundary(char before, char after) {
    return isASCII(before) && isASCII(after) && !(before == '\r' && after == '\n');
}

// Steps from the end of one character to the end of the next. Between two ASCII characters there is always a
// boundary, except in CR LF: ICU is only asked about the pieces between such boundaries. Only one object at a
// time may be used on a thread, since they share the thread's iterator.
class CharacterEnds {
  public:
    explicit CharacterEnds(std::string_view text) : text_(text) {}

    CharacterEnds(const CharacterEnds&) = delete;
    CharacterEnds& operator=(const CharacterEnds&) = delete;

    ~CharacterEnds() { utext_close(&piece_); }

    // `nullopt` after the last one.
    std::optional<std::size_t> next() {
        if (end_ == pieceEnd_) {
            if (end_ == text_.size()) {
                return std::nullopt;
            }
            if (endsBehind(end_)) {
                pieceEnd_ = end_ + 1;
                return end_ = pieceEnd_;
            }
            openPiece();
        }
        const auto end = iterator_.next();
        end_ = end == icu::BreakIterator::DONE ? pieceEnd_ : pieceBegin_ + static_cast<std::size_t>(end);
        return end_;
    }

  private:
    // Whether the byte there is certainly a whole character, or the last byte of one.
    bool endsBehind(std::size_t index) const {
        return isASCII(text_[index]) &&
               (index + 1 == text_.size() || isCertainBoundary(text_[index], text_[index + 1]));
    }

    void openPiece() {
        pieceBegin_ = end_;
        const auto limit = pieceBegin_ + std::min(maximumPieceLength, text_.size() - pieceBegin_);
        while (pieceEnd_ < limit && !endsBehind(pieceEnd_)) {
            ++pieceEnd_;
        }
        if (pieceEnd_ < limit) {
            ++pieceEnd_;
        } else if (pieceEnd_ < text_.size()) {
            while (isContinuation(text_[pieceEnd_]) && pieceEnd_ > limit - 4) {
                --pieceEnd_;
            }
        }
        UErrorCode status = U_ZERO_ERROR;
        utext_openUTF8(&piece_, text_.data() + pieceBegin_,
                       static_cast<std::int64_t>(pieceEnd_ - pieceBegin_), &status);
        iterator_.setText(&piece_, status);
    }

    std::string_view text_;
    std::size_t end_ = 0;
    std::size_t pieceBegin_ = 0;
    std::size_t pieceEnd_ = 0;
    UText piece_ = UTEXT_INITIALIZER;
    icu::BreakIterator& iterator_ = iteratorOfThread();
};

std::size_t bytesOf(std::string_view piece) {
    return piece.size();
}

// The prefix of as many whole characters as the limit allows; of whole code points where the first character
// alone exceeds it. The text as a whole must exceed it.
template <class Measure>
std::string_view prefixMeasuring(std::string_view text, std::size_t limit, Measure measure) {
    CharacterEnds ends(text);
    std::size_t length = 0;
    std::size_t measured = 0;
    while (const auto end = ends.next()) {
        measured += measure(text.substr(length, *end - length));
        if (measured > limit) {
            break;
        }
        length = *end;
    }
    if (length > 0) {
        return text.substr(0, length);
    }
    for (measured = 0;;) {
        auto next = length + 1;
        while (next < std::min(length + 4, text.size()) && isContinuation(text[next])) {
            ++next;
        }
        measured += measure(text.substr(length, next - length));
        if (measured > limit) {
            return text.substr(0, length);
        }
        length = next;
    }
}

// How many bytes the code points take that measure no more than the limit in UTF-16 code units; the text
// itself has more bytes. `nullopt` where one of them or the next byte is ill-formed.
std::optional<std::size_t> codePointsWithin(std::string_view text, std::size_t limit) {
    std::size_t length = 0;
    for (std::size_t units = 0; units < limit && length < text.size();) {
        // No bytes measure more than their number.
        const auto next = text.substr(length, limit - units);
        const auto valid = next.substr(0, validUTF8Length(next));
        for (const char byte : valid) {
            units += utf16UnitsOf(byte);
        }
        length += valid.size();
        if (valid.size() == next.size()) {
            continue;
        }
        // The next one does not end within these bytes, or is ill-formed.
        const auto last = text.substr(length);
        if (validUTF8Length(last.substr(0, 4)) == 0) {
            return std::nullopt;
        }
        units += utf16UnitsOf(last.front());
        if (units <= limit) {
            length += firstCodePoint(last).length;
        }
    }
    const bool isIllFormedThere = length < text.size() && isContinuation(text[length]);
    return isIllFormedThere ? std::nullopt : std::optional(length);
}

constexpr std::size_t indicatorLength = 4; // bytes

// A regional indicator, U+1F1E6 to U+1F1FF. Two of them are a flag.
bool isIndicatorAt(std::string_view text, std::size_t index) {
    const auto bytes = text.substr(index, indicatorLength);
    return bytes.starts_with("\xF0\x9F\x87") && bytes.size() == indicatorLength &&
           isContinuation(bytes.back()) && static_cast<unsigned char>(bytes.back()) >= 0xA6;
}

// The last end of a character at or before a place between two regional indicators: within a run of them it
// depends on nothing but how many stand before. `nullopt` at any other place, and behind the first one of a
// run, which may belong to what is before it.
std::optional<std::size_t> flagEndUpTo(std::string_view text, std::size_t end) {
    if (!isIndicatorAt(text, end)) {
        return std::nullopt;
    }
    auto begin = end;
    while (begin >= indicatorLength && isIndicatorAt(text, begin - indicatorLength)) {
        begin -= indicatorLength;
    }
    const auto count = (end - begin) / indicatorLength;
    if (count < 2) {
        return std::nullopt;
    }
    return count % 2 == 0 ? end : end - indicatorLength;
}

// The last end of a character at or before the end of a code point; 0 if there is none behind the beginning.
// The text is well-formed up to there.
std::size_t characterEndUpTo(std::string_view text, std::size_t end) {
    if (end == text.size() || isCertainBoundary(text[end - 1], text[end])) {
        return end;
    }
    // ICU would step through the whole run.
    if (const auto found = flagEndUpTo(text, end)) {
        return *found;
    }
    // Whether there is a boundary depends on one code point behind it, and on those before it as far back as
    // ICU finds necessary.
    constexpr std::size_t maximumSequence = 4;
    UErrorCode status = U_ZERO_ERROR;
    UText* const around =
        utext_openUTF8(nullptr, text.data(),
                       static_cast<std::int64_t>(std::min(text.size(), end + maximumSequence)), &status);
    auto& iterator = iteratorOfThread();
    iterator.setText(around, status);
    const auto at = static_cast<std::int32_t>(end);
    const auto found = iterator.isBoundary(at) ? at : iterator.preceding(at);
    utext_close(around);
    return found == icu::BreakIterator::DONE ? 0 : static_cast<std::size_t>(found);
}

} // namespace

std::size_t characterCount(std::string_view text) {
    CharacterEnds ends(text);
    std::size_t count = 0;
    while (ends.next()) {
        ++count;
    }
    return count;
}

std::vector<std::string_view> characters(std::string_view text) {
    CharacterEnds ends(text);
    std::vector<std::string_view> all;
    std::size_t begin = 0;
    while (const auto end = ends.next()) {
        all.push_back(text.substr(begin, *end - begin));
        begin = *end;
    }
    return all;
}

std::optional<std::size_t> findCharacter(std::string_view text, char character) {
    const auto first = text.find(character);
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    const auto isPlain = [&](std::size_t index) {
        return index >= text.size() || (isASCII(text[index]) && text[index] != '\r' && text[index] != '\n');
    };
    if (isPlain(first + 1) && (first == 0 || isPlain(first - 1))) {
        return first;
    }
    CharacterEnds ends(text);
    std::size_t begin = 0;
    while (const auto end = ends.next()) {
        if (*end - begin == 1 && text[begin] == character) {
            return begin;
        }
        begin = *end;
    }
    return std::nullopt;
}

std::string_view prefixCharacters(std::string_view text, std::size_t count) {
    CharacterEnds ends(text);
    std::size_t length = 0;
    for (; count > 0; --count) {
        const auto end = ends.next();
        if (!end) {
            break;
        }
        length = *end;
    }
    return text.substr(0, length);
}

std::string_view prefixBytes(std::string_view text, std::size_t limit) {
    return text.size() <= limit ? text : prefixMeasuring(text, limit, bytesOf);
}

std::string_view prefixUTF16Units(std::string_view text, std::size_t limit) {
    // No text has more units than bytes.
    if (text.size() <= limit) {
        return text;
    }
    const auto fitting = codePointsWithin(text, limit);
    if (!fitting || *fitting > maximumPieceLength) {
        return prefixMeasuring(text, limit, utf16Length);
    }
    const auto end = *fitting == 0 ? 0 : characterEndUpTo(text, *fitting);
    return text.substr(0, end == 0 ? *fitting : end);
}

std::size_t utf16Length(std::string_view text) {
    return sumOfUnits(text, utf16UnitsOf);
}

std::size_t codePointCount(std::string_view text) {
    return sumOfUnits(text, [](char byte) { return isContinuation(byte) ? 0u : 1u; });
}

bool isLetterOrDigit(std::string_view character) {
    std::size_t position = 0;
    UChar32 first = U_SENTINEL;
    U8_NEXT(character.data(), position, character.size(), first);
    return first >= 0 && u_isalnum(first);
}

std::size_t decimalDigitCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t position = 0; position < text.size();) {
        UChar32 character = U_SENTINEL;
        U8_NEXT(text.data(), position, text.size(), character);
        count += character >= 0 && u_charType(character) == U_DECIMAL_DIGIT_NUMBER ? 1 : 0;
    }
    return count;
}

} // namespace zelto
