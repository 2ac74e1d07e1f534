#include <Platform/MediaTypes.h>
#include <ZeltoHost/HTML/ENML.h>
#include <ZeltoHost/Interactor/EnmlContent.h>

#include <glib.h>

#include <memory>
#include <set>

namespace zelto {

namespace {

// The image of a "data:image/...;base64," URL.
std::optional<IntegrationsInteractorAttachment> imageInURL(std::string_view url) {
    constexpr std::string_view scheme = "data:";
    constexpr std::string_view encoding = ";base64";
    const auto comma = url.find(',');
    if (!url.starts_with(scheme) || comma == std::string_view::npos) {
        return std::nullopt;
    }
    auto type = url.substr(scheme.size(), comma - scheme.size());
    if (!type.starts_with("image/") || !type.ends_with(encoding)) {
        return std::nullopt;
    }
    type.remove_suffix(encoding.size());
    type = type.substr(0, type.find(';'));
    const std::string text(url.substr(comma + 1));
    gsize size = 0;
    const std::unique_ptr<guchar, decltype(&g_free)> bytes(g_base64_decode(text.c_str(), &size), &g_free);
    if (size == 0) {
        return std::nullopt;
    }
    const auto extension = extensionForMediaType(type).value_or("bin");
    return IntegrationsInteractorAttachment{"image." + std::string(extension), std::string(type),
                                            Data(bytes.get(), bytes.get() + size)};
}

} // namespace

IntegrationsInteractorEnml enmlContent(std::string html, const IntegrationExportHtmlOptions& options,
                                       ContentNotes* notes, const ImageSource& source) {
    IntegrationsInteractorEnml content;
    std::set<std::string> known; // hashes
    EnmlOptions enmlOptions;
    enmlOptions.header = options.customHeader.value_or("");
    enmlOptions.footer = options.customFooter.value_or("");
    enmlOptions.notes = notes;
    if (!options.skipInlineImages) {
        enmlOptions.mediaForImage = [&](std::string_view address) -> std::optional<EnmlMedia> {
            auto image = imageInURL(address);
            if (!image && source) {
                image = source(address);
            }
            if (!image) {
                return std::nullopt;
            }
            auto hash = enmlHash(image->data);
            EnmlMedia media{hash, image->mimeType};
            if (known.insert(std::move(hash)).second) {
                content.inlineAttachments.push_back(*std::move(image));
            }
            return media;
        };
    }
    content.enml = enmlFromHTML(std::move(html), enmlOptions);
    return content;
}

std::string enmlHash(const Data& data) {
    const std::unique_ptr<char, decltype(&g_free)> digest(
        g_compute_checksum_for_data(G_CHECKSUM_MD5, data.data(), data.size()), &g_free);
    return digest.get();
}

} // namespace zelto
