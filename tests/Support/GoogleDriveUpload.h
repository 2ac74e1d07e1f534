#pragma once

#include <string>

namespace zelto {

// The text of an upload as `GoogleDriveServer::texts` has it. The line is without the query.
inline std::string googleDriveUpload(const std::string& line, const std::string& metadata,
                                     const std::string& type, const std::string& base64) {
    const auto body = [&](const std::string& boundary) {
        return "\r\n--" + boundary + "\r\nContent-Type: application/json; charset=UTF-8\r\n\r\n" + metadata +
               "\r\n--" + boundary + "\r\nContent-Type: " + type +
               "\r\nContent-Transfer-Encoding: base64\r\n\r\n" + base64 + "\r\n--" + boundary + "--";
    };
    const std::string sent(36, 'x'); // as long as the boundary that is sent
    return line + "?uploadType=multipart\nContent-Type: multipart/related; boundary=B\n" +
           "Authorization: Bearer token\nContent-Length: " + std::to_string(body(sent).size()) + "\n\n" +
           body("B");
}

} // namespace zelto
