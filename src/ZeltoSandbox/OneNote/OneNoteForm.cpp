#include <ZeltoSandbox/OneNote/OneNoteForm.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::uint64_t partLimit = std::uint64_t{100} << 20; // that a client may count on
constexpr std::size_t presentationLimit = std::size_t{25} << 20;
constexpr auto presentationName = "Presentation";

// What the service takes of a request today.
constexpr std::size_t publishedPartCount = 6;
constexpr std::uint64_t publishedPartSize = 25'000'000;
constexpr std::uint64_t publishedSize = 70'000'000;

constexpr auto badRequest = "10017";
constexpr auto tooLarge = "RequestEntityTooLarge";

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string megabytes(std::uint64_t bytes) {
    return std::to_string(bytes / 1'000'000) + " MB";
}

std::optional<OneNoteProblem> publishedLimitProblem(const SandboxRequest& request) {
    if (request.parts.size() > publishedPartCount) {
        return OneNoteProblem{413, tooLarge,
                              "The request has " + std::to_string(request.parts.size()) +
                                  " parts; it may have " + std::to_string(publishedPartCount) +
                                  ", the Presentation included."};
    }
    for (const auto& part : request.parts) {
        if (part.content.size > publishedPartSize) {
            return OneNoteProblem{413, tooLarge,
                                  "The part " + quoted(part.fileName.value_or(part.name)) +
                                      " is larger than " + megabytes(publishedPartSize) + "."};
        }
    }
    if (request.body->size() > publishedSize) {
        return OneNoteProblem{413, tooLarge, "The request is larger than " + megabytes(publishedSize) + "."};
    }
    return std::nullopt;
}

std::optional<OneNoteProblem> limitProblem(const SandboxRequest& request, const SandboxSettings& settings) {
    if (settings.publishedLimits) {
        return publishedLimitProblem(request);
    }
    const auto limit = settings.attachmentLimit.value_or(partLimit);
    for (const auto& part : request.parts) {
        if (part.content.size > limit) {
            return OneNoteProblem{413, tooLarge,
                                  "The part " + quoted(part.fileName.value_or(part.name)) +
                                      " is larger than " + std::to_string(limit) + " bytes."};
        }
    }
    return std::nullopt;
}

std::optional<OneNoteProblem> presentationProblem(const std::vector<FormPart>& parts) {
    const auto count = std::ranges::count(parts, presentationName, &FormPart::name);
    if (count == 0) {
        return OneNoteProblem{400, "20001", "The request has no part named Presentation."};
    }
    if (count > 1) {
        return OneNoteProblem{400, "20002", "The request has more than one part named Presentation."};
    }
    const auto& first = parts.front();
    if (first.name != presentationName) {
        return OneNoteProblem{400, badRequest, "The part named Presentation is not the first one."};
    }
    if (first.contentType != "text/html" && first.contentType != "application/xhtml+xml") {
        return OneNoteProblem{400, "20003",
                              "The part named Presentation is neither text/html nor application/xhtml+xml."};
    }
    return std::nullopt;
}

OneNoteProblem htmlProblem(const std::string& reason) {
    return {400, badRequest, "The part named Presentation is not well-formed: " + reason + "."};
}

// What the HTML calls each part.
Result<std::vector<OneNoteForm::File>, OneNoteProblem>
filesOf(const std::vector<FormPart>& parts, const std::vector<OneNoteReference>& references) {
    for (const auto& reference : references) {
        if (std::ranges::count(parts, reference.part, &FormPart::name) != 1) {
            return failure(OneNoteProblem{400, badRequest,
                                          "There is not one part named " + quoted(reference.part) +
                                              ", to which the HTML refers."});
        }
    }
    std::vector<OneNoteForm::File> files;
    for (auto part = parts.begin() + 1; part != parts.end(); ++part) {
        const auto found = std::ranges::find(references, part->name, &OneNoteReference::part);
        if (std::ranges::count(references, part->name, &OneNoteReference::part) != 1) {
            return failure(
                OneNoteProblem{400, badRequest,
                               "The HTML does not refer once to the part named " + quoted(part->name) + "."});
        }
        files.push_back(
            {&*part, found->fileName.empty() ? part->fileName.value_or(part->name) : found->fileName});
    }
    return files;
}

} // namespace

Result<OneNoteForm, OneNoteProblem> readOneNoteForm(const SandboxRequest& request,
                                                    const SandboxSettings& settings) {
    if (request.contentType != "multipart/form-data") {
        return failure(OneNoteProblem{415, "UnsupportedMediaType", "The request is no multipart/form-data."});
    }
    if (!request.bodyProblem.empty()) {
        return failure(
            OneNoteProblem{400, badRequest, "The form is malformed: " + request.bodyProblem + "."});
    }
    if (auto problem = limitProblem(request, settings)) {
        return failure(*std::move(problem));
    }
    if (auto problem = presentationProblem(request.parts)) {
        return failure(*std::move(problem));
    }
    const auto& presentation = request.parts.front();
    if (presentation.content.size > presentationLimit) {
        return failure(OneNoteProblem{413, tooLarge, "The part named Presentation is too large."});
    }
    auto html = readOneNoteHTML(presentation.content.text(presentationLimit));
    if (!html) {
        return failure(htmlProblem(html.error()));
    }
    auto files = filesOf(request.parts, html->references);
    if (!files) {
        return failure(files.error());
    }
    return OneNoteForm{&presentation, *std::move(html), *std::move(files)};
}

} // namespace zelto::sandbox
