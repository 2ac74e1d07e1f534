#pragma once

#include <string>

namespace zelto {

// A multipart/form-data body, part by part.
class MultipartBody {
  public:
    MultipartBody& field(const std::string& name, const std::string& value) {
        return part("name=\"" + name + "\"", "", value);
    }

    MultipartBody& file(const std::string& name, const std::string& fileName, const std::string& type,
                        const std::string& content) {
        return part("name=\"" + name + "\"; filename=\"" + fileName + "\"", "Content-Type: " + type + "\r\n",
                    content);
    }

    std::string type() const { return "multipart/form-data; boundary=XX"; }

    std::string text() const { return parts_ + "--XX--\r\n"; }

  private:
    MultipartBody& part(const std::string& disposition, const std::string& header,
                        const std::string& content) {
        parts_ += "--XX\r\nContent-Disposition: form-data; " + disposition + "\r\n" + header + "\r\n" +
                  content + "\r\n";
        return *this;
    }

    std::string parts_;
};

} // namespace zelto
