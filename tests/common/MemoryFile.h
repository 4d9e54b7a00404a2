// A file that exists only in memory, and has a path all the same.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

class MemoryFile {
public:
    MemoryFile()
        : _descriptor(memfd_create("klv-test", MFD_CLOEXEC)), _path("/proc/self/fd/" + std::to_string(_descriptor)) {}
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(_descriptor); }

    /// Makes `text` the whole content.
    /// @return the path
    const std::string& write(const std::string& text) const {
        EXPECT_EQ(ftruncate(_descriptor, 0), 0);
        EXPECT_EQ(pwrite(_descriptor, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
        return _path;
    }

private:
    int _descriptor;
    std::string _path;
};
