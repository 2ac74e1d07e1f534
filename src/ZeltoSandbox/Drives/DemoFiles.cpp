#include <ZeltoSandbox/Drives/DemoFiles.h>

#include <Platform/Base64.h>

namespace zelto::sandbox {

namespace {

// A lighthouse, 96 by 128 pixels.
constexpr std::string_view picture =
    "iVBORw0KGgoAAAANSUhEUgAAAGAAAACABAMAAAAG8nGJAAAAD1BMVEW/3e4qb4/COzP////30FsSzUjhAAAAx0lEQV"
    "R42u2UUQrCQAxEF/UCegLJCYReoB+5/5nEVuxmC2YGGlzbzPc8BnZ2UkqqZ52EBETuZIAIGcBFvAKoiMlPRMwBRMTb"
    "j0dcdFbZBFArGphcHKAjC6h2B4wbv1J8018+K/xdP370uyYQASy9gc0lgOg8LIKAyj88EvgboC4aqvqQQL0faEE0YP"
    "zI7UsgArC9Ac0dErD7ARYUDzR+//YlEAG0vbnN7QFo9+MuKB5Y+b3bl8CPgKvRbQ2IdfQP+EoggQS6Bp7f50ZawvpS"
    "OwAAAABJRU5ErkJggg==";

std::string pdfObject(std::size_t number, const std::string& content) {
    return std::to_string(number) + " 0 obj\n" + content + "\nendobj\n";
}

// A page with one line of text.
std::string pdf(const std::string& line) {
    const auto drawn = "BT /F1 24 Tf 60 700 Td (" + line + ") Tj ET";
    const std::string objects[] = {
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R "
        "/Resources << /Font << /F1 5 0 R >> >> >>",
        "<< /Length " + std::to_string(drawn.size()) + " >>\nstream\n" + drawn + "\nendstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
    };
    std::string text = "%PDF-1.4\n";
    std::string table = "0000000000 65535 f \n";
    std::size_t number = 0;
    for (const auto& object : objects) {
        const auto offset = std::to_string(text.size());
        table += std::string(10 - offset.size(), '0') + offset + " 00000 n \n";
        text += pdfObject(++number, object);
    }
    const auto start = std::to_string(text.size());
    const auto count = std::to_string(number + 1);
    return text + "xref\n0 " + count + "\n" + table + "trailer\n<< /Size " + count +
           " /Root 1 0 R >>\nstartxref\n" + start + "\n%%EOF\n";
}

} // namespace

SpoolRange demoContent(std::string bytes) {
    return SpoolRange::all(std::make_shared<SpooledBytes>(std::move(bytes)));
}

DriveEntry& addDemoFiles(Drive& drive) {
    const auto file = [&](const DriveEntry& folder, std::string name, std::string type,
                          std::string bytes) -> DriveEntry& {
        return drive.addFile(folder, std::move(name), std::move(type), demoContent(std::move(bytes)),
                             demoDate);
    };
    auto& readMe = file(drive.root(), "Read me.txt", "text/plain", "A first version.\n");
    drive.addRevision(readMe, demoContent("Welcome to the sandbox.\n"), demoDate + TimeInterval(3600));
    auto& projects = drive.addFolder(drive.root(), "Projects", demoDate);
    auto& lighthouse = drive.addFolder(projects, "Lighthouse", demoDate);
    file(lighthouse, "Plan.pdf", "application/pdf", pdf("Plan of the relaunch"));
    file(lighthouse, "Leuchtturm bei Nacht \U0001F319.png", "image/png", *base64Decoded(picture));
    file(projects, "Old plan.txt", "text/plain", "Nobody needs this any more.\n").isTrashed = true;
    auto& library = drive.addFolder(projects, "図書館", demoDate);
    file(library, "読書ノート.txt", "text/plain", "読書は心の栄養です。\n");
    auto& office = drive.addFolder(drive.root(), "Büro & Zuhause 🏡", demoDate);
    file(office, "Größe & Maß.txt", "text/plain", "Höhe 2 m, Breite 90 cm\n");
    file(office, "Читальный зал.html", "text/html",
         "<!doctype html><title>Читальный зал</title><p>Открыто с 9 до 18"
         "<script>document.body.append(\" (written by a script)\")</script>\n");
    drive.addFolder(drive.root(), "Empty", demoDate);
    return projects;
}

} // namespace zelto::sandbox
