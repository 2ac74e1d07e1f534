#include <ZeltoSandbox/GoogleDrive/FieldMask.h>

#include <Platform/ASCII.h>

namespace zelto::sandbox {

namespace {

constexpr int maximumDepth = 20;
constexpr std::string_view all = "*";

std::string invalidSelection(std::string_view name) {
    return "Invalid field selection " + std::string(name);
}

} // namespace

// list: item ("," item)*, item: name ("/" name)* ["(" list ")"]
class FieldMask::Parser {
  public:
    explicit Parser(std::string_view text) : rest_(text) {}

    Result<FieldMask, std::string> whole() {
        FieldMask mask;
        if (!list(mask, 0) || !rest_.empty()) {
            return failure(invalidSelection(rest_.empty() ? text_ : rest_));
        }
        return mask;
    }

  private:
    bool list(FieldMask& mask, int depth) {
        do {
            if (!item(mask, depth)) {
                return false;
            }
        } while (skip(','));
        return true;
    }

    bool item(FieldMask& mask, int depth) {
        const auto name = takenName();
        if (name.empty() || depth > maximumDepth) {
            return false;
        }
        auto& member = mask.members_[name];
        if (skip('/')) {
            return item(member, depth + 1);
        }
        return !skip('(') || (list(member, depth + 1) && skip(')'));
    }

    std::string takenName() {
        std::size_t length = 0;
        while (length < rest_.size() && (isASCIIAlphanumeric(rest_[length]) || rest_[length] == '*' ||
                                         rest_[length] == '_' || rest_[length] == '-')) {
            ++length;
        }
        std::string name(rest_.substr(0, length));
        rest_.remove_prefix(length);
        return name;
    }

    bool skip(char c) {
        const bool isThere = rest_.starts_with(c);
        rest_.remove_prefix(isThere ? 1 : 0);
        return isThere;
    }

    std::string_view rest_;
    std::string_view text_ = rest_;
};

Result<FieldMask, std::string> FieldMask::parse(std::string_view text, const JSONValue& schema) {
    auto mask = Parser(text).whole();
    if (!mask) {
        return mask;
    }
    if (auto wrong = mask->problem(schema); !wrong.empty()) {
        return failure(std::move(wrong));
    }
    return mask;
}

std::string FieldMask::problem(const JSONValue& schema) const {
    if (const auto* list = schema.asArray()) {
        return list->empty() ? "" : problem(list->front());
    }
    for (const auto& [name, member] : members_) {
        const auto* known = schema.find(name);
        if (!known && (name != all || !schema.asObject())) {
            return invalidSelection(name);
        }
        if (auto inner = known ? member.problem(*known) : std::string(); !inner.empty()) {
            return inner;
        }
    }
    return "";
}

JSONValue FieldMask::applied(const JSONValue& whole) const {
    if (members_.empty()) {
        return whole;
    }
    if (const auto* list = whole.asArray()) {
        JSONValue::Array chosen;
        for (const auto& each : *list) {
            chosen.push_back(applied(each));
        }
        return chosen;
    }
    if (!whole.asObject()) {
        return whole;
    }
    JSONObject chosen;
    for (const auto& [name, value] : *whole.asObject()) {
        auto member = members_.find(name);
        member = member == members_.end() ? members_.find(all) : member;
        if (member != members_.end()) {
            chosen.set(name, member->second.applied(value));
        }
    }
    return chosen;
}

} // namespace zelto::sandbox
