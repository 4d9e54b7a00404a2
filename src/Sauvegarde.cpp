#include "Sauvegarde.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace {

[[noreturn]] void fail(int error) { throw std::system_error(error, std::generic_category()); }

void check(int result) {
    if (result != 0) fail(errno);
}

/// A file that is being written under a name of its own. It goes away again unless it takes another one's place.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::filesystem::path& folder)
        : _name((folder / ".klv-save-XXXXXX").string()), _descriptor(mkostemp(_name.data(), O_CLOEXEC)) {
        if (_descriptor < 0) fail(errno);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (_descriptor >= 0) close(_descriptor);
        if (!_isInPlace) unlink(_name.c_str());
    }

    void write(std::string_view text) {
        while (!text.empty()) {
            const ssize_t written = ::write(_descriptor, text.data(), text.size());
            if (written >= 0) {
                text.remove_prefix(static_cast<std::size_t>(written));
            } else if (errno != EINTR) {
                fail(errno);
            }
        }
    }

    void likeNew() {
        const mode_t mask = umask(0);
        umask(mask);
        check(fchmod(_descriptor, 0666 & ~mask));
    }

    void like(const struct stat& old) {
        // Only root and members of the group may do this; the group first, since changing it clears special bits.
        [[maybe_unused]] const int isKept = fchown(_descriptor, static_cast<uid_t>(-1), old.st_gid);
        check(fchmod(_descriptor, old.st_mode & 07777));
    }

    void takePlaceOf(const std::filesystem::path& target) {
        check(fsync(_descriptor));
        const int descriptor = _descriptor;
        _descriptor = -1;
        check(close(descriptor));
        check(rename(_name.c_str(), target.c_str()));
        _isInPlace = true;
    }

private:
    std::string _name;
    int _descriptor;
    bool _isInPlace = false;
};

/// The file that opening `path` would reach or make: links are followed, also one to a file that does not exist yet.
std::filesystem::path behindLinks(const std::filesystem::path& path) {
    std::error_code failure;
    std::filesystem::path target = std::filesystem::canonical(path, failure);
    if (!failure) return target;
    if (failure != std::errc::no_such_file_or_directory) throw std::system_error(failure);

    target = std::filesystem::absolute(path);
    while (std::filesystem::is_symlink(target)) target = target.parent_path() / std::filesystem::read_symlink(target);
    return target;
}

}  // namespace

void remplacerFichier(const std::string& path, const std::string& text) {
    const std::filesystem::path target = behindLinks(path);
    struct stat old = {};
    const bool exists = stat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) fail(EINVAL);
    if (exists) check(access(target.c_str(), W_OK));  // a folder that can be written does not lift a file's protection

    TemporaryFile file(target.parent_path());
    file.write(text);
    if (exists) {
        file.like(old);
    } else {
        file.likeNew();
    }
    file.takePlaceOf(target);
}
