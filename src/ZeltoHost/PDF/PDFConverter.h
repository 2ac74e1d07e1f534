#pragma once

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
    // A program and its first arguments, run as `CMD IN.html OUT.pdf` (no shell sees it); empty: WeasyPrint.
    std::vector<std::string> command;

    std::chrono::milliseconds wallTime{60'000};
    std::uint64_t cpuSeconds = 20;
    std::uint64_t addressSpace = std::uint64_t{1} << 30;
    std::uint64_t fileSize = std::uint64_t{200} << 20;
};

// Turns HTML into PDF files by a foreign program with bounded time and memory. The HTML is cleaned first
// (cleanedHTML), and WeasyPrint runs behind a fetcher that allows data: URLs alone: the network is never
// touched, no local file gets in.
//
// The file appears whole or not at all; what stood there before stays if there is an error. The folder must
// be there. Any thread; convert returns at once. The completion comes once, on a thread of the converter, at
// the latest while this is destroyed (then as canceled).
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
