// Damaged and hostile files: reading takes time in proportion to the file, however long one token of it is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <string>

#include "Reading.h"
#include "common/Toolkit.h"

namespace {

constexpr std::size_t megabyte = 1 << 20;

/// The shortest of three readings, in seconds of this process.
double timeToRead(const std::string& text) {
    std::clock_t shortest = std::numeric_limits<std::clock_t>::max();
    for (int i = 0; i < 3; ++i) {
        Reader reader;
        const std::clock_t begin = std::clock();
        EXPECT_TRUE(reader.read(text));
        shortest = std::min(shortest, std::clock() - begin);
    }
    return static_cast<double>(shortest) / CLOCKS_PER_SEC;
}

/// `before`, then `repeated` up to `size` or twice that, then `after`: the double takes at most thrice the time.
void expectLinear(std::size_t size, const std::string& before, const std::string& repeated, const std::string& after) {
    const auto textOf = [&](std::size_t length) {
        std::string text = before;
        while (text.size() < length) text += repeated;
        return text + after;
    };
    const double once = timeToRead(textOf(size));
    const double twice = timeToRead(textOf(2 * size));
    EXPECT_LT(twice, 3 * once + 0.02);
}

TEST(LongRun, ZerosAreReadInLinearTime) { expectLinear(5 * megabyte, "q(", std::string(1000, '0'), "7, 0);"); }

TEST(LongRun, ACommentIsReadInLinearTime) { expectLinear(5 * megabyte, "//", std::string(1000, '/'), ""); }

TEST(LongRun, BlanksAreReadInLinearTime) { expectLinear(5 * megabyte, "q(1, 2)", std::string(1000, ' '), ";"); }

TEST(LongRun, NewlinesAreReadInLinearTime) { expectLinear(5 * megabyte, "q(1, 2)", std::string(1000, '\n'), ";"); }

TEST(LongRun, AMultisetIsReadInLinearTime) { expectLinear(megabyte, "q :", " 2a b", ";"); }

TEST(LongRun, DeclarationsOfOneNodeAreReadInLinearTime) { expectLinear(megabyte, "", "q(1, 2);\n", ""); }

TEST(LongRun, LettersAreTooLongAName) {
    EXPECT_EQ(endingOfReading(std::string(10 * megabyte, 'n')), (Ending{255, "", "line 1: name too long\n"}));
}

TEST(LongRun, DigitsAreANumberOutOfRange) {
    EXPECT_EQ(endingOfReading("q(" + std::string(10 * megabyte, '9')),
              (Ending{255, "", "line 1: number out of range\n"}));
}

}  // namespace
