#include <ZeltoHost/Mail/MailLines.h>

#include <algorithm>
#include <cstring>

namespace zelto {

MailLines::MailLines(const MailFile& file, std::size_t maxLength)
    : file_(file), maxLength_(maxLength), buffer_(256U << 10) {}

Result<bool, MailError> MailLines::fill() {
    bufferOffset_ += filled_;
    position_ = 0;
    filled_ = static_cast<std::size_t>(std::min<std::uint64_t>(buffer_.size(), file_.size() - bufferOffset_));
    if (filled_ == 0) {
        return false;
    }
    auto read = file_.read(bufferOffset_, std::span(buffer_).first(filled_));
    if (!read) {
        return failure(read.error());
    }
    return true;
}

void MailLines::keep(std::string_view piece) {
    const auto room = maxLength_ - std::min(maxLength_, pending_.size());
    pending_.append(piece.substr(0, room));
}

Result<bool, MailError> MailLines::next(Line& line) {
    pending_.clear();
    line.offset = bufferOffset_ + position_;
    line.length = 0;
    char last = 0;
    while (true) {
        if (position_ == filled_) {
            const auto more = fill();
            if (!more) {
                return failure(more.error());
            }
            if (!*more) {
                line.text = pending_;
                line.terminator = 0;
                return line.length > 0;
            }
        }
        const char* begin = buffer_.data() + position_;
        const auto available = filled_ - position_;
        const auto* end = static_cast<const char*>(std::memchr(begin, '\n', available));
        const auto taken = end == nullptr ? available : static_cast<std::size_t>(end - begin);
        std::string_view piece(begin, taken);
        line.length += taken;
        last = taken > 0 ? piece.back() : last;
        if (end == nullptr) {
            keep(piece);
            position_ = filled_;
            continue;
        }
        position_ += taken + 1;
        if (line.length == taken) {
            line.text = piece.substr(0, maxLength_);
        } else {
            keep(piece);
            line.text = pending_;
        }
        line.terminator = 1;
        if (last == '\r') {
            line.terminator = 2;
            --line.length;
            line.text = line.text.substr(0, static_cast<std::size_t>(line.length));
        }
        return true;
    }
}

} // namespace zelto
