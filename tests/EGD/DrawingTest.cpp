// What every drawing shares: its settings and what they announce, and the one routine that paints and picks.
#include "EGD/Drawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Helpers.h"
#include "common/Toolkit.h"

namespace {

using testing::ElementsAre;

TEST(Drawing, IsBornUnpickedOutsideAnyAreaAtItsPosition) {
    Square drawing(3, -4, 10);
    EXPECT_EQ(drawing.getPosX(), 3);
    EXPECT_EQ(drawing.getPosY(), -4);
    EXPECT_FALSE(drawing.isPicked());
    EXPECT_EQ(drawing.getArea(), nullptr);
}

// -- what announces a change

struct Operation {
    std::string name;
    std::function<void(EGD::Drawing&)> perform;
    int announcements;
};

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

class EveryOperation : public testing::TestWithParam<Operation> {};

TEST_P(EveryOperation, AnnouncesAsManyChangesAsItMakes) {
    TestArea area;
    Square drawing(1, 2, 10);
    area.add(&drawing);
    Count updates(drawing.signal_updated());
    Count deletions(drawing.signal_deleted());
    GetParam().perform(drawing);
    EXPECT_EQ(updates, GetParam().announcements);
    EXPECT_EQ(deletions, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Drawing, EveryOperation,
    testing::Values(
        Operation{"SetColorFill", [](auto& d) { d.setColorFill(1, 2, 3, 4); }, 1},
        Operation{"SetColorIn", [](auto& d) { d.setColorIn(1, 2, 3, 4); }, 1},
        Operation{"SetWidthLine", [](auto& d) { d.setWidthLine(5.0); }, 1},
        Operation{"SetPos", [](auto& d) { d.setPos(5, 6); }, 1}, Operation{"SetPosX", [](auto& d) { d.setPosX(5); }, 1},
        Operation{"SetPosY", [](auto& d) { d.setPosY(5); }, 1}, Operation{"Move", [](auto& d) { d.move(5, 6); }, 1},
        Operation{"MoveByNothing", [](auto& d) { d.move(0, 0); }, 1},
        Operation{"AddPosX", [](auto& d) { d.addPosX(5); }, 1}, Operation{"AddPosY", [](auto& d) { d.addPosY(5); }, 1},
        Operation{"GetPos", [](auto& d) { d.setVisible(d.getPosX() + d.getPosY() > 0); }, 0},
        Operation{"SetVisible", [](auto& d) { d.setVisible(false); }, 0},
        Operation{"SetArea", [](auto& d) { d.setArea(d.getArea()); }, 0},
        Operation{"AddTranslation", [](auto& d) { d.addTranslation(1, 2, 3); }, 0},
        Operation{"ClearAllAnimations", [](auto& d) { d.clearAllAnimations(); }, 0},
        Operation{"NextFrameWithoutTranslation", [](auto& d) { d.nextFrame(); }, 0},
        Operation{"NextFrameWithATranslation",
                  [](auto& d) {
                      d.addTranslation(1, 2, 1);
                      d.nextFrame();
                  },
                  1},
        Operation{"IsPicked", [](auto& d) { d.setVisible(d.isPicked()); }, 0},
        Operation{"ButtonPressed",
                  [](EGD::Drawing& d) {
                      auto event = buttonEvent(0, 0);
                      d.EGD::Drawing::buttonPressed(&event);
                      d.EGD::Drawing::buttonReleased(&event);
                  },
                  0},
        Operation{"Draw",
                  [](EGD::Drawing& d) {
                      const Picture picture(10, 10);
                      d.draw(d.getArea(), picture.context());
                  },
                  0}),
    [](const auto& row) { return row.param.name + (row.param.announcements == 0 ? "Never" : "Once"); });

TEST(Drawing, ReturnsItselfFromItsColourAndWidthSettersForChaining) {
    Square drawing(0, 0, 10);
    EXPECT_EQ(drawing.setColorFill(1, 1, 1, 1)->setColorIn(1, 1, 1, 1)->setWidthLine(2), &drawing);
}

TEST(Drawing, IsPlacedAndMovedAlongEitherAxis) {
    Square drawing(0, 0, 10);
    drawing.setPos(1, 2);
    EXPECT_THAT((std::vector{drawing.getPosX(), drawing.getPosY()}), ElementsAre(1, 2));
    drawing.setPosX(10);
    EXPECT_THAT((std::vector{drawing.getPosX(), drawing.getPosY()}), ElementsAre(10, 2));
    drawing.setPosY(20);
    EXPECT_THAT((std::vector{drawing.getPosX(), drawing.getPosY()}), ElementsAre(10, 20));
    drawing.move(0.5, -0.5);
    EXPECT_THAT((std::vector{drawing.getPosX(), drawing.getPosY()}), ElementsAre(10.5, 19.5));
    drawing.addPosX(1);
    EXPECT_THAT((std::vector{drawing.getPosX(), drawing.getPosY()}), ElementsAre(11.5, 19.5));
    drawing.addPosY(-2);
    EXPECT_THAT((std::vector{drawing.getPosX(), drawing.getPosY()}), ElementsAre(11.5, 17.5));
}

TEST(Drawing, HasMovedWhenItsChangeIsAnnounced) {
    Square drawing(0, 0, 10);
    double seen = 0;
    drawing.signal_updated().connect([&] { seen = drawing.getPosX(); });
    drawing.setPosX(42);
    EXPECT_EQ(seen, 42);
}

// -- redraws

TEST(DrawingOnAnArea, RequestsARedrawForEveryChangeOfPlaceColourOrWidth) {
    TestArea area;
    OnScreen screen(area);
    Square drawing(50, 50, 10);
    area.add(&drawing);
    screen.takeRequestedRedraw();

    const std::vector<std::function<void()>> changes = {
        [&] { drawing.setPos(1, 2); },
        [&] { drawing.move(1, 2); },
        [&] { drawing.setColorFill(1, 2, 3, 4); },
        [&] { drawing.setColorIn(1, 2, 3, 4); },
        [&] { drawing.setWidthLine(1); },
    };
    for (const auto& change : changes) {
        change();
        EXPECT_TRUE(screen.isRedrawRequested());
        EXPECT_FALSE(screen.isRedrawRequested()) << "one change, one request";
    }
}

TEST(DrawingOnAnArea, RequestsNoRedrawWhenOnlyItsVisibilityChanges) {
    TestArea area;
    OnScreen screen(area);
    Square drawing(50, 50, 10);
    area.add(&drawing);
    screen.takeRequestedRedraw();
    drawing.setVisible(false);
    drawing.setVisible(true);
    EXPECT_FALSE(screen.isRedrawRequested());
}

// -- painting

TEST(DrawnByDefault, OnlyTheOutlineIsPaintedThreePixelsWideInOpaqueBlack) {
    TestArea area;
    Square square(50.5, 50.5, 40);  // its sides run through the middle of pixels 30 and 70
    const Picture picture = Picture::ofDrawing(area, square, 100, 100);
    EXPECT_EQ(picture.at(28, 50), white);
    for (const int x : {29, 30, 31}) EXPECT_EQ(picture.at(x, 50), black) << "at " << x;
    EXPECT_EQ(picture.at(32, 50), white);
    EXPECT_EQ(picture.at(50, 50), white) << "nothing inside";
    EXPECT_EQ(picture.at(50, 70), black);
}

TEST(Drawn, TheInteriorHasTheInteriorColourAndTheOutlineTheOtherOverIt) {
    TestArea area;
    Square square(50.5, 50.5, 40);
    square.setColorIn(255, 0, 0, 255)->setColorFill(0, 0, 255, 255);
    const Picture picture = Picture::ofDrawing(area, square, 100, 100);
    EXPECT_EQ(picture.at(50, 50), (Pixel{255, 0, 0}));
    for (const int x : {29, 30, 31}) EXPECT_EQ(picture.at(x, 50), (Pixel{0, 0, 255})) << "at " << x;
    EXPECT_EQ(picture.at(32, 50), (Pixel{255, 0, 0}));
    EXPECT_EQ(picture.at(28, 50), white);
}

TEST(Drawn, ATranslucentInteriorLetsTheBackgroundThrough) {
    TestArea area;
    Square square(50.5, 50.5, 40);
    square.setColorIn(255, 0, 0, 50);
    EXPECT_EQ(Picture::ofDrawing(area, square, 100, 100).at(50, 50), (Pixel{255, 205, 205}));
}

TEST(Drawn, TheInteriorAloneReachesTheMiddleOfTheOutline) {
    TestArea area;
    Square square(50, 50, 40);
    square.setColorIn(255, 0, 0, 255)->setColorFill(0, 0, 0, 0);
    const Picture picture = Picture::ofDrawing(area, square, 100, 100);
    EXPECT_EQ(picture.at(30, 50), (Pixel{255, 0, 0}));
    EXPECT_EQ(picture.at(29, 50), white);
}

TEST(Drawn, TheOutlineIsAsWideAsItsWidthSays) {
    TestArea area;
    Square square(50.5, 50.5, 40);
    square.setWidthLine(7);
    const Picture picture = Picture::ofDrawing(area, square, 100, 100);
    EXPECT_EQ(picture.at(26, 50), white);
    for (int x = 27; x <= 33; ++x) EXPECT_EQ(picture.at(x, 50), black) << "at " << x;
    EXPECT_EQ(picture.at(34, 50), white);
}

TEST(Drawn, NothingIsBuiltPaintedOrPickedWithBothColoursOff) {
    TestArea area;
    Square square(50, 50, 40);
    square.setColorIn(255, 0, 0, 0)->setColorFill(0, 0, 255, 0);
    EXPECT_TRUE(Picture::ofDrawing(area, square, 100, 100).isBlank());
    EXPECT_FALSE(isPickedAt(area, square, 50, 50));
    EXPECT_FALSE(isPickedAt(area, square, 30, 50));
    EXPECT_EQ(square.paints, 0);
}

TEST(Drawn, NothingIsBuiltPaintedOrPickedWhileInvisibleAndTheResultIsStillTrue) {
    TestArea area;
    Square square(50, 50, 40);
    filled(&square);
    ASSERT_TRUE(isPickedAt(area, square, 50, 50));
    square.setVisible(false);
    const int paintsBefore = square.paints;

    const Picture picture(100, 100);
    EXPECT_TRUE(square.draw(&area, picture.context()));
    EXPECT_TRUE(picture.isBlank());
    EXPECT_FALSE(square.isPicked()) << "the earlier pick is forgotten";
    EXPECT_EQ(square.paints, paintsBefore);

    square.setVisible(true);
    EXPECT_TRUE(isPickedAt(area, square, 50, 50));
}

/// Returns false from vDraw, which says nothing about the drawing's stay.
class Reluctant : public EGD::Drawing {
public:
    using EGD::Drawing::Drawing;

private:
    bool vDraw(EGD::EasyDrawingArea*, const Cairo::RefPtr<Cairo::Context>&) override { return false; }
};

TEST(Drawn, TheResultIsTrueWhateverThePathBuilderReturns) {
    TestArea area;
    Reluctant drawing(0, 0);
    area.add(&drawing);
    const Picture picture(10, 10);
    EXPECT_TRUE(drawing.draw(&area, picture.context()));
    area.on_draw(picture.context());
    Count deletions(drawing.signal_deleted());
    area.on_draw(picture.context());
    EXPECT_EQ(deletions, 0) << "the area keeps it";
}

TEST(Drawn, TheContextIsLeftAsItWasFound) {
    TestArea area;
    Square square(50, 50, 40);
    square.setColorIn(255, 0, 0, 255)->setColorFill(0, 255, 0, 255)->setWidthLine(9);
    const Picture picture(100, 100);
    const auto& cr = picture.context();
    cr->set_source_rgba(0.25, 0.5, 0.75, 1.0);
    cr->set_line_width(1.25);
    square.draw(&area, cr);

    double r = 0, g = 0, b = 0, a = 0;
    Cairo::RefPtr<Cairo::SolidPattern>::cast_static(cr->get_source())->get_rgba(r, g, b, a);
    EXPECT_THAT((std::vector{r, g, b, a}), ElementsAre(0.25, 0.5, 0.75, 1.0));
    EXPECT_EQ(cr->get_line_width(), 1.25);
    double x = 1, y = 1;
    cr->user_to_device(x, y);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 1);
    EXPECT_FALSE(cr->has_current_point()) << "no path is left behind";
}

// -- picking

TEST(PickedByDefault, ExactlyWithinOneAndAHalfPixelsOfTheOutline) {
    TestArea area;
    Square square(50, 50, 40);
    EXPECT_TRUE(isPickedAt(area, square, 30, 50));
    EXPECT_TRUE(isPickedAt(area, square, 31.4, 50));
    EXPECT_TRUE(isPickedAt(area, square, 28.6, 50));
    EXPECT_FALSE(isPickedAt(area, square, 31.6, 50));
    EXPECT_FALSE(isPickedAt(area, square, 28.4, 50));
    EXPECT_FALSE(isPickedAt(area, square, 50, 50)) << "the inside of an unfilled shape does not pick";
}

TEST(Picked, AnywhereOnThePaintedInteriorAndOutline) {
    TestArea area;
    Square square(50, 50, 40);
    square.setColorIn(255, 0, 0, 1);
    EXPECT_TRUE(isPickedAt(area, square, 50, 50));
    EXPECT_TRUE(isPickedAt(area, square, 28.6, 50)) << "the outline reaches beyond the interior";
    EXPECT_FALSE(isPickedAt(area, square, 28.4, 50));
}

TEST(Picked, NotOnTheOutlineBeyondTheInteriorWhenTheOutlineIsOff) {
    TestArea area;
    Square square(50, 50, 40);
    square.setColorIn(255, 0, 0, 255)->setColorFill(0, 0, 0, 0);
    EXPECT_TRUE(isPickedAt(area, square, 30.2, 50));
    EXPECT_FALSE(isPickedAt(area, square, 29.8, 50));
}

TEST(Picked, FurtherOffAWiderOutline) {
    TestArea area;
    Square square(50, 50, 40);
    square.setWidthLine(10);
    EXPECT_TRUE(isPickedAt(area, square, 34.8, 50));
    EXPECT_FALSE(isPickedAt(area, square, 35.2, 50));
}

TEST(Picked, WhereItStandsNowNotWhereItStood) {
    TestArea area;
    Square square(50, 50, 40);
    filled(&square);
    ASSERT_TRUE(isPickedAt(area, square, 50, 50));
    square.setPos(200, 50);
    EXPECT_TRUE(square.isPicked()) << "until it is drawn again";
    EXPECT_FALSE(isPickedAt(area, square, 50, 50));
    EXPECT_TRUE(isPickedAt(area, square, 200, 50));
}

TEST(Picked, ThroughWhateverTransformItIsPaintedWith) {
    TestArea area;
    Square square(10, 0, 4);
    filled(&square);
    const Picture picture(200, 200);
    const auto& cr = picture.context();
    cr->translate(100, 100);
    cr->rotate_degrees(90);
    cr->scale(2, 2);

    area.setPick(100, 120);  // where (10, 0) comes to lie
    square.draw(&area, cr);
    EXPECT_TRUE(square.isPicked());
    area.setPick(120, 100);
    square.draw(&area, cr);
    EXPECT_FALSE(square.isPicked());
}

// -- the end

TEST(DrawingDestroyed, AnnouncesItsEndOnceAndThenLeavesItsArea) {
    TestArea area;
    OnScreen screen(area);
    auto square = std::make_unique<Square>(50, 50, 40);
    filled(square.get());
    area.add(square.get());
    screen.takeRequestedRedraw();

    int deletions = 0;
    bool hadLeft = true;
    square->signal_deleted().connect([&, raw = square.get()] {
        ++deletions;
        hadLeft = raw->getArea() != &area || screen.isRedrawRequested();
    });
    square.reset();
    EXPECT_EQ(deletions, 1);
    EXPECT_FALSE(hadLeft) << "first the announcement, then the leave";
    EXPECT_TRUE(screen.isRedrawRequested()) << "leaving redraws the area";
    EXPECT_TRUE(area.underMouse(50, 50).empty());
}

TEST(DrawingDestroyed, OutsideAnyAreaOnlyAnnouncesIt) {
    auto square = std::make_unique<Square>(50, 50, 40);
    int updates = 0;
    int deletions = 0;
    square->signal_updated().connect([&] { ++updates; });
    square->signal_deleted().connect([&] { ++deletions; });
    square.reset();
    EXPECT_EQ(deletions, 1);
    EXPECT_EQ(updates, 0);
}

}  // namespace
