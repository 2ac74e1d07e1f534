#include <Platform/EnumDescription.h>
#include <ZeltoHost/Mail/MailError.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(MailError, notFound, unreadable, notAMail, tooManyParts, tooManyHeaders, headersTooLarge,
                    nestedTooDeep, contentTooLarge, unknownAttachment, changed, diskFull, cannotWrite,
                    canceled);

std::string_view messageOf(MailError error) {
    switch (error) {
    case MailError::notFound:
        return "There is no such file; check the path.";
    case MailError::unreadable:
        return "The file cannot be read; check that it is a file and that you may read it.";
    case MailError::notAMail:
        return "The file is not a mail; save the message as an .eml file and give that.";
    case MailError::tooManyParts:
        return "The mail has more than 10,000 parts; save what you need of it as a mail of its own.";
    case MailError::tooManyHeaders:
        return "The mail has more than 10,000 header fields; save what you need of it as a mail of its own.";
    case MailError::headersTooLarge:
        return "The mail's header fields hold more than 1 MiB; save what you need of it as a mail of its "
               "own.";
    case MailError::nestedTooDeep:
        return "The mail's parts are nested more than 100 deep; save the inner message as a mail of its own.";
    case MailError::contentTooLarge:
        return "A part of the mail is larger than what is read of it; export it as an attachment instead.";
    case MailError::unknownAttachment:
        return "The mail has no such attachment; list its attachments again.";
    case MailError::changed:
        return "The file was changed while it was in use; open it again.";
    case MailError::diskFull:
        return "There is no room left to write the file; free some space and try again.";
    case MailError::cannotWrite:
        return "The file cannot be written; check that the temporary directory may be written to.";
    case MailError::canceled:
        return "The reading was canceled; start it again.";
    }
    return {};
}

} // namespace zelto
