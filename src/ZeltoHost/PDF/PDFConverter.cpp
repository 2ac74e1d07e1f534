#include <ZeltoHost/PDF/PDFConverter.h>

#include <ZeltoHost/HTML/CleanedHTML.h>
#include <ZeltoHost/PDF/WeasyPrintScript.h>
#include <ZeltoHost/Process/CommandWords.h>
#include <ZeltoHost/Process/Process.h>

#include <Platform/FileManager.h>
#include <Platform/Operations/ContainedException.h>

#include <array>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

constexpr std::size_t keptErrorOutput = 4096;

// Each may use all of its memory limit.
constexpr int conversionsAtOnce = 2;

// Not the first python3 of PATH, which may lack WeasyPrint.
constexpr std::string_view interpreter = "/usr/bin/python3";

// A folder for one conversion, removed with its content.
class WorkFolder {
  public:
    static Result<WorkFolder, FileError> make() {
        auto path = FileManager::temporaryPath("mail.html");
        if (!path) {
            return failure(path.error());
        }
        return WorkFolder(path->parent_path());
    }

    WorkFolder(WorkFolder&& other) noexcept : path_(std::exchange(other.path_, {})) {}

    WorkFolder& operator=(WorkFolder&&) = delete;

    ~WorkFolder() {
        if (!path_.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(path_, ignored);
        }
    }

    std::filesystem::path html() const { return path_ / "mail.html"; }

    std::filesystem::path pdf() const { return path_ / "mail.pdf"; }

  private:
    explicit WorkFolder(std::filesystem::path path) : path_(std::move(path)) {}

    std::filesystem::path path_;
};

// What a converter that is stopped leaves of its temporary files goes with the work folder.
std::string temporaryFolder(const WorkFolder& folder) {
    return "TMPDIR=" + folder.html().parent_path().string();
}

// Of the caller's environment, only where the font cache is.
std::vector<std::string> interpreterEnvironment(const WorkFolder& folder) {
    std::vector<std::string> environment{"PATH=/usr/bin:/bin", "LANG=C.UTF-8", temporaryFolder(folder)};
    for (const char* name : {"HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"}) {
        if (const char* value = std::getenv(name)) {
            environment.push_back(std::string(name) + "=" + value);
        }
    }
    return environment;
}

std::vector<std::string> callersEnvironment(const WorkFolder& folder) {
    std::vector<std::string> environment{temporaryFolder(folder)};
    for (char** each = ::environ; each != nullptr && *each != nullptr; ++each) {
        if (!std::string_view(*each).starts_with("TMPDIR=")) {
            environment.emplace_back(*each);
        }
    }
    return environment;
}

// Only a regular file: to open a pipe would wait for its writer.
Result<Data, FileError> readMade(const std::filesystem::path& made, std::uint64_t limit) {
    const auto file = FileManager::openFile(made, O_RDONLY | O_NONBLOCK | O_NOFOLLOW);
    if (!file) {
        return failure(file.error());
    }

    struct stat status {};

    if (::fstat(file->number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return failure(FileError{FileErrorCode::other, 0, made});
    }
    return FileManager::readAll(*file, made, limit);
}

bool ranOutOfMemory(std::string_view errorOutput) {
    constexpr std::array<std::string_view, 5> words{"MemoryError", "bad_alloc", "Cannot allocate memory",
                                                    "failed to allocate", "File too large"};
    for (const auto word : words) {
        if (errorOutput.find(word) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

PDFError errorOf(const ProcessExited& end, const std::string& output, bool isOurs) {
    if (isOurs && end.status == weasyPrintMissingStatus) {
        return {PDFErrorCode::converterMissing, end.status, {}, output};
    }
    if ((isOurs && end.status == weasyPrintMemoryStatus) || ranOutOfMemory(output)) {
        return {PDFErrorCode::tooLarge, end.status, {}, output};
    }
    return {PDFErrorCode::failed, end.status, {}, output};
}

PDFError errorOf(const ProcessSignaled& end, const std::string& output, bool isOurs) {
    const int status = 128 + end.signal;
    if (end.signal == SIGXCPU) {
        return {PDFErrorCode::timedOut, status, {}, output};
    }
    // The libraries below crash when there is no memory left.
    const bool crashed = end.signal == SIGSEGV || end.signal == SIGABRT || end.signal == SIGTRAP;
    if (end.signal == SIGXFSZ || (isOurs && crashed) || ranOutOfMemory(output)) {
        return {PDFErrorCode::tooLarge, status, {}, output};
    }
    return {PDFErrorCode::failed, status, {}, output};
}

PDFError errorOf(const ProcessTimedOut&, const std::string& output, bool) {
    return {PDFErrorCode::timedOut, 0, {}, output};
}

PDFError errorOf(const ProcessStopped&, const std::string&, bool) {
    return {PDFErrorCode::canceled, 0, {}, {}};
}

PDFError errorOf(const ProcessFailedToStart& end, const std::string&, bool) {
    const bool missing = end.reason == std::errc::no_such_file_or_directory;
    return {missing ? PDFErrorCode::converterMissing : PDFErrorCode::failed,
            end.reason.value(),
            {},
            end.reason.message()};
}

PDFError cannotWrite(const FileError& error) {
    return {PDFErrorCode::cannotWrite, 0, {}, error.message()};
}

} // namespace

class PDFConverter::Worker {
  public:
    explicit Worker(PDFConverterOptions options) : options_(std::move(options)) {}

    Result<void, PDFError> convert(std::string html, const std::filesystem::path& toPdf,
                                   const std::stop_token& stop) {
        if (!enter(stop)) {
            return failure(PDFError{PDFErrorCode::canceled, 0, {}, {}});
        }
        Result<void, PDFError> result;
        const bool returned = returnsNormally("A conversion to PDF",
                                              [&] { result = convertNow(std::move(html), toPdf, stop); });
        leave();
        if (!returned) {
            const auto outOfMemory = std::make_error_code(std::errc::not_enough_memory);
            result = failure(PDFError{PDFErrorCode::failed, outOfMemory.value(), {}, outOfMemory.message()});
        }
        if (!result) {
            result.error().converter = name();
        }
        return result;
    }

  private:
    bool enter(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        if (!left_.wait(lock, stop, [this] { return running_ < conversionsAtOnce; })) {
            return false;
        }
        ++running_;
        return true;
    }

    void leave() {
        const std::lock_guard lock(mutex_);
        --running_;
        left_.notify_one();
    }

    bool isOurs() const { return options_.command.empty(); }

    std::string name() const { return isOurs() ? "weasyprint" : options_.command.front(); }

    Result<void, PDFError> convertNow(std::string html, const std::filesystem::path& toPdf,
                                      const std::stop_token& stop) {
        const auto folder = WorkFolder::make();
        if (!folder) {
            return failure(cannotWrite(folder.error()));
        }
        const auto request = requestFor(splitCleanedHTML(std::move(html)), *folder);
        if (!request) {
            return failure(request.error());
        }
        const auto ended = runProcess(*request, stop);
        if (!ended.succeeded()) {
            return failure(std::visit(
                [&](const auto& end) { return errorOf(end, ended.errorOutput, isOurs()); }, ended.end));
        }
        if (isOurs() && options_.notes && !ended.output.empty()) {
            options_.notes->add({ContentNoteKind::charactersMissing, ended.output});
        }
        return deliver(folder->pdf(), toPdf, ended.errorOutput);
    }

    // The header on its own, for a layout that nothing of the body reaches.
    std::string twoDocuments(SplitHTML html) const {
        auto documents = html.header.empty() ? std::string() : cleanedHTML(std::move(html.header));
        documents += '\0';
        documents += cleanedHTML(std::move(html.document), {.notes = options_.notes.get()});
        return documents;
    }

    std::string oneDocument(SplitHTML html) const {
        return cleanedHTML(std::move(html.document),
                           {.header = std::move(html.header), .notes = options_.notes.get()});
    }

    Result<ProcessRequest, PDFError> requestFor(SplitHTML html, const WorkFolder& folder) const {
        ProcessRequest request;
        request.limits = {options_.wallTime, options_.cpuSeconds, options_.addressSpace, options_.fileSize};
        request.keptOutput = keptErrorOutput;
        if (isOurs()) {
            request.arguments = {std::string(interpreter), "-I", "-c", std::string(weasyPrintScript),
                                 folder.pdf().string()};
            request.environment = interpreterEnvironment(folder);
            request.input = twoDocuments(std::move(html));
            return request;
        }
        const auto program = findProgram(options_.command.front());
        if (!program) {
            return failure(PDFError{PDFErrorCode::converterMissing, 0, {}, {}});
        }
        if (const auto written =
                FileManager::writeFileAtomically(folder.html(), oneDocument(std::move(html)));
            !written) {
            return failure(cannotWrite(written.error()));
        }
        request.environment = callersEnvironment(folder);
        request.arguments = options_.command;
        request.arguments.front() = program->string();
        request.arguments.push_back(folder.html().string());
        request.arguments.push_back(folder.pdf().string());
        return request;
    }

    Result<void, PDFError> deliver(const std::filesystem::path& made, const std::filesystem::path& toPdf,
                                   const std::string& errorOutput) const {
        const auto pdf = readMade(made, options_.fileSize);
        if (!pdf) {
            const auto code =
                pdf.error().code == FileErrorCode::tooLarge ? PDFErrorCode::tooLarge : PDFErrorCode::notAPDF;
            return failure(PDFError{code, 0, {}, errorOutput});
        }
        if (!viewOf(*pdf).starts_with("%PDF-")) {
            return failure(PDFError{PDFErrorCode::notAPDF, 0, {}, errorOutput});
        }
        if (const auto written = FileManager::writeFileAtomically(toPdf, *pdf); !written) {
            return failure(cannotWrite(written.error()));
        }
        return {};
    }

    const PDFConverterOptions options_;
    std::mutex mutex_;
    std::condition_variable_any left_;
    int running_ = 0;
};

PDFConverter::PDFConverter(PDFConverterOptions options)
    : worker_(std::make_shared<Worker>(std::move(options))) {}

PDFConverter::~PDFConverter() = default;

void PDFConverter::convert(std::string html, std::filesystem::path toPdf,
                           Completion<void, PDFError> completion) {
    // Shared, so that it can still be called if no thread can be created.
    auto pending = std::make_shared<Completion<void, PDFError>>(std::move(completion));
    const auto error = threads_.start([worker = worker_, pending, html = std::move(html),
                                       toPdf = std::move(toPdf)](const std::stop_token& stop) mutable {
        (*pending)(worker->convert(std::move(html), toPdf, stop));
    });
    if (error) {
        (*pending)(failure(PDFError{PDFErrorCode::failed, error.value(), {}, error.message()}));
    }
}

} // namespace zelto
