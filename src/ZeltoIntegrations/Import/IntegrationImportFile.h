#pragma once

#include <string>
#include <utility>
#include <variant>

namespace zelto {

// An entry of a listing of a cloud drive. The identifier is the service's own, and the name is shown as the
// service gives it: no file name until it is cleaned.
struct IntegrationImportFile {
    struct Folder {
        std::string id;
        std::string name;
        bool operator==(const Folder&) const = default;
    };

    struct File {
        std::string id;
        std::string name;
        bool operator==(const File&) const = default;
    };

    std::variant<Folder, File> value;

    static IntegrationImportFile folder(std::string id, std::string name) {
        return {Folder{std::move(id), std::move(name)}};
    }

    static IntegrationImportFile file(std::string id, std::string name) {
        return {File{std::move(id), std::move(name)}};
    }

    bool isFolder() const { return std::holds_alternative<Folder>(value); }

    const std::string& id() const {
        return std::visit([](const auto& each) -> const std::string& { return each.id; }, value);
    }

    const std::string& name() const {
        return std::visit([](const auto& each) -> const std::string& { return each.name; }, value);
    }

    bool operator==(const IntegrationImportFile&) const = default;
};

} // namespace zelto
