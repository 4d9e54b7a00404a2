// Lines, arcs, rectangles and texts: what each of them paints.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pangomm/layout.h>

#include <cmath>
#include <string>
#include <type_traits>
#include <vector>

#include "EGD/Arc.h"
#include "EGD/Line.h"
#include "EGD/Rectangle.h"
#include "EGD/Text.h"
#include "Helpers.h"

namespace {

/// Which of the eight points on a circle around (x, y), from the right clockwise in steps of 45 degrees, pick the
/// drawing.
std::string pickedAround(TestArea& area, EGD::Drawing& drawing, double x, double y, double radius) {
    std::string picked;
    for (int i = 0; i < 8; ++i) {
        const double angle = (i + 0.001) * M_PI / 4;
        picked += isPickedAt(area, drawing, x + radius * std::cos(angle), y + radius * std::sin(angle)) ? '#' : '.';
    }
    return picked;
}

// -- Line

TEST(Line, RunsFromOneEndPointToTheOther) {
    TestArea area;
    EGD::Line line(20, 30, 80, 70);
    EXPECT_EQ(line.getPosX(), 0);
    EXPECT_EQ(line.getPosY(), 0);
    EXPECT_TRUE(isPickedAt(area, line, 50, 50));
    EXPECT_TRUE(isPickedAt(area, line, 21, 30.7));
    EXPECT_TRUE(isPickedAt(area, line, 79, 69.3));
    EXPECT_FALSE(isPickedAt(area, line, 18, 28.7)) << "it ends at its end points";
    EXPECT_FALSE(isPickedAt(area, line, 50, 53));
    EXPECT_FALSE(isPickedAt(area, line, 50, 47));
}

TEST(Line, IsPainted3PixelsWideInBlack) {
    TestArea area;
    EGD::Line line(10, 5, 10, 15);
    line.setPosX(0.5);
    const Picture picture = Picture::ofDrawing(area, line, 20, 20);
    for (const int x : {9, 10, 11}) EXPECT_EQ(picture.at(x, 10), black);
    EXPECT_EQ(picture.at(8, 10), white);
    EXPECT_EQ(picture.at(12, 10), white);
    EXPECT_EQ(picture.at(10, 4), white);
    EXPECT_EQ(picture.at(10, 5), black);
    EXPECT_EQ(picture.at(10, 15), white);
}

TEST(Line, MovesWithItsPosition) {
    TestArea area;
    EGD::Line line(0, 0, 10, 0);
    line.setPos(100, 50);
    EXPECT_TRUE(isPickedAt(area, line, 105, 50));
    EXPECT_FALSE(isPickedAt(area, line, 5, 0));
}

TEST(Line, NeverReportsAClickOfItsOwn) {
    const EGD::Line line(20, 30, 80, 70);
    EXPECT_FALSE(line.isClicked(50, 50));
    EXPECT_FALSE(line.isClicked(0, 0));
}

// -- Arc

TEST(Circle, From0To360IsWhole) {
    TestArea area;
    EGD::Arc circle(50, 50, 20, 360, 0);
    EXPECT_EQ(pickedAround(area, circle, 50, 50, 20), "########");
    EXPECT_EQ(pickedAround(area, circle, 50, 50, 18), "........");
    EXPECT_EQ(pickedAround(area, circle, 50, 50, 22), "........");
}

TEST(Circle, WithItsAnglesTheOtherWayRoundIsEmpty) {
    TestArea area;
    EGD::Arc circle(50, 50, 20, 0, 360);
    EXPECT_EQ(pickedAround(area, circle, 50, 50, 20), "........");
    EXPECT_TRUE(Picture::ofDrawing(area, circle, 100, 100).isBlank());
}

TEST(Circle, From0To90IsTheQuarterFromTheRightToTheBottom) {
    TestArea area;
    EGD::Arc quarter(50, 50, 20, 90, 0);
    EXPECT_EQ(pickedAround(area, quarter, 50, 50, 20), "##......") << "from the right clockwise";
    const Picture picture = Picture::ofDrawing(area, quarter, 100, 100);
    EXPECT_NE(picture.at(70, 51), white);
    EXPECT_NE(picture.at(51, 69), white);
    EXPECT_EQ(picture.at(30, 49), white);
    EXPECT_EQ(picture.at(49, 30), white);
    EXPECT_EQ(picture.at(64, 35), white);
}

TEST(Circle, RunsClockwiseFromTheSecondAngleToTheFirst) {
    TestArea area;
    EGD::Arc half(50, 50, 20, 180, 0);
    EXPECT_EQ(pickedAround(area, half, 50, 50, 20), "####....") << "the lower half on screen";
    EGD::Arc other(50, 50, 20, 0, 180);
    EXPECT_EQ(pickedAround(area, other, 50, 50, 20), "....####");
    EGD::Arc threeQuarters(50, 50, 20, 0, 90);
    EXPECT_EQ(pickedAround(area, threeQuarters, 50, 50, 20), "..######");
}

TEST(Circle, IsPickedInsideOnlyWithAnInteriorColour) {
    TestArea area;
    EGD::Arc circle(50, 50, 20, 360, 0);
    EXPECT_FALSE(isPickedAt(area, circle, 50, 50));
    circle.setColorIn(255, 0, 0, 50);
    EXPECT_TRUE(isPickedAt(area, circle, 50, 50));
    EXPECT_TRUE(isPickedAt(area, circle, 50 + 21.4, 50));
    EXPECT_FALSE(isPickedAt(area, circle, 50 + 21.7, 50));
    EXPECT_FALSE(isPickedAt(area, circle, 50 + 19, 50 + 19)) << "the corner of its square";
}

TEST(Circle, HasItsRadiusInEveryDirection) {
    const EGD::Arc circle(50, 50, 20, 360, 0);
    for (const double angle : {0.0, 1.0, -3.0, 100.0}) EXPECT_EQ(circle.getR(angle), 20);
}

TEST(Circle, TakesAnotherRadiusWithoutAnnouncingIt) {
    TestArea area;
    EGD::Arc circle(50, 50, 20, 360, 0);
    Count updates(circle.signal_updated());
    EXPECT_EQ(circle.setR(35), &circle);
    EXPECT_EQ(updates, 0);
    EXPECT_EQ(circle.getR(0), 35);
    EXPECT_EQ(pickedAround(area, circle, 50, 50, 35), "########");
}

TEST(Circle, LiesInAZoneAroundItsPosition) {
    const EGD::Arc circle(50, 60, 20, 90, 0);
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    circle.getZone(x1, y1, x2, y2);
    EXPECT_EQ(x1, -20);
    EXPECT_EQ(y1, -20);
    EXPECT_EQ(x2, 20);
    EXPECT_EQ(y2, 20);
}

// -- Rectangle

TEST(Rectangle, HasACornerAtItsPositionAndFourSides) {
    TestArea area;
    EGD::Rectangle rectangle(20, 30, 40, 50, false);
    EXPECT_TRUE(isPickedAt(area, rectangle, 20, 55)) << "left";
    EXPECT_TRUE(isPickedAt(area, rectangle, 60, 55)) << "right";
    EXPECT_TRUE(isPickedAt(area, rectangle, 40, 30)) << "top";
    EXPECT_TRUE(isPickedAt(area, rectangle, 40, 80)) << "bottom";
    EXPECT_FALSE(isPickedAt(area, rectangle, 40, 55));
    EXPECT_FALSE(isPickedAt(area, rectangle, 15, 55));
    EXPECT_FALSE(isPickedAt(area, rectangle, 65, 55));
}

TEST(Rectangle, IsNotClosedSoItsFirstCornerHasNoJoin) {
    TestArea area;
    EGD::Rectangle rectangle(50, 50, 40, 30, false);
    rectangle.setWidthLine(10);
    EXPECT_FALSE(isPickedAt(area, rectangle, 46, 46)) << "two butt ends meet at the position";
    EXPECT_TRUE(isPickedAt(area, rectangle, 94, 46)) << "the other corners are joined";
    EXPECT_TRUE(isPickedAt(area, rectangle, 94, 84));
    EXPECT_TRUE(isPickedAt(area, rectangle, 46, 84));
}

TEST(Rectangle, IsFilledByItsInteriorColourAlthoughItIsNotMarkedFilled) {
    TestArea area;
    EGD::Rectangle rectangle(20, 20, 40, 40, false);
    rectangle.setColorIn(0, 255, 0, 255);
    EXPECT_EQ(Picture::ofDrawing(area, rectangle, 80, 80).at(40, 40), (Pixel{0, 255, 0}));
    EXPECT_TRUE(isPickedAt(area, rectangle, 40, 40));
}

TEST(Rectangle, IsNotFilledWithoutInteriorColourAlthoughItIsMarkedFilled) {
    TestArea area;
    EGD::Rectangle rectangle(20, 20, 40, 40, true);
    EXPECT_EQ(Picture::ofDrawing(area, rectangle, 80, 80).at(40, 40), white);
    EXPECT_FALSE(isPickedAt(area, rectangle, 40, 40));

    EGD::Rectangle marked(20, 20, 40, 40, false);
    Count updates(marked.signal_updated());
    EXPECT_EQ(marked.setFilled(true), &marked);
    EXPECT_EQ(updates, 0);
    EXPECT_EQ(Picture::ofDrawing(area, marked, 80, 80).at(40, 40), white);
}

TEST(Rectangle, AnnouncesANewWidthAndANewHeight) {
    TestArea area;
    EGD::Rectangle rectangle(20, 20, 40, 40, false);
    Count updates(rectangle.signal_updated());
    rectangle.setWidth(100);
    EXPECT_EQ(updates, 1);
    rectangle.setHeight(10);
    EXPECT_EQ(updates, 2);
    EXPECT_TRUE(isPickedAt(area, rectangle, 120, 25));
    EXPECT_TRUE(isPickedAt(area, rectangle, 70, 30));
    EXPECT_FALSE(isPickedAt(area, rectangle, 60, 40));
}

TEST(Rectangle, HasTheSurfaceOfItsWidthTimesItsHeight) {
    EGD::Rectangle rectangle(20, 20, 40, 30, false);
    EXPECT_EQ(rectangle.getSurface(), 1200);
    rectangle.setWidth(0.5);
    EXPECT_EQ(rectangle.getSurface(), 15);
}

// -- Text

/// The text set by hand: bold Monospace of `size` pixels with its top left corner at (x, y) plus the given share of its
/// size.
struct ByHand {
    ByHand(TestArea& area, const std::string& text, int size) : layout(area.create_pango_layout(text)) {
        Pango::FontDescription font;
        font.set_family("Monospace");
        font.set_weight(Pango::WEIGHT_BOLD);
        font.set_absolute_size(size * 1024);
        layout->set_font_description(font);
        layout->get_pixel_size(width, height);
    }

    Picture at(double x, double y) const {
        Picture picture(200, 60);
        picture.context()->move_to(x, y);
        layout->show_in_cairo_context(picture.context());
        return picture;
    }

    Glib::RefPtr<Pango::Layout> layout;
    int width = 0;
    int height = 0;
};

Picture pictureOf(TestArea& area, EGD::Text& text) { return Picture::ofDrawing(area, text, 200, 60); }

TEST(Text, IsCentredOnItsPositionInBoldMonospaceOfItsSizeInPixels) {
    TestArea area;
    EGD::Text text("node 12", 100, 30, 15, "Monospace");
    const ByHand byHand(area, "node 12", 15);
    ASSERT_FALSE(byHand.at(100, 30).isBlank());
    EXPECT_TRUE(looksLike(pictureOf(area, text), byHand.at(100 - byHand.width / 2.0, 30 - byHand.height / 2.0)));
}

TEST(Text, StartsThreeAndAHalfPixelsToTheLeftWhenItIsSevenWide) {
    TestArea area;
    EGD::Text text("i", 100, 30, 12, "Monospace");
    const ByHand byHand(area, "i", 12);
    ASSERT_EQ(byHand.width, 7);
    EXPECT_TRUE(looksLike(pictureOf(area, text), byHand.at(96.5, 30 - byHand.height / 2.0)));
}

TEST(Text, StandsToTheRightOfItsPositionWhenNotCentredHorizontally) {
    TestArea area;
    EGD::Text text("abc", 100, 30, 15, "Monospace");
    Count updates(text.signal_updated());
    text.setHorizontalCenter(false);
    EXPECT_EQ(updates, 0);
    const ByHand byHand(area, "abc", 15);
    EXPECT_TRUE(looksLike(pictureOf(area, text), byHand.at(100, 30 - byHand.height / 2.0)));
    text.setHorizontalCenter(true);
    EXPECT_TRUE(looksLike(pictureOf(area, text), byHand.at(100 - byHand.width / 2.0, 30 - byHand.height / 2.0)));
}

TEST(Text, StandsBelowItsPositionWhenNotCentredVertically) {
    TestArea area;
    EGD::Text text("abc", 100, 30, 15, "Monospace");
    Count updates(text.signal_updated());
    text.setVerticalCenter(false);
    EXPECT_EQ(updates, 0);
    const ByHand byHand(area, "abc", 15);
    EXPECT_TRUE(looksLike(pictureOf(area, text), byHand.at(100 - byHand.width / 2.0, 30)));
    text.setHorizontalCenter(false);
    EXPECT_TRUE(looksLike(pictureOf(area, text), byHand.at(100, 30))) << "its top left corner";
}

TEST(Text, LooksTheSameInAnyFamily) {
    TestArea area;
    EGD::Text one("abc", 100, 30, 15, "Monospace");
    EGD::Text other("abc", 100, 30, 15, "Serif");
    EXPECT_TRUE(looksLike(pictureOf(area, one), pictureOf(area, other)));
}

TEST(Text, IsReplacedWithoutAnnouncingIt) {
    TestArea area;
    EGD::Text text("before", 100, 30, 15, "Monospace");
    pictureOf(area, text);
    Count updates(text.signal_updated());
    text.setText("after");
    EXPECT_EQ(updates, 0);
    const ByHand byHand(area, "after", 15);
    EXPECT_TRUE(looksLike(pictureOf(area, text), byHand.at(100 - byHand.width / 2.0, 30 - byHand.height / 2.0)));
}

TEST(Text, IsPaintedInTheColourCurrentAtThatMomentWhateverItsOwnColours) {
    TestArea area;
    EGD::Text text("MMMM", 100, 30, 30, "Monospace");
    text.setColorFill(255, 0, 0, 255)->setColorIn(0, 255, 0, 255);
    const auto countOf = [](const Picture& picture, Pixel colour) {
        int count = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) count += picture.at(x, y) == colour ? 1 : 0;
        }
        return count;
    };

    const Picture fresh = pictureOf(area, text);
    EXPECT_GT(countOf(fresh, black), 50) << "black on a fresh context";
    EXPECT_EQ(countOf(fresh, Pixel{255, 0, 0}) + countOf(fresh, Pixel{0, 255, 0}), 0);

    const Picture blue(200, 60);
    blue.context()->set_source_rgb(0, 0, 1);
    text.draw(&area, blue.context());
    EXPECT_EQ(countOf(blue, Pixel{0, 0, 255}), countOf(fresh, black));
}

TEST(Text, IsPaintedUnlessBothItsColoursAreOff) {
    TestArea area;
    EGD::Text text("abc", 100, 30, 15, "Monospace");
    text.setColorFill(0, 0, 0, 0);
    EXPECT_TRUE(pictureOf(area, text).isBlank()) << "the interior colour is off by default";
    text.setColorIn(255, 255, 255, 1);
    EXPECT_FALSE(pictureOf(area, text).isBlank());
    text.setColorIn(255, 255, 255, 0);
    text.setColorFill(255, 255, 255, 1);
    EXPECT_FALSE(pictureOf(area, text).isBlank());
}

TEST(Text, IsNeverPicked) {
    TestArea area;
    EGD::Text text("MMM", 30, 15, 20, "Monospace");
    text.setColorIn(255, 0, 0, 255);
    const Picture picture = Picture::ofDrawing(area, text, 60, 30);
    int painted = 0;
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 60; ++x) {
            painted += picture.at(x, y) != white ? 1 : 0;
            ASSERT_FALSE(isPickedAt(area, text, x + 0.5, y + 0.5));
        }
    }
    EXPECT_GT(painted, 100);

    area.setPick(30, 15);
    Picture::ofDrawing(area, text, 60, 30);
    EXPECT_FALSE(text.isPicked()) << "not by an ordinary paint either";
}

TEST(Text, LeavesNoPathForItsSuccessors) {
    TestArea area;
    EGD::Text text("abc", 100, 30, 15, "Monospace");
    const Picture picture(200, 60);
    text.draw(&area, picture.context());
    EXPECT_FALSE(picture.context()->has_current_point());
}

TEST(Text, IsPaintedWhereverItReachesIntoWhatIsShown) {
    TestArea area;
    for (const double x : {-60.0, -10.0, 0.0, 199.0, 250.0}) {
        EGD::Text text("a long text, longer than wide", x, 30, 15, "Monospace");
        const ByHand byHand(area, "a long text, longer than wide", 15);
        const Picture expected = byHand.at(x - byHand.width / 2.0, 30 - byHand.height / 2.0);
        ASSERT_FALSE(expected.isBlank());
        EXPECT_TRUE(looksLike(pictureOf(area, text), expected)) << "at " << x;
    }
}

TEST(Text, IsPaintedWhenOnlyAPartOfTheAreaIsPaintedAgain) {
    TestArea area;
    EGD::Text text("MMMMMM", 100, 30, 20, "Monospace");
    const ByHand byHand(area, "MMMMMM", 20);
    const auto paintPart = [&](const auto& paint) {
        Picture picture(200, 60);
        picture.context()->rectangle(120, 25, 10, 10);
        picture.context()->clip();
        paint(picture.context());
        return picture;
    };
    const Picture expected = paintPart([&](const auto& cr) {
        cr->move_to(100 - byHand.width / 2.0, 30 - byHand.height / 2.0);
        byHand.layout->show_in_cairo_context(cr);
    });
    ASSERT_FALSE(expected.isBlank());
    EXPECT_TRUE(looksLike(paintPart([&](const auto& cr) { text.draw(&area, cr); }), expected));
}

TEST(Text, ShowsNamesThatAreNotAscii) {
    TestArea area;
    EGD::Text text("nœud_é", 100, 30, 15, "Monospace");
    const ByHand byHand(area, "nœud_é", 15);
    EXPECT_TRUE(looksLike(pictureOf(area, text), byHand.at(100 - byHand.width / 2.0, 30 - byHand.height / 2.0)));
}

TEST(Text, WithoutCharactersPaintsNothing) {
    TestArea area;
    EGD::Text text("", 100, 30, 15, "Monospace");
    EXPECT_TRUE(pictureOf(area, text).isBlank());
}

TEST(Text, IsADiscOfRadius10InEveryDirection) {
    const EGD::Text text("a long text", 0, 0, 40, "Monospace");
    for (const double angle : {0.0, 1.0, -3.0, 100.0}) EXPECT_EQ(text.getR(angle), 10.0);
}

// -- all of them

/// Builds the path of `shape` and says what box it takes: its corners at the top left and at the bottom right.
template <class Shape>
std::vector<double> boxAround(Shape& shape) {
    TestArea area;
    const Picture picture(10, 10);
    EXPECT_TRUE(shape.vDraw(&area, picture.context()));
    std::vector<double> box(4);
    picture.context()->get_path_extents(box[0], box[1], box[2], box[3]);
    return box;
}

TEST(Shapes, BuildTheirPathsAroundTheOriginWhereverTheyStand) {
    EGD::Line line(-10, 5, 30, 20);
    line.setPos(100, 100);
    EXPECT_THAT(boxAround(line), testing::ElementsAre(-10, 5, 30, 20));
    EGD::Arc circle(100, 100, 20, 360, 0);
    EXPECT_THAT(boxAround(circle), testing::Pointwise(testing::DoubleNear(0.1), {-20.0, -20.0, 20.0, 20.0}));
    EGD::Rectangle rectangle(100, 100, 40, 30, true);
    EXPECT_THAT(boxAround(rectangle), testing::ElementsAre(0, 0, 40, 30));
    EGD::Text text("abc", 100, 100, 15, "Monospace");
    EXPECT_THAT(boxAround(text), testing::Each(0)) << "a text leaves no path";
}

TEST(Shapes, AreDestroyedThroughTheirBases) {
    static_assert(std::is_base_of_v<EGD::Drawing, EGD::Line> && !std::is_base_of_v<EGD::Arrowable, EGD::Line>);
    static_assert(std::is_base_of_v<EGD::Drawing, EGD::Rectangle> &&
                  !std::is_base_of_v<EGD::Arrowable, EGD::Rectangle>);
    static_assert(std::is_base_of_v<EGD::Arrowable, EGD::Arc>);
    static_assert(std::is_base_of_v<EGD::Arrowable, EGD::Text>);
    TestArea area;
    area.add(new EGD::Line(1, 2, 3, 4));
    area.add(new EGD::Rectangle(1, 2, 3, 4, true));
    area.add(new EGD::Arc(1, 2, 3, 4, 5));
    auto* text = area.add(new EGD::Text("a", 1, 2, 3, "Monospace"));
    int ends = 0;
    text->signal_deleted().connect([&] { ++ends; });
    area.deleteAll();
    EXPECT_EQ(ends, 1);
}

}  // namespace
