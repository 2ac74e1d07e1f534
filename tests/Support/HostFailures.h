#pragma once

#include <ZeltoIntegrations/Content/IntegrationError.h>

#include <Platform/URL.h>

#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// What a host does wrong when an export asks it for something.
enum class HostMistake {
    hasNoValue,
    throws,
    dropsItsCallback,
    namesAWebPage,    // in place of an attachment's file
    namesAMissingFile // the PDF was not written, or the attachment's file has gone
};

// What an export comes to when its host makes one of these mistakes in an operation. Of attachments, the
// second is affected.
struct HostFailure {
    std::string operation; // as FakeDataInteractor names it, or "convert"
    std::vector<HostMistake> mistakes;
    Result<void, IntegrationExportError> result;
    std::vector<std::string> made; // as ServiceServer lists it
};

// A host with one mistake in one operation.
class MistakenHost {
  public:
    MistakenHost(std::string operation, HostMistake mistake)
        : operation_(std::move(operation)), mistake_(mistake) {}

    void applyTo(FakeDataInteractor& data, FakePlatformInteractor& interactor) const {
        if (operation_ == "convert") {
            interactor.makePdf = [mistake = mistake_](const auto&, const auto&, Callback<bool> done) {
                convert(mistake, std::move(done));
            };
        } else if (mistake_ == HostMistake::throws) {
            throwFrom(data);
        } else if (mistake_ == HostMistake::dropsItsCallback) {
            dropCallbackOf(data);
        } else if (operation_ == "fetchAttachment") {
            misplaceFile(data);
        } else {
            withholdValue(data);
        }
    }

  private:
    static constexpr std::int64_t affectedAttachment = 1;

    void withholdValue(FakeDataInteractor& data) const {
        if (operation_ == "headerComponents") {
            data.header = {};
        } else if (operation_ == "formattedBodyComponents") {
            data.body = {};
        } else if (operation_ == "linkComponents") {
            data.linkParts = std::nullopt;
        } else {
            (operation_ == "link"               ? data.linkText
             : operation_ == "messagePlainText" ? data.plainText
             : operation_ == "meetTranscript"   ? data.summary
             : operation_ == "htmlHeader"       ? data.headerHTML
                                                : data.htmlText) = std::nullopt;
            if (operation_ == "meetTranscript") {
                data.summaryHTML = std::nullopt;
                data.meetingNotes = std::nullopt;
            }
        }
    }

    static void convert(HostMistake mistake, Callback<bool> done) {
        if (mistake == HostMistake::throws) {
            throw std::runtime_error("the host threw");
        }
        if (mistake != HostMistake::dropsItsCallback) {
            done(mistake == HostMistake::namesAMissingFile);
        }
    }

    // Whether a call of an operation is affected.
    std::function<bool(const std::string&)> affectedCalls() const {
        return [operation = operation_,
                fetched = std::make_shared<std::atomic<int>>(0)](const std::string& called) {
            return called == operation &&
                   (operation != "fetchAttachment" || (*fetched)++ == affectedAttachment);
        };
    }

    void throwFrom(FakeDataInteractor& data) const {
        data.onAsked = [isAffected = affectedCalls()](const std::string& asked) {
            if (isAffected(asked)) {
                throw std::runtime_error("the host threw");
            }
        };
    }

    void dropCallbackOf(FakeDataInteractor& data) const {
        data.onCompletion = [isAffected = affectedCalls()](const std::string& called, auto complete) {
            if (!isAffected(called)) {
                complete();
            }
        };
    }

    void misplaceFile(FakeDataInteractor& data) const {
        data.fileOf = [mistake = mistake_, fileOf = data.fileOf](std::int64_t id) {
            return id == affectedAttachment ? misplaced(fileOf(id), mistake) : fileOf(id);
        };
    }

    static std::optional<URL> misplaced(std::optional<URL> file, HostMistake mistake) {
        if (mistake == HostMistake::hasNoValue) {
            return std::nullopt;
        }
        if (mistake == HostMistake::namesAWebPage) {
            return URL::parse("https://example.org/a.txt");
        }
        std::filesystem::remove(file->filePath());
        return file;
    }

    const std::string operation_;
    const HostMistake mistake_;
};

} // namespace zelto
