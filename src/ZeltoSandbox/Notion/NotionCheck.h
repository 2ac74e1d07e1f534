#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/Notion/NotionError.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// A place in a request's body, with the path that Notion names it by: "body.children[0].type". It may hold
// nothing: the body outlives it.
class NotionField {
  public:
    explicit NotionField(const JSONValue& body) : path_("body"), value_(&body) {}

    const std::string& path() const { return path_; }

    // Null if the body has none.
    const JSONValue* value() const { return value_; }

    bool exists() const { return value_ != nullptr; }

    bool isNull() const { return value_ && value_->isNull(); }

    NotionField member(std::string_view key) const;
    NotionField item(std::size_t index) const;

  private:
    NotionField(std::string path, const JSONValue* value) : path_(std::move(path)), value_(value) {}

    std::string path_;
    const JSONValue* value_;
};

// Reads a body by Notion's schema and keeps the first problem. What is not as it has to be reads as empty.
class NotionCheck {
  public:
    const std::optional<NotionError>& problem() const { return problem_; }

    void fail(NotionError error);

    // A validation error.
    void fail(std::string message) { fail(NotionError::validation(std::move(message))); }

    // "body failed validation: body.sort should be an object, instead was `1`."
    void failAt(const NotionField& field, std::string_view expectation);
    // The same for what is too long, or is too many.
    void failAtLength(const NotionField& field, std::size_t limit, std::size_t length);

    // False where the field is no object, or has another member than these.
    bool object(const NotionField& field, std::span<const std::string_view> members);

    bool object(const NotionField& field, std::initializer_list<std::string_view> members) {
        return object(field, std::span(members.begin(), members.size()));
    }

    // The number of items.
    std::size_t array(const NotionField& field, std::size_t limit);
    // `limit` is in UTF-16 code units.
    std::string text(const NotionField& field, std::size_t limit);
    // Each of these reads `absent` where the field does not exist.
    bool boolean(const NotionField& field, bool absent);
    std::string oneOf(const NotionField& field, std::span<const std::string_view> names,
                      std::string_view absent);

    std::string oneOf(const NotionField& field, std::initializer_list<std::string_view> names,
                      std::string_view absent) {
        return oneOf(field, std::span(names.begin(), names.size()), absent);
    }

    std::uint64_t number(const NotionField& field, std::uint64_t limit, std::uint64_t absent);
    // An identifier with its dashes, in lower case.
    std::string identifier(const NotionField& field);

  private:
    std::optional<NotionError> problem_;
};

} // namespace zelto::sandbox
