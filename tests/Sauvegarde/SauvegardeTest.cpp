// Saving under faults: whatever goes wrong, the file is the old one whole or the new one whole, and nothing else is
// left.
#include "Sauvegarde.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <system_error>
#include <thread>

#include "common/OrdinaryUser.h"

namespace fs = std::filesystem;

namespace {

// What the next call of a kind does instead of its work; 0: its work.
int writeError = 0;
int fsyncError = 0;
int closeError = 0;
int renameError = 0;
int fchmodError = 0;
std::size_t bytesUntilWriteError = 0;

template <class Call>
auto failWith(int& error, Call call) {
    if (error == 0) return call();
    errno = std::exchange(error, 0);
    return static_cast<decltype(call())>(-1);
}

}  // namespace

extern "C" {
ssize_t __real_write(int descriptor, const void* bytes, size_t count);
int __real_fsync(int descriptor);
int __real_close(int descriptor);
int __real_rename(const char* from, const char* to);
int __real_fchmod(int descriptor, mode_t mode);

ssize_t __wrap_write(int descriptor, const void* bytes, size_t count) {
    if (writeError != 0 && bytesUntilWriteError > 0) {
        const std::size_t part = std::min(count, bytesUntilWriteError);
        bytesUntilWriteError -= part;
        return __real_write(descriptor, bytes, part);
    }
    return failWith(writeError, [&] { return __real_write(descriptor, bytes, count); });
}
int __wrap_fsync(int descriptor) {
    return failWith(fsyncError, [&] { return __real_fsync(descriptor); });
}
int __wrap_close(int descriptor) {
    if (closeError != 0) __real_close(descriptor);
    return failWith(closeError, [&] { return __real_close(descriptor); });
}
int __wrap_rename(const char* from, const char* to) {
    return failWith(renameError, [&] { return __real_rename(from, to); });
}
int __wrap_fchmod(int descriptor, mode_t mode) {
    return failWith(fchmodError, [&] { return __real_fchmod(descriptor, mode); });
}
}

namespace {

std::string contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void put(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

mode_t modeOf(const fs::path& path) {
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

class Saving : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "klv-saving-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
        file = folder / "model.klv";
    }

    void TearDown() override {
        fs::permissions(folder, fs::perms::owner_all);
        fs::remove_all(folder);
    }

    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

    void expectOldFileAlone(const std::string& old) const {
        EXPECT_EQ(contentOf(file), old);
        EXPECT_EQ(filesInFolder(), 1U);
    }

    void expectFailureThatKeepsTheOldFile() {
        put(file, "old");
        EXPECT_THROW(remplacerFichier(file, "new text"), std::system_error);
        expectOldFileAlone("old");
        remplacerFichier(file, "new text");
        expectOldFileAlone("new text");
    }

    fs::path folder;
    fs::path file;
};

int statusOfSaving(const fs::path& path, const std::string& text) {
    try {
        remplacerFichier(path, text);
        return 0;
    } catch (const std::system_error& failure) {
        return failure.code().value();
    }
}

}  // namespace

TEST_F(Saving, MakesANewFileWithThePermissionsThatTheUserGivesToNewFiles) {
    const mode_t before = umask(027);
    remplacerFichier(file, "text");
    umask(before);
    expectOldFileAlone("text");
    EXPECT_EQ(modeOf(file), 0640U);
}

TEST_F(Saving, WritesATextAsItStands) {
    const std::string text("a\0b\r\n\xff", 6);
    remplacerFichier(file, text);
    EXPECT_EQ(contentOf(file), text);
    remplacerFichier(file, "");
    EXPECT_EQ(contentOf(file), "");
}

TEST_F(Saving, KeepsThePermissionsOfTheFile) {
    put(file, "old");
    for (const mode_t mode : {0600U, 0664U, 0755U, 02660U}) {
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        remplacerFichier(file, "new");
        EXPECT_EQ(modeOf(file), mode);
    }
}

TEST_F(Saving, ReplacesTheFileBehindASymbolicLinkAndKeepsTheLink) {
    put(file, "old");
    fs::create_symlink("model.klv", folder / "link");
    fs::create_symlink("link", folder / "link to link");
    remplacerFichier(folder / "link to link", "new");
    EXPECT_EQ(contentOf(file), "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_TRUE(fs::is_symlink(folder / "link to link"));
    EXPECT_EQ(filesInFolder(), 3U);
}

TEST_F(Saving, ThroughALinkToNothingMakesTheFileItPointsTo) {
    fs::create_directory(folder / "elsewhere");
    fs::create_symlink(folder / "elsewhere" / "model.klv", folder / "link");
    fs::create_symlink("link", folder / "link to link");
    remplacerFichier(folder / "link to link", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link to link"));
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(contentOf(folder / "elsewhere" / "model.klv"), "new");
    EXPECT_EQ(filesInFolder(), 3U);
}

TEST_F(Saving, ThroughLinksThatGoRoundInACircleFails) {
    fs::create_symlink("there", folder / "back");
    fs::create_symlink("back", folder / "there");
    EXPECT_EQ(statusOfSaving(folder / "there", "new"), ELOOP);
    EXPECT_TRUE(fs::is_symlink(folder / "there"));
    EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(Saving, AcceptsTheLongestFileName) {
    file = folder / std::string(255, 'n');
    remplacerFichier(file, "text");
    expectOldFileAlone("text");
}

TEST_F(Saving, AcceptsANameInTheWorkingDirectory) {
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    remplacerFichier("model.klv", "text");
    fs::current_path(before);
    expectOldFileAlone("text");
}

TEST_F(Saving, AFullDiskLeavesTheOldFile) {
    writeError = ENOSPC;
    expectFailureThatKeepsTheOldFile();
}

TEST_F(Saving, ADiskThatFillsUpHalfWayLeavesTheOldFile) {
    writeError = ENOSPC;
    bytesUntilWriteError = 4;
    expectFailureThatKeepsTheOldFile();
}

TEST_F(Saving, AnExhaustedQuotaLeavesTheOldFile) {
    writeError = EDQUOT;
    expectFailureThatKeepsTheOldFile();
}

TEST_F(Saving, AnErrorThatShowsOnlyWhenTheDataReachTheDiskLeavesTheOldFile) {
    fsyncError = EIO;
    expectFailureThatKeepsTheOldFile();
}

TEST_F(Saving, AnErrorThatShowsOnlyWhenTheFileIsClosedLeavesTheOldFile) {
    closeError = EIO;
    expectFailureThatKeepsTheOldFile();
}

TEST_F(Saving, AFailedRenameLeavesTheOldFile) {
    renameError = EROFS;
    expectFailureThatKeepsTheOldFile();
}

TEST_F(Saving, PermissionsThatCannotBeKeptLeaveTheOldFile) {
    fchmodError = EPERM;
    expectFailureThatKeepsTheOldFile();
}

TEST_F(Saving, AWriteInterruptedByASignalGoesOn) {
    put(file, "old");
    writeError = EINTR;
    bytesUntilWriteError = 3;
    remplacerFichier(file, "new text");
    expectOldFileAlone("new text");
}

TEST_F(Saving, AFileThatMayNotGrowThatLargeIsLeftAsItWas) {
    put(file, "old");
    const pid_t child = fork();
    if (child == 0) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        _exit(statusOfSaving(file, std::string(100000, 'x')) == EFBIG ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    expectOldFileAlone("old");
}

TEST_F(Saving, IntoAFolderThatTakesNoNewFileFailsAndLeavesTheOldFile) {
    put(file, "old");
    fs::permissions(file, fs::perms::all);
    fs::permissions(folder, fs::perms(0555));
    EXPECT_EQ(asOrdinaryUser([&] { return statusOfSaving(file, "new"); }), EACCES);
    expectOldFileAlone("old");
}

TEST_F(Saving, OverAReadOnlyFileFailsAlthoughTheFolderCouldBeWritten) {
    put(file, "old");
    fs::permissions(file, fs::perms(0444));
    fs::permissions(folder, fs::perms::all);
    EXPECT_EQ(asOrdinaryUser([&] { return statusOfSaving(file, "new"); }), EACCES);
    expectOldFileAlone("old");
}

TEST_F(Saving, IntoAFolderThatWasRemovedFails) {
    EXPECT_EQ(statusOfSaving(folder / "gone" / "model.klv", "text"), ENOENT);
    EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(Saving, OverAFolderOrADeviceFails) {
    EXPECT_EQ(statusOfSaving(folder, "text"), EINVAL);
    EXPECT_EQ(statusOfSaving("/dev/full", "text"), EINVAL);
}

TEST_F(Saving, AKillAtAnyMomentLeavesTheOldFileWholeOrTheNewOneWhole) {
    constexpr int kills = 1000;
    const std::string even(300000, 'e');
    const std::string odd(200000, 'o');
    put(file, even);
    std::mt19937 random(1);
    std::uniform_int_distribution<int> microseconds(0, 3000);
    int evens = 0;
    for (int i = 0; i < kills; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            while (true) {
                remplacerFichier(file, odd);
                remplacerFichier(file, even);
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const std::string found = contentOf(file);
        ASSERT_TRUE(found == even || found == odd) << "after kill " << i << ": " << found.size() << " bytes";
        if (found == even) ++evens;
    }
    // Kills that all came before the first save, or all found one text, would prove nothing.
    EXPECT_GT(evens, 0);
    EXPECT_LT(evens, kills);
}
