#include <ZeltoHost/PDF/PDFError.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(PDFErrorCode, converterMissing, failed, timedOut, tooLarge, notAPDF, cannotWrite,
                    canceled);

std::string PDFError::message() const {
    switch (code) {
    case PDFErrorCode::converterMissing:
        return "There is no PDF converter '" + converter +
               "'; install WeasyPrint (it is in the package weasyprint) or name another converter";
    case PDFErrorCode::failed:
        return "The PDF converter '" + converter + "' failed with status " + std::to_string(status);
    case PDFErrorCode::timedOut:
        return "The PDF converter '" + converter +
               "' took too long and was stopped; export the message in another form";
    case PDFErrorCode::tooLarge:
        return "The PDF converter '" + converter +
               "' needed too much memory or space and was stopped; export the message in another form";
    case PDFErrorCode::notAPDF:
        return "The PDF converter '" + converter + "' ended without leaving a PDF file";
    case PDFErrorCode::cannotWrite:
        return "The PDF file cannot be written";
    case PDFErrorCode::canceled:
        return "Making the PDF was canceled";
    }
    return {};
}

} // namespace zelto
