#include "ReferenceReader.h"

#include <cstddef>
#include <string_view>

namespace {

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
constexpr std::string_view digits = "0123456789";
constexpr std::string_view largestInt = "2147483647";
constexpr std::size_t longestName = 255;

struct Complaint {
    std::string message;
};

class Recogniser {
public:
    explicit Recogniser(std::string_view text) : _rest(text) {}

    void readFile() {
        for (next(); _token != end; next()) {
            expect(name);
            readDeclaration();
            expect(';');
        }
    }

    int line() const { return _line; }

private:
    static constexpr char name = 'n';
    static constexpr char number = 'd';
    static constexpr char arrow = '>';
    static constexpr char end = '\0';

    void expect(char token) const {
        if (_token != token) throw Complaint{"syntax error"};
    }

    /// What follows the first name, up to the ";".
    void readDeclaration() {
        next();
        if (_token == '(') {
            for (const char token : {number, ',', number, ')'}) {
                next();
                expect(token);
            }
            next();
        } else if (_token == ':') {
            readMultiset();
        } else {
            expect(arrow);
            next();
            expect(name);
            next();
            if (_token != ':') return;
            readMultiset();
            expect(arrow);
            readMultiset();
        }
    }

    void readMultiset() {
        next();
        while (_token == number || _token == name) {
            if (_token == number) {
                next();
                expect(name);
            }
            next();
        }
    }

    void next() {
        skipBlanks();
        if (_rest.empty()) {
            _token = end;
            return;
        }
        const char first = _rest.front();
        if (digits.find(first) != digits.npos) {
            readNumber();
        } else if (letters.find(first) != letters.npos) {
            readName();
        } else if (_rest.starts_with("->")) {
            _token = arrow;
            _rest.remove_prefix(2);
        } else if (std::string_view("(){};,:").find(first) != std::string_view::npos) {
            _token = first;
            _rest.remove_prefix(1);
        } else {
            throw Complaint{"lexical error <" + (first == '\0' ? "" : std::string(1, first)) + ">"};
        }
    }

    void skipBlanks() {
        while (!_rest.empty()) {
            if (_rest.starts_with("//")) {
                _rest.remove_prefix(std::min(_rest.find('\n'), _rest.size()));
            } else if (std::string_view(" \t\n").find(_rest.front()) != std::string_view::npos) {
                if (_rest.front() == '\n') ++_line;
                _rest.remove_prefix(1);
            } else {
                return;
            }
        }
    }

    void readNumber() {
        _token = number;
        std::string_view value = take(std::string(digits));
        value.remove_prefix(std::min(value.find_first_not_of('0'), value.size()));
        if (value.size() > largestInt.size() || (value.size() == largestInt.size() && value > largestInt)) {
            throw Complaint{"number out of range"};
        }
    }

    void readName() {
        _token = name;
        if (take(std::string(letters) + std::string(digits)).size() > longestName) throw Complaint{"name too long"};
    }

    std::string_view take(const std::string& characters) {
        const std::string_view taken = _rest.substr(0, _rest.find_first_not_of(characters));
        _rest.remove_prefix(taken.size());
        return taken;
    }

    std::string_view _rest;
    char _token = end;
    int _line = 1;
};

}  // namespace

std::string complaintAbout(const std::string& text) {
    Recogniser recogniser(text);
    try {
        recogniser.readFile();
        return "";
    } catch (const Complaint& complaint) {
        return "line " + std::to_string(recogniser.line()) + ": " + complaint.message + "\n";
    }
}
