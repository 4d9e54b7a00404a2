// What is written to standard output while the object lives.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

class Traces {
public:
    Traces() : _before(std::cout.rdbuf(_text.rdbuf())) {}
    Traces(const Traces&) = delete;
    Traces& operator=(const Traces&) = delete;
    ~Traces() { std::cout.rdbuf(_before); }

    std::string text() const { return _text.str(); }

    /// How often `line` was written as a whole line.
    int count(const std::string& line) const {
        std::istringstream lines(_text.str());
        int found = 0;
        for (std::string read; std::getline(lines, read);) found += read == line ? 1 : 0;
        return found;
    }

    /// How many lines begin with `prefix`.
    int countPrefix(const std::string& prefix) const {
        std::istringstream lines(_text.str());
        int found = 0;
        for (std::string read; std::getline(lines, read);) found += read.starts_with(prefix) ? 1 : 0;
        return found;
    }

private:
    std::ostringstream _text;
    std::streambuf* _before;
};
