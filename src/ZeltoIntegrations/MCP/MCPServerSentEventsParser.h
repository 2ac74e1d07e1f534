#pragma once

#include <ZeltoIntegrations/MCP/MCPClientError.h>

#include <Platform/Result.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// One complete event of a text/event-stream.
struct MCPServerSentEvent {
    std::optional<std::string> event;      // the last "event" field of this event
    std::string data;                      // its data lines, joined by line feeds; never empty
    std::shared_ptr<const std::string> id; // the last "id" of the stream so far, shared by events; or null
    std::optional<std::int64_t> retry;     // the current "retry" of the stream

    bool operator==(const MCPServerSentEvent& other) const;
};

// Splits the body of a text/event-stream into events, however the bytes are divided into pieces; each byte is
// read once. A plain value without input or output.
//
// Differences from the standard: only a line feed ends a line, and one carriage return before it is dropped;
// "id" is accepted whatever it contains; a "retry" that is not a whole number clears the previous one; a byte
// order mark is text; an event that no empty line ends is never given, but a lone carriage return at the end
// counts as an empty line. A line that is not UTF-8 is the only error: it is dropped with the events of that
// call, and what follows it is kept. The length of a line or an event is not limited here.
class MCPServerSentEventsParser {
  public:
    using Events = Result<std::vector<MCPServerSentEvent>, MCPClientError>;

    // The events that these bytes complete, in order.
    Events append(std::string_view bytes);

    // To be called once, at the end of the stream.
    Events finish();

    // How many bytes are kept of the event that is not complete.
    std::size_t openEventSize() const { return pendingBytes_.size() + data_.size(); }

  private:
    // An incomplete long data line is added to the event's data as it arrives.
    struct OpenLine {
        std::size_t before = 0;    // the size of the data without it
        std::size_t validated = 0; // UTF-8 up to here
    };

    Events processBufferedLines(std::string_view bytes, bool flushTrailingLine);
    void keepPartialLine(std::string_view bytes);
    bool hasPartialLine() const;
    bool endPartialLine(std::string_view remaining, std::vector<MCPServerSentEvent>& events);
    bool process(std::string_view line, bool isText, std::vector<MCPServerSentEvent>& events);
    void setField(std::string_view name, std::string_view value);
    void openLine(std::string_view value);
    void appendToOpenLine(std::string_view bytes);
    bool closeOpenLine();
    void dispatchEvent(std::vector<MCPServerSentEvent>& events);

    std::string pendingBytes_;     // of an incomplete line
    bool pendingHasLines_ = false; // further lines may follow one that failed
    std::optional<OpenLine> openLine_;
    std::optional<std::string> eventName_;
    std::shared_ptr<const std::string> eventID_;
    std::optional<std::int64_t> retry_;
    std::string data_; // the data lines of the event so far, joined
    bool hasData_ = false;
    std::size_t lastSize_ = 0; // of the previous event's data
};

} // namespace zelto
