#pragma once

#include <Platform/HTTP/HTTPBody.h>
#include <Platform/UUID.h>

#include <string>

namespace zelto {

// One part of a multipart/form-data body.
struct ExporterHelperMultipartData {
    std::string name;            // the form's name
    std::string dataId = uuid(); // the file name put on the part
    std::string contentType;
    HTTPBody data; // in memory, or a file that is read when the body is sent
};

} // namespace zelto
