// gettext PO through gettext's own library, libgettextpo: one message per stored
// string, its key as msgctxt, its budget in an extracted comment, msgstr empty.
#include "translation_files.hpp"

#include "utf8_text.hpp"

#include "image/file_io.hpp"
#include "image/temporary_output.hpp"

#include <gettext-po.h>

#include <csetjmp>
#include <cstdio>
#include <ctime>
#include <memory>

namespace zevran::strings {

namespace {

using Reason = TranslationFileFailure::Reason;

// The first error libgettextpo reports while reading or writing one file.
struct PoProblem {
    bool failed = false;
    std::size_t line = 0;
    std::string text;
};

thread_local PoProblem* t_problem = nullptr;
thread_local std::jmp_buf* t_fatal = nullptr;

void noteProblem(int severity, std::size_t line, const char* text)
{
    if (severity == PO_SEVERITY_WARNING) return;
    if (!t_problem->failed) {
        t_problem->failed = true;
        t_problem->line = line == static_cast<std::size_t>(-1) ? 0 : line;
        t_problem->text = text ? text : "";
        while (!t_problem->text.empty() && t_problem->text.back() == '\n') t_problem->text.pop_back();
    }
    // The library must not get control back after a fatal error.
    if (severity == PO_SEVERITY_FATAL_ERROR) std::longjmp(*t_fatal, 1);
}

void onError(int severity, po_message_t, const char*, std::size_t line, std::size_t, int, const char* text)
{
    noteProblem(severity, line, text);
}

void onError2(int severity, po_message_t, const char*, std::size_t line, std::size_t, int, const char* text,
              po_message_t, const char*, std::size_t, std::size_t, int, const char*)
{
    noteProblem(severity, line, text);
}

const po_xerror_handler kHandler{onError, onError2};

// Kept free of objects with destructors: a fatal error comes back here by longjmp.
po_file_t readWithHandler(const char* path, PoProblem& problem)
{
    std::jmp_buf fatal;
    t_problem = &problem;
    t_fatal = &fatal;
    if (setjmp(fatal) != 0) return nullptr;
    return po_file_read(path, &kHandler);
}

bool writeWithHandler(po_file_t file, const char* path, PoProblem& problem)
{
    std::jmp_buf fatal;
    t_problem = &problem;
    t_fatal = &fatal;
    if (setjmp(fatal) != 0) return false;
    return po_file_write(file, path, &kHandler) != nullptr;
}

struct PoFileFree {
    void operator()(po_file_t file) const { po_file_free(file); }
};
using PoFile = std::unique_ptr<std::remove_pointer_t<po_file_t>, PoFileFree>;

// The header msgfmt --check asks for. The translators' language is not known yet: "und".
std::string headerText(std::string_view imageName)
{
    char date[32];
    const std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof date, "%Y-%m-%d %H:%M+0000", std::gmtime(&now));
    return "Project-Id-Version: " + std::string(imageName) + "\nPO-Revision-Date: " + date +
           "\nLast-Translator: \nLanguage-Team: \nLanguage: und\nMIME-Version: 1.0\n"
           "Content-Type: text/plain; charset=UTF-8\nContent-Transfer-Encoding: 8bit\n"
           "X-Generator: Zevran Handset Workshop\n";
}

}  // namespace

// Sanitized builds: libgettextpo keeps some of its allocations past po_file_free. They
// are not this program's to free, so LeakSanitizer is told to pass over them.
#if defined(__SANITIZE_ADDRESS__)
#define ZEVRAN_LEAK_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZEVRAN_LEAK_CHECKED 1
#endif
#endif
#ifdef ZEVRAN_LEAK_CHECKED
extern "C" const char* __lsan_default_suppressions() { return "leak:libgettextpo\n"; }
// The suppressed leaks are not reported, and neither is their count: a command's
// standard error stays its own.
extern "C" const char* __lsan_default_options() { return "print_suppressions=0"; }
#endif

void writePoFile(const std::string& path, std::span<const StoredString> strings, std::string_view imageName)
{
    PoFile file(po_file_create());
    po_message_iterator_t iterator = po_message_iterator(file.get(), nullptr);
    po_message_t header = po_message_create();
    po_message_set_msgid(header, "");
    po_message_set_msgstr(header, headerText(imageName).c_str());
    po_message_insert(iterator, header);
    for (const StoredString& s : strings) {
        po_message_t message = po_message_create();
        po_message_set_msgctxt(message, entryKey(s.address, s.codes).c_str());
        po_message_set_msgid(message, s.text.c_str());
        po_message_set_msgstr(message, "");
        po_message_set_extracted_comments(message, ("budget " + std::to_string(s.bytes) + " bytes").c_str());
        po_message_insert(iterator, message);
    }
    po_message_iterator_free(iterator);
    image::TemporaryOutput output(path, image::kSavingMarker);
    PoProblem problem;
    if (!writeWithHandler(file.get(), output.path().c_str(), problem) || problem.failed)
        throw image::FileError(path + ": " + (problem.text.empty() ? "cannot be written" : problem.text));
    output.commit();
}

std::vector<TranslationEntry> readPoFile(const std::string& path)
{
    try {
        image::requireRegularFile(path);
    } catch (const image::FileError& error) {
        throw fileError(Reason::Unreadable, path, 0, 0, error.what());
    }
    PoProblem problem;
    PoFile file(readWithHandler(path.c_str(), problem));
    if (!file || problem.failed)
        throw fileError(Reason::Syntax, path, problem.line, 0, problem.text.empty() ? "not a PO file" : problem.text);
    std::vector<TranslationEntry> entries;
    po_message_iterator_t iterator = po_message_iterator(file.get(), nullptr);
    std::size_t number = 0;
    while (po_message_t message = po_next_message(iterator)) {
        const char* msgid = po_message_msgid(message);
        if (po_message_is_obsolete(message) || (msgid[0] == '\0' && !po_message_msgctxt(message))) continue;
        ++number;
        const char* context = po_message_msgctxt(message);
        const auto key = context ? parseEntryKey(context) : std::nullopt;
        if (!key) {
            po_message_iterator_free(iterator);
            throw fileError(Reason::BadKey, path, 0, number, context ? context : "");
        }
        const char* msgstr = po_message_msgstr(message);
        const std::string translation = msgstr ? msgstr : "";
        TranslationEntry entry{key->first, key->second, 0, msgid, ""};
        if (!isValidUtf8(entry.source) || !isValidUtf8(translation)) {
            po_message_iterator_free(iterator);
            throw fileError(Reason::NotUtf8, path, 0, number);
        }
        // A fuzzy translation waits for review: gettext itself leaves it out.
        if (!po_message_is_fuzzy(message)) entry.target = translation;
        if (const char* comments = po_message_extracted_comments(message))
            std::sscanf(comments, "budget %u", &entry.budget);
        entries.push_back(std::move(entry));
    }
    po_message_iterator_free(iterator);
    return entries;
}

}  // namespace zevran::strings
