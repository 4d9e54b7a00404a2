// Saving a file so that nothing is ever lost: whoever looks at it, at any moment and after any fault, finds the old
// text whole or the new one whole.
#pragma once

#include <string>

/// Makes `text` the content of the file `path`: writes a new file beside it, forces it to the disk, and puts it in the
/// old one's place in one step. Permissions and group are kept; of a symbolic link, the file it points to is replaced.
/// @throw std::system_error when that cannot be done, also because the folder takes no new file. The old file is then
/// as it was, and nothing is left behind.
void remplacerFichier(const std::string& path, const std::string& text);
