// Translations, frame by frame.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

#include "EGD/Drawing.h"
#include "Helpers.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

struct Frame {
    double dx;
    double dy;
    bool goesOn;
};

std::vector<Frame> framesOf(EGD::Animation animation, std::size_t atMost = 1000) {
    std::vector<Frame> frames;
    do {
        Frame frame{};
        frame.goesOn = animation.getAddXY(frame.dx, frame.dy);
        frames.push_back(frame);
    } while (frames.back().goesOn && frames.size() < atMost);
    return frames;
}

MATCHER_P3(IsFrame, dx, dy, goesOn, "") {
    return std::abs(arg.dx - dx) < 1e-9 && std::abs(arg.dy - dy) < 1e-9 && arg.goesOn == goesOn;
}

/// The drawing's positions after each of the next `n` frames.
std::vector<std::pair<double, double>> positionsOver(EGD::Drawing& drawing, int n) {
    std::vector<std::pair<double, double>> positions;
    for (int i = 0; i < n; ++i) {
        drawing.nextFrame();
        positions.emplace_back(drawing.getPosX(), drawing.getPosY());
    }
    return positions;
}

TEST(Animation, Of30And40AtSpeed10TakesFiveStepsOf6And8) {
    EXPECT_THAT(framesOf(EGD::Animation(30, 40, 10)),
                ElementsAre(IsFrame(6, 8, true), IsFrame(6, 8, true), IsFrame(6, 8, true), IsFrame(6, 8, true),
                            IsFrame(6, 8, false)));
}

TEST(Animation, Of10AtSpeed3TakesThreeWholeStepsAndTheRemainder) {
    EXPECT_THAT(framesOf(EGD::Animation(10, 0, 3)),
                ElementsAre(IsFrame(3, 0, true), IsFrame(3, 0, true), IsFrame(3, 0, true), IsFrame(1, 0, false)));
}

TEST(Animation, RunsTowardsNegativeCoordinatesInTheSameWay) {
    EXPECT_THAT(framesOf(EGD::Animation(0, -10, 4)),
                ElementsAre(IsFrame(0, -4, true), IsFrame(0, -4, true), IsFrame(0, -2, false)));
    EXPECT_THAT(framesOf(EGD::Animation(-3, 4, 2.5)), ElementsAre(IsFrame(-1.5, 2, true), IsFrame(-1.5, 2, false)));
}

TEST(Animation, WithAStepLongerThanTheWayTakesOneFrame) {
    EXPECT_THAT(framesOf(EGD::Animation(3, 4, 100)), ElementsAre(IsFrame(3, 4, false)));
}

TEST(Animation, MakesUpItsDisplacementWhateverTheSpeed) {
    for (const double speed : {0.1, 0.7, 1.0, 3.3, 17.0}) {
        double dx = 0;
        double dy = 0;
        const auto frames = framesOf(EGD::Animation(-12.5, 31.25, speed));
        for (const Frame& frame : frames) {
            dx += frame.dx;
            dy += frame.dy;
            EXPECT_LE(std::hypot(frame.dx, frame.dy), speed * 1.001) << "no frame moves further than the speed";
        }
        EXPECT_FALSE(frames.back().goesOn);
        EXPECT_NEAR(dx, -12.5, 1e-9) << "at speed " << speed;
        EXPECT_NEAR(dy, 31.25, 1e-9) << "at speed " << speed;
    }
}

TEST(QueuedTranslation, MovesTheDrawingByOneStepAFrame) {
    Square drawing(100, 100, 10);
    drawing.addTranslation(30, 40, 10);
    EXPECT_EQ(drawing.getPosX(), 100) << "queueing alone moves nothing";
    EXPECT_THAT(positionsOver(drawing, 7), ElementsAre(Pair(106, 108), Pair(112, 116), Pair(118, 124), Pair(124, 132),
                                                       Pair(130, 140), Pair(130, 140), Pair(130, 140)));
}

TEST(QueuedTranslation, AppliesTheShorterLastStep) {
    Square drawing(0, 5, 10);
    drawing.addTranslation(10, 0, 3);
    EXPECT_THAT(positionsOver(drawing, 5), ElementsAre(Pair(3, 5), Pair(6, 5), Pair(9, 5), Pair(10, 5), Pair(10, 5)));
}

TEST(QueuedTranslation, WaitsForTheOnesBeforeIt) {
    Square drawing(0, 0, 10);
    drawing.addTranslation(5, 0, 3);
    drawing.addTranslation(0, 4, 4);
    drawing.addTranslation(-5, 0, 5);
    EXPECT_THAT(positionsOver(drawing, 5), ElementsAre(Pair(3, 0), Pair(5, 0), Pair(5, 4), Pair(0, 4), Pair(0, 4)));
}

TEST(QueuedTranslation, AnnouncesAChangeOnEveryFrameAndNoneOnceDone) {
    Square drawing(0, 0, 10);
    Count updates(drawing.signal_updated());
    drawing.addTranslation(10, 0, 3);
    EXPECT_EQ(updates, 0) << "queueing announces nothing";
    positionsOver(drawing, 4);
    EXPECT_EQ(updates, 4);
    positionsOver(drawing, 3);
    EXPECT_EQ(updates, 4);
}

TEST(QueuedTranslation, IsForgottenWithAllOthersLeavingTheDrawingWhereItIs) {
    Square drawing(0, 0, 10);
    Count updates(drawing.signal_updated());
    drawing.addTranslation(10, 0, 3);
    drawing.addTranslation(0, 10, 3);
    drawing.nextFrame();
    drawing.clearAllAnimations();
    EXPECT_EQ(updates, 1) << "forgetting announces nothing";
    EXPECT_THAT(positionsOver(drawing, 2), ElementsAre(Pair(3, 0), Pair(3, 0)));
    EXPECT_EQ(updates, 1);
}

TEST(QueuedTranslation, OfZeroLengthIsIgnored) {
    Square drawing(7, 8, 10);
    Count updates(drawing.signal_updated());
    drawing.addTranslation(0, 0, 3);
    drawing.addTranslation(2, 0, 2);
    EXPECT_THAT(positionsOver(drawing, 2), ElementsAre(Pair(9, 8), Pair(9, 8)));
    EXPECT_EQ(updates, 1) << "the empty translation takes no frame";
}

TEST(QueuedTranslation, MayBeFollowedByAnotherFromTheHandlerOfItsLastFrame) {
    Square drawing(0, 0, 10);
    bool isAdded = false;
    drawing.signal_updated().connect([&] {
        if (isAdded) return;
        isAdded = true;
        drawing.addTranslation(0, 1, 1);
    });
    drawing.addTranslation(1, 0, 1);
    EXPECT_THAT(positionsOver(drawing, 3), ElementsAre(Pair(1, 0), Pair(1, 1), Pair(1, 1)));
}

TEST(QueuedTranslation, MayBeForgottenFromTheHandlerOfItsOwnFrame) {
    Square drawing(0, 0, 10);
    drawing.signal_updated().connect([&] { drawing.clearAllAnimations(); });
    drawing.addTranslation(10, 0, 1);
    EXPECT_THAT(positionsOver(drawing, 2), ElementsAre(Pair(1, 0), Pair(1, 0)));
}

}  // namespace
