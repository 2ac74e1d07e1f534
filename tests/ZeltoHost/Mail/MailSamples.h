#pragma once

#include <ZeltoHost/Mail/MailReader.h>

#include <Platform/Completion.h>

#include <gtest/gtest.h>

#include <concepts>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::testing {

// A file of that content in the private temporary directory.
std::filesystem::path fileWith(std::string_view content, std::string_view name = "sample.eml");

Result<std::shared_ptr<const MailMessage>, MailError> openMail(std::string_view content,
                                                               const MailLimits& limits = {});

// A mail that must be readable.
std::shared_ptr<const MailMessage> readMail(std::string_view content);

// One of the mails in examples/mails.
std::filesystem::path exampleMail(std::string_view name);

std::string contentOf(const std::filesystem::path& path);

// What an operation completes with, before it returns and once.
template <class T> T answerOf(std::invocable<Callback<T>> auto operation) {
    std::optional<T> answer;
    operation(Callback<T>([&](T value) {
        EXPECT_FALSE(answer.has_value()) << "the completion came twice";
        answer.emplace(std::move(value));
    }));
    EXPECT_TRUE(answer.has_value()) << "the completion did not come";
    return std::move(answer).value();
}

} // namespace zelto::testing
