#include <ZeltoHost/Mail/MailSamples.h>

#include <Support/Folders.h>

#include <Platform/FileManager.h>

namespace zelto::testing {

std::filesystem::path fileWith(std::string_view content, std::string_view name) {
    auto path = FileManager::temporaryPath(name).value();
    EXPECT_TRUE(FileManager::writeFileAtomically(path, content).has_value());
    return path;
}

Result<std::shared_ptr<const MailMessage>, MailError> openMail(std::string_view content,
                                                               const MailLimits& limits) {
    return MailReader::open(fileWith(content), limits);
}

std::shared_ptr<const MailMessage> readMail(std::string_view content) {
    return openMail(content).value();
}

std::filesystem::path exampleMail(std::string_view name) {
    return sourceFolder() / "examples" / "mails" / name;
}

std::string contentOf(const std::filesystem::path& path) {
    const auto data = FileManager::readFile(path);
    EXPECT_TRUE(data.has_value()) << path;
    return data ? std::string(viewOf(*data)) : std::string();
}

} // namespace zelto::testing
