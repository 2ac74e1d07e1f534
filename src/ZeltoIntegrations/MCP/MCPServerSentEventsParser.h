#pragma once

#include <ZeltoIntegrations/MCP/MCPClientError.h>

#include <Platform/Result.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// One finished event of a text/event-stream.
struct MCPServerSentEvent {
    std::optional<std::string> event;      // the last "event" field of this event
    std::string data;                      // its data lines, joined by line feeds; never empty
    std::shared_ptr<const std::string> id; // the last "id" of the stream so far, which events share; or null
    std::optional<std::int64_t> retry;     // the current "retry" of the stream

    bool operator==(const MCPServerSentEvent& other) const;
};

// Cuts the body of a text/event-stream into events, in whatever pieces the bytes come; each is looked at
// once. A plain value without input or output.
//
// Other than usual: only a line feed ends a line, and one carriage return before it is dropped; "id" is taken
// with whatever it holds; a "retry" that is no whole number clears the one before; a byte order mark is text;
// what no empty line closes is never given out, but a lone carriage return at the end counts as an empty
// line. A line that is not UTF-8 is the only error: it is gone then, with the events of that call, and what
// stands behind it is kept. There is no limit on the length of a line or of an event.
class MCPServerSentEventsParser {
  public:
    using Events = Result<std::vector<MCPServerSentEvent>, MCPClientError>;

    // The events that these bytes finish, in order.
    Events append(std::string_view bytes);

    // At the end of the stream, once.
    Events finish();

  private:
    // A long data line that has not ended goes to the event's data as it comes.
    struct OpenLine {
        std::size_t before = 0;    // the size of the data without it
        std::size_t validated = 0; // UTF-8 up to here
    };

    Events processBufferedLines(std::string_view bytes, bool flushTrailingLine);
    void keepPartialLine(std::string_view bytes);
    bool hasPartialLine() const;
    bool endPartialLine(std::string_view rest, std::vector<MCPServerSentEvent>& events);
    bool process(std::string_view line, bool isText, std::vector<MCPServerSentEvent>& events);
    void setField(std::string_view name, std::string_view value);
    void openLine(std::string_view value);
    void appendToOpenLine(std::string_view bytes);
    bool closeOpenLine();
    void dispatchEvent(std::vector<MCPServerSentEvent>& events);

    std::string pendingBytes_;     // of a line that has not ended
    bool pendingHasLines_ = false; // behind a line that failed there may be others
    std::optional<OpenLine> openLine_;
    std::optional<std::string> eventName_;
    std::shared_ptr<const std::string> eventID_;
    std::optional<std::int64_t> retry_;
    std::string data_; // the data lines of the event so far, joined
    bool hasData_ = false;
    std::size_t lastSize_ = 0; // of the data of the event before
};

} // namespace zelto
