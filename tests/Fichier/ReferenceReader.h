// A second opinion on .klv texts: a recogniser written by hand, without any of the reader's tables.
#pragma once

#include <string>

/// The error line, with its end of line, that the reader owes `text`; empty when the text is well formed.
std::string complaintAbout(const std::string& text);
