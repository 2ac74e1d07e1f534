#pragma once

#include <ZeltoHost/Content/ContentNotes.h>
#include <ZeltoHost/PDF/PDFError.h>
#include <ZeltoHost/Process/StoppableThreads.h>

#include <Platform/Completion.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace zelto {

struct PDFConverterOptions {
    // A program and its first arguments, run as `CMD IN.html OUT.pdf` without a shell; empty: WeasyPrint.
    std::vector<std::string> command;

    std::chrono::milliseconds wallTime{60'000};
    std::uint64_t cpuSeconds = 20;
    std::uint64_t addressSpace = std::uint64_t{1} << 30;
    std::uint64_t fileSize = std::uint64_t{200} << 20;

    // Gets what the PDF files do not show of the HTML; may be absent.
    std::shared_ptr<ContentNotes> notes;
};

// Converts HTML to PDF files by an external program with limited time and memory. The HTML is cleaned first
// (cleanedHTML), and WeasyPrint's fetcher allows data: URLs only: neither the network nor local files are
// accessed.
//
// A header that the HTML has of cleanedHTML stays as it is, whatever the body's style. WeasyPrint lays the
// two out apart, scales a body that is wider than the page, and shows a box, with a note, for a character
// that no font has.
//
// The file appears whole or not at all; after an error a previous file is unchanged. The folder must exist.
// Any thread; convert returns at once. The completion is called once, on a thread of the converter, at the
// latest during its destruction (then with `canceled`).
class PDFConverter {
  public:
    explicit PDFConverter(PDFConverterOptions options = {});
    ~PDFConverter();

    void convert(std::string html, std::filesystem::path toPdf, Completion<void, PDFError> completion);

  private:
    class Worker;
    std::shared_ptr<Worker> worker_;
    StoppableThreads threads_;
};

} // namespace zelto
