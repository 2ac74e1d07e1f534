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

// Reads a mail; the test fails if it cannot be read.
std::shared_ptr<const MailMessage> readMail(std::string_view content);

// One of the mails in examples/mails.
std::filesystem::path exampleMail(std::string_view name);

std::string contentOf(const std::filesystem::path& path);

// The result of an operation, which must complete once and before it returns.
template <class T> T resultOf(std::invocable<Callback<T>> auto operation) {
    std::optional<T> response;
    operation(Callback<T>([&](T value) {
        EXPECT_FALSE(response.has_value()) << "the completion came twice";
        response.emplace(std::move(value));
    }));
    EXPECT_TRUE(response.has_value()) << "the completion did not come";
    return std::move(response).value();
}

} // namespace zelto::testing
