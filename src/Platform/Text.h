#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// A character is what a reader sees as one (an extended grapheme cluster of UAX 29): a letter with its
// combining marks, an emoji with its joiners, CR and LF together. Text that is not UTF-8 can be counted and
// cut too: each ill-formed piece counts as one character. All of these may be called on any thread.

std::size_t characterCount(std::string_view text);

// Each character in order, as views of the text.
std::vector<std::string_view> characters(std::string_view text);

// The first occurrence of an ASCII character as a whole character, without a combining mark.
std::optional<std::size_t> findCharacter(std::string_view text, char character);

// The first `count` characters; the whole text if it is shorter.
std::string_view prefixCharacters(std::string_view text, std::size_t count);

// As many whole characters as fit. If not even the first one fits, as many whole code points of it as fit.
std::string_view prefixBytes(std::string_view text, std::size_t limit);

// The same with the limit in UTF-16 code units.
std::string_view prefixUTF16Units(std::string_view text, std::size_t limit);

// The length in UTF-16 code units. Each ill-formed piece counts as one.
std::size_t utf16Length(std::string_view text);

// The length in code points. Each ill-formed piece counts as one.
std::size_t codePointCount(std::string_view text);

// Whether a character, which is not empty, begins with a letter or a decimal digit, of any script.
bool isLetterOrDigit(std::string_view character);

// How many characters of the text are decimal digits, of any script.
std::size_t decimalDigitCount(std::string_view text);

// Transliterated to Latin letters by ICU's "Any-Latin"; letters keep or get diacritics ("Жуков" gives
// "Žukov"). `nullopt` if the text is not UTF-8.
std::optional<std::string> toLatin(std::string_view text);

// Without accents: decomposed, stripped of nonspacing marks, composed again. A letter that Unicode does not
// decompose stays as it is ("ø", "ł", "đ"). `nullopt` if the text is not UTF-8.
std::optional<std::string> strippingDiacritics(std::string_view text);

// For comparing without regard to case (full case folding of Unicode; "ß" equals "ss"). Ill-formed pieces
// become U+FFFD.
std::string foldedCase(std::string_view text);

// Without white space and line ends at both ends (White_Space of Unicode).
std::string_view trimmed(std::string_view text);

// Whether the text consists of white space and line ends only.
bool isBlank(std::string_view text);

// For showing foreign text on a terminal or in one line of a log: "\n", "\r" and "\t" for these three,
// "\u{1B}" for other C0 and C1 controls, DEL, line separators and marks of writing direction, "\xFF" for each
// byte that is not UTF-8. Everything else stays, backslashes too.
std::string escapeControlCharacters(std::string_view text);

} // namespace zelto
