// Who frees what: shapes take their arrows with them, an arrow frees its label, and an arrow held by value is only let
// go. Under the address sanitizer these tests also prove that nothing is freed twice or never.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <optional>
#include <random>
#include <vector>

#include "EGD/Arc.h"
#include "EGD/Arrow.h"
#include "EGD/Text.h"
#include "Helpers.h"

namespace {

using EGD::Arrow;

std::unique_ptr<EGD::Arc> newDisc(double x, double y) { return std::make_unique<EGD::Arc>(x, y, 20.0, 360.0, 0.0); }

/// Counts how often a drawing, which may be freed by anyone, announces its end.
class Ends {
public:
    template <class Shape>
    Shape* of(Shape* drawing) {
        drawing->signal_deleted().connect([this] { ++_count; });
        return drawing;
    }
    operator int() const { return _count; }

private:
    int _count = 0;
};

TEST(ShapeDestroyed, TakesEveryArrowThatTouchesItWithIt) {
    Ends ends;
    auto a = newDisc(0, 0);
    auto b = newDisc(100, 0);
    auto c = newDisc(200, 0);
    ends.of(new Arrow(a.get(), b.get()))->setLabel("out");
    ends.of(new Arrow(c.get(), a.get()))->setLabel("in");
    ends.of(new Arrow(a.get(), b.get()));
    Ends others;
    others.of(new Arrow(b.get(), c.get()));
    a.reset();
    EXPECT_EQ(ends, 3);
    EXPECT_EQ(others, 0);
    EXPECT_TRUE(c->arrowInFrom(b.get()));
    b.reset();
    EXPECT_EQ(others, 1);
}

TEST(ShapeDestroyed, TakesItsLoopOnce) {
    Ends ends;
    auto a = newDisc(0, 0);
    ends.of(new Arrow(a.get(), a.get()))->setLabel("loop");
    a.reset();
    EXPECT_EQ(ends, 1);
}

TEST(ShapeDestroyed, TakesItsArrowsBeforeItLeavesAndThroughTheirArea) {
    TestArea area;
    auto a = newDisc(50, 50);
    auto b = newDisc(150, 50);
    area.add(a.get());
    area.add(b.get());
    auto* arrow = new Arrow(a.get(), b.get());
    area.add(arrow);
    std::vector<std::string> order;
    arrow->signal_deleted().connect([&] { order.push_back("arrow"); });
    a->signal_deleted().connect([&] { order.push_back("shape"); });
    ASSERT_THAT(area.underMouse(100, 50), testing::ElementsAre(arrow));
    a.reset();
    EXPECT_THAT(order, testing::ElementsAre("arrow", "shape"));
    EXPECT_THAT(area.underMouse(100, 50), testing::IsEmpty());
}

TEST(ShapeDestroyed, TakesTheArrowsThatStartThereBeforeThoseThatEndThere) {
    auto a = newDisc(50, 50);
    auto b = newDisc(150, 50);
    std::vector<std::string> order;
    (new Arrow(b.get(), a.get()))->signal_deleted().connect([&] { order.push_back("in"); });
    (new Arrow(a.get(), b.get()))->signal_deleted().connect([&] { order.push_back("out"); });
    a.reset();
    EXPECT_THAT(order, testing::ElementsAre("out", "in"));
}

TEST(ShapeDestroyed, LetsItsOwnerDestroyMoreFromAnArrowsFarewell) {
    auto a = newDisc(50, 50);
    auto b = newDisc(150, 50);
    Ends ends;
    auto* first = ends.of(new Arrow(a.get(), b.get()));
    auto* second = ends.of(new Arrow(b.get(), a.get()));
    first->signal_deleted().connect([&] { delete second; });
    a.reset();
    EXPECT_EQ(ends, 2);
}

TEST(ShapeDestroyed, AfterItsArrowsFindsNothingToTake) {
    auto a = newDisc(0, 0);
    auto b = newDisc(100, 0);
    Ends ends;
    delete ends.of(new Arrow(a.get(), b.get()));
    a.reset();
    b.reset();
    EXPECT_EQ(ends, 1);
}

TEST(ShapeDestroyed, ThatIsATextTakesItsArrowsToo) {
    auto text = std::make_unique<EGD::Text>("label", 0.0, 0.0, 15, "Monospace");
    auto disc = newDisc(100, 0);
    Ends ends;
    ends.of(new Arrow(text.get(), disc.get()));
    text.reset();
    EXPECT_EQ(ends, 1);
}

TEST(ArrowHeldByValue, IsLetGoByWhicheverEndDiesFirst) {
    TestArea area;
    for (const bool beginDiesFirst : {true, false}) {
        SCOPED_TRACE(beginDiesFirst ? "begin first" : "end first");
        auto begin = newDisc(50, 50);
        auto end = newDisc(150, 50);
        Arrow arrow(begin.get(), end.get());
        arrow.holdByValue();
        arrow.setLabel("rule");
        Count deletions(arrow.signal_deleted());

        (beginDiesFirst ? begin : end).reset();
        EXPECT_EQ(arrow.getBegin(), begin.get());
        EXPECT_EQ(arrow.getEnd(), end.get());
        EXPECT_FALSE(isPickedAt(area, arrow, 100, 50));
        (beginDiesFirst ? end : begin).reset();
        EXPECT_EQ(arrow.getBegin(), nullptr);
        EXPECT_EQ(arrow.getEnd(), nullptr);
        EXPECT_EQ(deletions, 0) << "its owner frees it";
        EXPECT_TRUE(Picture::ofDrawing(area, arrow, 200, 100).isBlank());
    }
}

TEST(ArrowHeldByValue, ThatIsALoopIsLetGoAtBothEnds) {
    auto shape = newDisc(50, 50);
    Arrow loop(shape.get(), shape.get());
    loop.holdByValue();
    loop.setLabel("rule");
    shape.reset();
    EXPECT_EQ(loop.getBegin(), nullptr);
    EXPECT_EQ(loop.getEnd(), nullptr);
}

TEST(ArrowHeldByValue, MayDieBeforeItsEnds) {
    auto begin = newDisc(50, 50);
    auto end = newDisc(150, 50);
    {
        Arrow arrow(begin.get(), end.get());
        arrow.holdByValue();
    }
    EXPECT_FALSE(end->arrowInFrom(begin.get()));
    begin.reset();
    end.reset();
}

TEST(ArrowHeldByValue, CanBeHungOnOtherShapesAfterItWasLetGo) {
    TestArea area;
    auto begin = newDisc(50, 50);
    auto end = newDisc(150, 50);
    Arrow arrow(begin.get(), end.get());
    arrow.holdByValue();
    end.reset();
    end = newDisc(50, 150);
    arrow.setEnd(end.get());
    EXPECT_TRUE(isPickedAt(area, arrow, 50, 100));
    EXPECT_TRUE(end->arrowInFrom(begin.get()));
}

TEST(ArrowAndShapes, OnOneAreaAreFreedOnceByDeleteAllInWhateverOrderTheyStand) {
    std::mt19937 random(7);
    for (int run = 0; run < 40; ++run) {
        TestArea area;
        Ends ends;
        std::vector<EGD::Drawing*> drawings;
        std::vector<EGD::Arc*> discs;
        for (int i = 0; i < 4; ++i) {
            discs.push_back(ends.of(newDisc(100.0 * i, 0).release()));
            drawings.push_back(discs.back());
        }
        for (int i = 0; i < 8; ++i) {
            auto* arrow = ends.of(new Arrow(discs[random() % 4], discs[random() % 4]));
            if (i % 2 == 0) arrow->setLabel("rule");
            drawings.push_back(arrow);
        }
        std::shuffle(drawings.begin(), drawings.end(), random);
        for (EGD::Drawing* drawing : drawings) area.add(drawing);
        area.setPick(50, 0);
        area.deleteAll();
        EXPECT_EQ(ends, 12);
    }
}

TEST(ArrowAndShapes, AreFreedOnceWhenShapesAndArrowsHeldByValueDieInRandomOrder) {
    std::mt19937 random(11);
    for (int run = 0; run < 40; ++run) {
        Ends ends;
        std::vector<std::unique_ptr<EGD::Drawing>> owned;
        std::vector<EGD::Arc*> discs;
        for (int i = 0; i < 4; ++i) {
            discs.push_back(ends.of(newDisc(100.0 * i, 0).release()));
            owned.emplace_back(discs.back());
        }
        for (int i = 0; i < 8; ++i) {
            auto* arrow = ends.of(new Arrow(discs[random() % 4], discs[random() % 4]));
            arrow->holdByValue();
            arrow->setLabel("rule");
            owned.emplace_back(arrow);
        }
        std::shuffle(owned.begin(), owned.end(), random);
        for (auto& drawing : owned) drawing.reset();
        EXPECT_EQ(ends, 12);
    }
}

TEST(Label, IsFreedWithItsArrowAndWhenItIsDeleted) {
    auto a = newDisc(0, 0);
    auto b = newDisc(100, 0);
    Arrow arrow(a.get(), b.get());
    arrow.setLabel("one");
    arrow.setLabel("two");
    arrow.deleteLabel();
    arrow.setLabel("three");
    arrow.deleteLabel();
    arrow.deleteLabel();
    arrow.setLabel("four");
    EXPECT_FALSE(arrow.isPicked());
}

}  // namespace
