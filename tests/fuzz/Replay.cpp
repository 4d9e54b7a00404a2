// Every input kept in the target's corpus, the seeds of its fuzzer and whatever it once found, still holds the target's
// properties.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::set<std::filesystem::path> keptInputs() {
    std::set<std::filesystem::path> files;
    for (const auto& entry :
         std::filesystem::directory_iterator(KLV_SOURCE_DIR "/tests/fuzz/corpus/" KLV_FUZZ_TARGET)) {
        files.insert(entry.path());
    }
    return files;
}

class Corpus : public testing::Test {
    void TestBody() override {
        const auto inputs = keptInputs();
        EXPECT_FALSE(inputs.empty());
        for (const auto& path : inputs) {
            SCOPED_TRACE(path.string());
            std::fprintf(stderr, "%s\n", path.c_str());  // the last one named is the one that crashed
            std::ifstream file(path, std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        }
    }
};

const auto* const test = testing::RegisterTest("FuzzCorpus", KLV_FUZZ_TARGET, nullptr, nullptr, __FILE__, __LINE__,
                                               [] { return new Corpus; });

}  // namespace
