// Any bytes as a .klv file, read into a model and its drawing. They are read exactly when a recogniser written by hand
// accepts them, and what was read is the same after saving and reading back. All others end the program with the line
// and the message that are owed, and status 255: the program's exit is caught here and its status looked at.
#include <gtest/gtest.h>
#include <gtkmm/main.h>

#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>

#include "Fichier/ReferenceReader.h"
#include "Lecture.h"
#include "common/MemoryFile.h"
#include "common/Network.h"

namespace {

std::jmp_buf beforeReading;
volatile bool isReading = false;
volatile int exitStatus = 0;

}  // namespace

extern "C" [[noreturn]] void __real_exit(int status);

// Where the leak sanitizer is linked, what is allocated between these two may stay.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

// The linker puts this in the place of every exit of the program.
extern "C" [[noreturn]] void __wrap_exit(int status) {
    if (!isReading) __real_exit(status);
    isReading = false;
    exitStatus = status;
    std::longjmp(beforeReading, 1);
}

namespace {

/// The reader ends the program as it stands: what lies on the parser's stack then is not released.
class MayLeak {
public:
    MayLeak() {
        if (__lsan_disable != nullptr) __lsan_disable();
    }
    ~MayLeak() {
        if (__lsan_enable != nullptr) __lsan_enable();
    }
};

/// A stream's output for as long as the object lives.
class Captured {
public:
    explicit Captured(std::ostream& stream) : _stream(stream), _before(stream.rdbuf(_text.rdbuf())) {}
    ~Captured() { _stream.rdbuf(_before); }
    std::string text() const { return _text.str(); }

private:
    std::ostream& _stream;
    std::ostringstream _text;
    std::streambuf* _before;
};

struct Editor {
    Gtk::Main toolkit{false};
    Network network;
    MemoryFile file;

    /// @return false when the reader ended the program
    bool read(const std::string& text) {
        const std::string& path = file.write(text);
        isReading = true;
        if (setjmp(beforeReading) != 0) {
            std::fclose(yyin);
            yyin = nullptr;
            return false;
        }
        const bool isRead = network.controleur.parser(path);
        isReading = false;
        EXPECT_TRUE(isRead);
        return true;
    }
};

void dropZeros(Modele::Multiset& m) {
    std::erase_if(m, [](const auto& entry) { return entry.second == 0; });
}

/// What is left of `content` in a file: entries that count 0 are not written.
Content written(Content content) {
    for (auto& [name, node] : content.nodes) {
        if (node.marking) dropZeros(*node.marking);
    }
    std::multiset<Content::Arc> arcs;
    for (auto [source, destination, rule] : content.arcs) {
        if (rule) {
            dropZeros(rule->first);
            dropZeros(rule->second);
        }
        arcs.emplace(source, destination, rule);
    }
    content.arcs = arcs;
    return content;
}

void expectRead(Editor& editor, const std::string& text) {
    const Captured errors(std::cerr);
    EXPECT_TRUE(editor.read(text)) << errors.text();
    EXPECT_EQ(errors.text(), "");
}

void expectRefused(Editor& editor, const std::string& text, const std::string& complaint) {
    const MayLeak refusal;
    const Captured errors(std::cerr);
    EXPECT_FALSE(editor.read(text));
    EXPECT_EQ(errors.text(), complaint);
    EXPECT_EQ(exitStatus & 0xFF, 255);
}

void expectSameAfterSaving(Editor& editor) {
    const Content content = contentOf(editor.network);
    const std::string positions = editor.network.drawing->toString();
    const std::string file = editor.network.controleur.toString();
    EXPECT_TRUE(editor.read(file)) << file;
    EXPECT_EQ(contentOf(editor.network), written(content)) << file;
    EXPECT_EQ(editor.network.drawing->toString(), positions);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Editor& editor = *new Editor;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string complaint = complaintAbout(text);
    const Captured traces(std::cout);
    if (complaint.empty()) {
        expectRead(editor, text);
        expectSameAfterSaving(editor);
    } else {
        expectRefused(editor, text, complaint);
    }
    editor.network.controleur.clear();
    return 0;
}
