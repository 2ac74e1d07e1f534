#include <ZeltoHost/Mail/GMimeInternal.h>

namespace zelto {

GMimeParserOptions* gmimeOptions() {
    static GMimeParserOptions* const options = [] {
        g_mime_init();
        auto* made = g_mime_parser_options_new();
        const char* charsets[] = {"utf-8", "windows-1252", nullptr};
        g_mime_parser_options_set_fallback_charsets(made, charsets);
        return made;
    }();
    return options;
}

} // namespace zelto
