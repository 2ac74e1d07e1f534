#include <ZeltoSandbox/UploadedFile.h>

#include <Platform/MediaTypes.h>

#include <algorithm>

namespace zelto::sandbox {

Result<const FormPart*, UploadProblem> filePart(const SandboxRequest& request, std::string_view field,
                                                std::uint64_t limit) {
    const auto found = std::ranges::find(request.parts, field, &FormPart::name);
    if (found == request.parts.end()) {
        return failure(UploadProblem::missing);
    }
    if (std::ranges::count(request.parts, field, &FormPart::name) > 1) {
        return failure(UploadProblem::several);
    }
    if (!found->fileName || found->fileName->empty()) {
        return failure(UploadProblem::unnamed);
    }
    if (found->content.size > limit) {
        return failure(UploadProblem::tooLarge);
    }
    return &*found;
}

std::string mediaTypeOfFile(const FormPart& part, std::string_view name) {
    if (part.contentType != "text/plain" && part.contentType != "application/octet-stream") {
        return part.contentType;
    }
    const auto dot = name.rfind('.');
    const auto ofName =
        dot == std::string_view::npos ? std::nullopt : mediaTypeForExtension(name.substr(dot + 1));
    return std::string(ofName.value_or(part.contentType));
}

JSONObject fileState(const UploadedFile& file) {
    return {{"name", file.name}, {"mediaType", file.mediaType}, {"size", file.size}, {"url", file.path}};
}

UploadedFile storedFile(FileStore& files, const FormPart& part, std::string name, std::string mediaType) {
    auto path = files.add(part.content, name, mediaType);
    return {std::move(name), std::move(mediaType), part.content.size, std::move(path)};
}

} // namespace zelto::sandbox
