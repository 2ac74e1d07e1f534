#pragma once

#include <Platform/Result.h>
#include <ZeltoSandbox/HTTP/SandboxRequest.h>
#include <ZeltoSandbox/OneNote/OneNoteHTML.h>
#include <ZeltoSandbox/SandboxService.h>

#include <string>
#include <vector>

namespace zelto::sandbox {

// Why the service does not make a page.
struct OneNoteProblem {
    int status;
    std::string code;
    std::string message;
};

// A form that describes a page.
struct OneNoteForm {
    // A file and what the HTML calls it.
    struct File {
        const FormPart* part;
        std::string name;
    };

    const FormPart* presentation;
    OneNoteHTML html;
    std::vector<File> files; // in the order of the parts
};

// The request's form as the service takes it: the HTML first and once, every other part named once in it,
// within the limits of the settings.
Result<OneNoteForm, OneNoteProblem> readOneNoteForm(const SandboxRequest& request,
                                                    const SandboxSettings& settings);

} // namespace zelto::sandbox
