// Arrows: how they hang on their shapes, and the geometry of the straight arrow, the curve, the loop, the head and the
// label. Points are tested through picking, which is exact to a tenth of a pixel.
#include "EGD/Arrow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pangomm/layout.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "EGD/Arc.h"
#include "EGD/Text.h"
#include "Helpers.h"

namespace {

using EGD::Arrow;

struct Point {
    double x;
    double y;
    friend Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
    friend Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
    friend Point operator*(double k, Point p) { return {k * p.x, k * p.y}; }
    friend std::ostream& operator<<(std::ostream& out, Point p) { return out << "(" << p.x << ", " << p.y << ")"; }
};

Point turned(Point p, double angle) {
    return {p.x * std::cos(angle) - p.y * std::sin(angle), p.x * std::sin(angle) + p.y * std::cos(angle)};
}

Point unit(Point p) { return 1 / std::hypot(p.x, p.y) * p; }

/// A cubic curve and its normal.
struct Curve {
    Point p0, p1, p2, p3;

    Point at(double t) const {
        const double s = 1 - t;
        return s * s * s * p0 + 3 * s * s * t * p1 + 3 * s * t * t * p2 + t * t * t * p3;
    }

    Point normal(double t) const {
        const double s = 1 - t;
        const Point along = s * s * (p1 - p0) + 2 * s * t * (p2 - p1) + t * t * (p3 - p2);
        return unit({-along.y, along.x});
    }
};

/// The axes of an arrow: x from the end's centre to the begin's, y a quarter turn further clockwise on screen.
struct Axes {
    Axes(Point from, Point to)
        : begin(from), x(unit(from - to)), y{-x.y, x.x}, distance(std::hypot(from.x - to.x, from.y - to.y)) {}

    Point at(double u, double v) const { return begin + u * x + v * y; }

    Point begin;
    Point x;
    Point y;
    double distance;
};

EGD::Arc disc(Point p, double r = 20) { return EGD::Arc(p.x, p.y, r, 360, 0); }

/// Begin and end of radius 20, and one arrow between them that stands on no area.
class ArrowBetween {
public:
    ArrowBetween(Point from, Point to, double beginRadius = 20, double endRadius = 20)
        : begin(from.x, from.y, beginRadius, 360, 0),
          end(to.x, to.y, endRadius, 360, 0),
          arrow(&begin, &end),
          axes(from, to) {}

    bool isPickedAt(Point p) { return ::isPickedAt(area, arrow, p.x, p.y); }
    Picture picture(int width = 300, int height = 300) { return Picture::ofDrawing(area, arrow, width, height); }

    TestArea area;
    EGD::Arc begin;
    EGD::Arc end;
    Arrow arrow;
    Axes axes;
};

/// The same with an arrow the other way.
class ArrowsBothWays : public ArrowBetween {
public:
    ArrowsBothWays(Point from, Point to) : ArrowBetween(from, to), back(&end, &begin) {}

    Curve curve() const {
        const double tip = -(axes.distance - 20);
        const Point control = axes.at((-20 + tip) / 2, (-20 + tip) / 10);
        return {axes.at(-20, 0), control, control, axes.at(tip, 0)};
    }

    Arrow back;
};

const std::vector<Point> directions = {{100, 0},   {70, 70},  {0, 100},  {-70, 70}, {-100, 0},
                                       {-70, -70}, {0, -100}, {70, -70}, {93, 11},  {-31, 87}};
constexpr Point centre{150, 150};

// -- how arrows hang on their shapes

TEST(Arrow, KnowsItsEndsAndIsKnownToThem) {
    auto a = disc({0, 0});
    auto b = disc({100, 0});
    EXPECT_FALSE(b.arrowInFrom(&a));
    const Arrow arrow(&a, &b);
    EXPECT_EQ(arrow.getBegin(), &a);
    EXPECT_EQ(arrow.getEnd(), &b);
    EXPECT_TRUE(b.arrowInFrom(&a));
    EXPECT_FALSE(a.arrowInFrom(&b));
    EXPECT_FALSE(a.arrowInFrom(&a));
    EXPECT_EQ(arrow.getPosX(), 0);
    EXPECT_EQ(arrow.getPosY(), 0);
}

TEST(Arrow, IsForgottenByItsEndsWhenDestroyed) {
    auto a = disc({0, 0});
    auto b = disc({100, 0});
    auto first = std::make_unique<Arrow>(&a, &b);
    auto second = std::make_unique<Arrow>(&a, &b);
    first.reset();
    EXPECT_TRUE(b.arrowInFrom(&a)) << "the second one still runs there";
    second.reset();
    EXPECT_FALSE(b.arrowInFrom(&a));
}

TEST(Arrow, MovesItsEndsFromShapeToShapeWithoutRequestingARedraw) {
    auto a = disc({0, 0});
    auto b = disc({100, 0});
    auto c = disc({200, 0});
    Arrow arrow(&a, &b);
    Count updates(arrow.signal_updated());
    arrow.setEnd(&c);
    EXPECT_EQ(arrow.getEnd(), &c);
    EXPECT_FALSE(b.arrowInFrom(&a));
    EXPECT_TRUE(c.arrowInFrom(&a));
    arrow.setBegin(&b);
    EXPECT_EQ(arrow.getBegin(), &b);
    EXPECT_FALSE(c.arrowInFrom(&a));
    EXPECT_TRUE(c.arrowInFrom(&b));
    arrow.setEnd(&c);
    EXPECT_TRUE(c.arrowInFrom(&b)) << "setting the same end again changes nothing";
    EXPECT_EQ(updates, 0);
}

TEST(Arrow, ThatIsALoopRunsFromItsShapeToItself) {
    auto a = disc({0, 0});
    auto b = disc({100, 0});
    Arrow loop(&a, &a);
    EXPECT_TRUE(a.arrowInFrom(&a));
    loop.setEnd(&b);
    EXPECT_FALSE(a.arrowInFrom(&a));
    EXPECT_TRUE(b.arrowInFrom(&a));
    loop.setEnd(&a);
    EXPECT_TRUE(a.arrowInFrom(&a));
}

TEST(Arrow, ThatHasABeginDoesNotRunFromNowhere) {
    auto a = disc({0, 0});
    auto b = disc({100, 0});
    EXPECT_FALSE(b.arrowInFrom(nullptr));
    const Arrow arrow(&a, &b);
    EXPECT_FALSE(b.arrowInFrom(nullptr));
    const Arrow beginless(nullptr, &b);
    EXPECT_TRUE(b.arrowInFrom(nullptr));
}

TEST(Arrow, IsFoundAmongManyOnEitherSide) {
    auto hub = disc({0, 0});
    std::vector<std::unique_ptr<EGD::Arc>> rim;
    for (int i = 0; i < 50; ++i) {
        rim.push_back(std::make_unique<EGD::Arc>(100.0 + i, 0.0, 20.0, 360.0, 0.0));
        new Arrow(&hub, rim.back().get());  // goes with its shapes
        if (i % 2 == 0) new Arrow(rim.back().get(), &hub);
    }
    for (std::size_t i = 0; i < rim.size(); ++i) {
        EXPECT_TRUE(rim[i]->arrowInFrom(&hub));
        EXPECT_EQ(hub.arrowInFrom(rim[i].get()), i % 2 == 0);
        EXPECT_FALSE(rim[i]->arrowInFrom(rim[(i + 1) % 50].get()));
    }
}

// -- the straight arrow

TEST(StraightArrow, Between100And200RunsFrom120To180WithArmsEndingAt170) {
    ArrowBetween scene({100, 100}, {200, 100});
    EXPECT_TRUE(scene.isPickedAt({120.2, 100}));
    EXPECT_FALSE(scene.isPickedAt({119.7, 100}));
    EXPECT_TRUE(scene.isPickedAt({150, 101.4}));
    EXPECT_TRUE(scene.isPickedAt({150, 98.6}));
    EXPECT_FALSE(scene.isPickedAt({150, 101.6}));
    EXPECT_FALSE(scene.isPickedAt({150, 98.4}));

    EXPECT_TRUE(scene.isPickedAt({170.3, 90.3}));
    EXPECT_TRUE(scene.isPickedAt({170.3, 109.7}));
    EXPECT_FALSE(scene.isPickedAt({169.7, 89.7})) << "the arm ends at (170, 90)";
    EXPECT_FALSE(scene.isPickedAt({169.7, 110.3}));
    EXPECT_TRUE(scene.isPickedAt({175, 95}));
    EXPECT_TRUE(scene.isPickedAt({175, 105}));
    EXPECT_TRUE(scene.isPickedAt({180, 100}));
    EXPECT_FALSE(scene.isPickedAt({183, 100})) << "only the mitre of the head reaches beyond the tip";
    EXPECT_FALSE(scene.isPickedAt({170, 95})) << "the head is open";
}

TEST(StraightArrow, IsPaintedFromBorderToBorder) {
    ArrowBetween scene({100, 100.5}, {200, 100.5});
    const Picture picture = scene.picture(300, 200);
    EXPECT_EQ(picture.at(119, 100), white);
    for (int x = 120; x < 180; ++x) EXPECT_EQ(picture.at(x, 100), black) << "at " << x;
    EXPECT_EQ(picture.at(184, 100), white);
    EXPECT_EQ(picture.at(150, 98), white);
    EXPECT_EQ(picture.at(150, 102), white);
    EXPECT_EQ(picture.at(175, 95), black);
    EXPECT_EQ(picture.at(175, 105), black);
    EXPECT_EQ(picture.at(130, 95), white);
}

TEST(StraightArrow, HasItsHeadAtItsEndInEveryDirection) {
    for (const Point& by : directions) {
        SCOPED_TRACE(testing::Message() << "towards " << by);
        ArrowBetween scene(centre, centre + by);
        const Point along = unit(by);
        const Point across{-along.y, along.x};
        const Point tip = centre + by - 20 * along;
        EXPECT_TRUE(scene.isPickedAt(tip - 0.1 * along));
        EXPECT_TRUE(scene.isPickedAt(centre + 20.5 * along)) << "the shaft begins at the border";
        EXPECT_FALSE(scene.isPickedAt(centre + 19.5 * along));
        EXPECT_TRUE(scene.isPickedAt(centre + 0.5 * by));
        EXPECT_FALSE(scene.isPickedAt(centre + 0.5 * by + 2 * across));
        for (const double side : {-1.0, 1.0}) {
            EXPECT_TRUE(scene.isPickedAt(tip - 9.7 * along + 9.7 * side * across));
            EXPECT_FALSE(scene.isPickedAt(tip - 10.3 * along + 10.3 * side * across));
            EXPECT_FALSE(scene.isPickedAt(centre + 30 * along + 10 * side * across)) << "no head at the begin";
        }
    }
}

TEST(StraightArrow, EndsOnTheBorderOfEachOfItsShapes) {
    ArrowBetween scene({100, 100}, {200, 100}, 5, 40);
    EXPECT_FALSE(scene.isPickedAt({104.5, 100}));
    EXPECT_TRUE(scene.isPickedAt({105.5, 100}));
    EXPECT_TRUE(scene.isPickedAt({159.9, 100}));
    EXPECT_TRUE(scene.isPickedAt({150.3, 90.3}));
}

TEST(StraightArrow, FollowsItsShapes) {
    ArrowBetween scene({100, 100}, {200, 100});
    ASSERT_TRUE(scene.isPickedAt({150, 100}));
    scene.end.setPos(100, 200);
    EXPECT_FALSE(scene.isPickedAt({150, 100}));
    EXPECT_TRUE(scene.isPickedAt({100, 150}));
}

TEST(StraightArrow, TreatsATextAsADiscOfRadius10) {
    TestArea area;
    EGD::Text text("a very long text", 100, 100, 15, "Monospace");
    auto end = disc({200, 100});
    Arrow arrow(&text, &end);
    EXPECT_FALSE(isPickedAt(area, arrow, 109.7, 100));
    EXPECT_TRUE(isPickedAt(area, arrow, 110.3, 100));
    Arrow back(&end, &text);
    arrow.setEnd(&text);  // both lie on the text now: the arrow back is straight
    EXPECT_TRUE(isPickedAt(area, back, 110.1, 100));
    EXPECT_TRUE(isPickedAt(area, back, 119.7, 90.3)) << "the head is 10 away from the text";
}

TEST(StraightArrow, FillsItsHeadWithItsInteriorColour) {
    ArrowBetween scene({100, 100}, {200, 100});
    scene.arrow.setColorIn(255, 0, 0, 255);
    const Pixel inHead = scene.picture().at(172, 104);
    EXPECT_GE(inHead.r, 250);
    EXPECT_LE(inHead.g, 5);
    EXPECT_EQ(scene.picture().at(150, 104), white);
}

TEST(StraightArrow, StaysStraightBesideAParallelOne) {
    ArrowBetween scene({100, 100}, {200, 100});
    const Arrow parallel(&scene.begin, &scene.end);
    EXPECT_TRUE(scene.isPickedAt({150, 100}));
}

// -- touching shapes

TEST(TouchingShapes, HaveNoArrowBetweenThemToBeSeenOrPicked) {
    for (const double distance : {40.0, 39.9, 20.0, 1.0, 0.0}) {
        SCOPED_TRACE(distance);
        ArrowBetween scene({100, 100}, {100 + distance, 100});
        EXPECT_TRUE(scene.picture().isBlank());
        for (double x = 60; x <= 180; x += 2) ASSERT_FALSE(scene.isPickedAt({x, 100}));
    }
    ArrowBetween apart({100, 100}, {141, 100});
    EXPECT_FALSE(apart.picture().isBlank()) << "a pixel apart they have one";
}

TEST(TouchingShapes, HaveNoLabelBetweenThemEither) {
    ArrowBetween scene({100, 100}, {140, 100});
    scene.arrow.setLabel("a -> b");
    EXPECT_TRUE(scene.picture().isBlank());
    for (double x = 60; x <= 180; x += 2) ASSERT_FALSE(scene.isPickedAt({x, 100}));
}

TEST(TouchingShapes, HaveNoArrowToBePickedEvenIfItWasPickedBeforeTheyMet) {
    for (const bool isLabelled : {false, true}) {
        SCOPED_TRACE(isLabelled ? "labelled" : "not labelled");
        ArrowBetween scene({100, 100}, {200, 100});
        if (isLabelled) scene.arrow.setLabel("a -> b");
        ASSERT_TRUE(scene.isPickedAt({150, 100}));
        scene.end.setPos(140, 100);
        EXPECT_FALSE(scene.isPickedAt({150, 100}));
    }
}

// -- curves

TEST(ArrowsBothWaysAreCurves, OnOppositeSides) {
    for (const Point& by : directions) {
        SCOPED_TRACE(testing::Message() << "towards " << by);
        ArrowsBothWays there(centre, centre + by);
        ArrowsBothWays back(centre + by, centre);
        for (const double t : {0.1, 0.3, 0.5, 0.7}) {
            const Point p = there.curve().at(t);
            const Point normal = there.curve().normal(t);
            EXPECT_TRUE(there.isPickedAt(p)) << p;
            EXPECT_TRUE(there.isPickedAt(p + 1.3 * normal));
            EXPECT_TRUE(there.isPickedAt(p - 1.3 * normal));
            EXPECT_FALSE(there.isPickedAt(p + 1.8 * normal));
            EXPECT_FALSE(there.isPickedAt(p - 1.8 * normal));
        }
        for (const double t : {0.3, 0.5, 0.7}) {
            EXPECT_FALSE(back.isPickedAt(there.curve().at(t))) << "the other one bulges away";
            EXPECT_FALSE(there.isPickedAt(back.curve().at(t)));
        }
        EXPECT_FALSE(there.isPickedAt(centre + 0.5 * by)) << "neither runs straight";
    }
}

TEST(ArrowsBothWaysAreCurves, BelowTheLineTowardsTheRightAndAboveItTowardsTheLeft) {
    ArrowsBothWays scene({100, 150}, {240, 150});
    // L = 120, so the control points are 14 away from the line and the middle of the curve three quarters of that.
    EXPECT_TRUE(scene.isPickedAt({170, 160.5}));
    EXPECT_FALSE(scene.isPickedAt({170, 139.5}));
    EXPECT_TRUE(isPickedAt(scene.area, scene.back, 170, 139.5));
    EXPECT_FALSE(isPickedAt(scene.area, scene.back, 170, 160.5));
}

TEST(ArrowsBothWaysAreCurves, WithHeadsTurnedBy12Degrees) {
    for (const Point& by : directions) {
        SCOPED_TRACE(testing::Message() << "towards " << by);
        ArrowsBothWays scene(centre, centre + by);
        const Point tip = scene.curve().p3;
        for (const double side : {-1.0, 1.0}) {
            const Point arm = turned({1, side}, -M_PI / 15);
            const auto along = [&](double k) { return tip + k * arm.x * scene.axes.x + k * arm.y * scene.axes.y; };
            EXPECT_TRUE(scene.isPickedAt(along(9.7)));
            EXPECT_TRUE(scene.isPickedAt(along(5)));
            EXPECT_FALSE(scene.isPickedAt(along(10.3)));
        }
    }
}

TEST(ArrowsBothWaysAreCurves, UntilOneOfThemGoes) {
    ArrowBetween scene({100, 150}, {240, 150});
    ASSERT_TRUE(scene.isPickedAt({170, 150}));
    {
        const Arrow back(&scene.end, &scene.begin);
        EXPECT_FALSE(scene.isPickedAt({170, 150}));
        EXPECT_TRUE(scene.isPickedAt({170, 160.5}));
    }
    EXPECT_TRUE(scene.isPickedAt({170, 150})) << "straight again at the next paint";
    EXPECT_FALSE(scene.isPickedAt({170, 160.5}));
}

TEST(ArrowsBothWaysAreCurves, UnlessTheOtherOneTurnsElsewhere) {
    ArrowsBothWays scene({100, 150}, {240, 150});
    auto elsewhere = disc({100, 300});
    scene.back.setEnd(&elsewhere);
    EXPECT_TRUE(scene.isPickedAt({170, 150}));
    scene.back.setEnd(&scene.begin);
    EXPECT_FALSE(scene.isPickedAt({170, 150}));
}

// -- loops

class Loop : public testing::Test {
protected:
    /// A point given in the axes of the loop's return, minus 112.5 degrees.
    static Point at(double u, double v) { return centre + turned({u, v}, -112.5 * M_PI / 180); }

    static Curve curve() {
        const double c = 0.707106781;
        return {centre + turned({20, 0}, -67.5 * M_PI / 180), at(100 * c, 100 * c), at(100, 0), at(20, 0)};
    }

    bool isPickedAt(Point p) { return ::isPickedAt(area, arrow, p.x, p.y); }

    TestArea area;
    EGD::Arc shape{centre.x, centre.y, 20, 360, 0};
    Arrow arrow{&shape, &shape};
};

TEST_F(Loop, LeavesTheBorderAtMinus67AndAHalfDegreesAndReturnsAtMinus112AndAHalf) {
    EXPECT_NEAR(curve().p0.x, 150 + 20 * std::cos(67.5 * M_PI / 180), 1e-9);
    EXPECT_NEAR(curve().p3.x, 150 - 20 * std::cos(67.5 * M_PI / 180), 1e-9) << "symmetrical about the vertical";
    EXPECT_TRUE(isPickedAt(curve().at(0.005)));
    EXPECT_TRUE(isPickedAt(curve().at(0.999)));
}

TEST_F(Loop, ReachesOutTowardsControlPointsFiveRadiiAway) {
    EXPECT_NEAR(std::hypot(curve().p1.x - 150, curve().p1.y - 150), 100, 1e-6);
    EXPECT_NEAR(std::hypot(curve().p2.x - 150, curve().p2.y - 150), 100, 1e-6);
    for (double t = 0.05; t < 0.8; t += 0.05) {
        const Point p = curve().at(t);
        const Point normal = curve().normal(t);
        EXPECT_TRUE(isPickedAt(p)) << p;
        EXPECT_TRUE(isPickedAt(p + 1.3 * normal));
        EXPECT_TRUE(isPickedAt(p - 1.3 * normal));
        EXPECT_FALSE(isPickedAt(p + 1.8 * normal));
        EXPECT_FALSE(isPickedAt(p - 1.8 * normal));
    }
    EXPECT_FALSE(isPickedAt(centre)) << "a loop is not filled";
    EXPECT_FALSE(isPickedAt({150, 100}));
}

TEST_F(Loop, HasItsHeadPointingIntoTheBorder) {
    for (const double side : {-1.0, 1.0}) {
        EXPECT_TRUE(isPickedAt(at(29.7, 9.7 * side)));
        EXPECT_TRUE(isPickedAt(at(25, 5 * side)));
        EXPECT_FALSE(isPickedAt(at(30.3, 10.3 * side)));
        EXPECT_FALSE(isPickedAt(centre + turned({25, 5 * side}, -67.5 * M_PI / 180))) << "no head where it leaves";
    }
}

TEST_F(Loop, GrowsWithItsShape) {
    shape.setR(10);
    const double c = 0.707106781;
    const Curve small{centre + turned({10, 0}, -67.5 * M_PI / 180), at(50 * c, 50 * c), at(50, 0), at(10, 0)};
    EXPECT_TRUE(isPickedAt(small.at(0.5)));
    EXPECT_FALSE(isPickedAt(curve().at(0.5)));
}

TEST_F(Loop, IsTakenWholeByItsLabelHeadIncluded) {
    arrow.setColorFill(255, 0, 0, 255);
    const auto colourAt = [&](Point p) {
        return Picture::ofDrawing(area, arrow, 300, 300).at(static_cast<int>(p.x), static_cast<int>(p.y));
    };
    const Point head = at(25, 5);
    ASSERT_EQ(colourAt(head), (Pixel{255, 0, 0}));
    arrow.setLabel("");
    EXPECT_EQ(colourAt(head), black);
    EXPECT_EQ(colourAt(curve().at(0.5)), black);
    EXPECT_TRUE(isPickedAt(head));
    EXPECT_TRUE(isPickedAt(curve().at(0.5)));
    EXPECT_FALSE(isPickedAt(at(28, -4))) << "the head is open";
}

// -- labels

/// Paints `text` with the context's origin at `p` and its x axis turned by `angle`, by hand, beside the arrow's
/// strokes: what the arrow should look like with it as its label.
Picture withTextAt(ArrowBetween& scene, const std::string& text, Point p, double angle, bool isCentredVertically) {
    scene.arrow.setLabel("");
    Picture picture = scene.picture();
    const auto layout = scene.area.create_pango_layout(text);
    Pango::FontDescription font;
    font.set_family("Monospace");
    font.set_weight(Pango::WEIGHT_BOLD);
    font.set_absolute_size(15 * 1024);
    layout->set_font_description(font);
    int width = 0;
    int height = 0;
    layout->get_pixel_size(width, height);
    const auto& cr = picture.context();
    cr->translate(p.x, p.y);
    cr->rotate(angle);
    cr->move_to(-width / 2.0, isCentredVertically ? -height / 2.0 : 0.0);
    layout->show_in_cairo_context(cr);
    return picture;
}

/// Equal but for the grey of edges.
testing::AssertionResult looksAlmostLike(const Picture& picture, const Picture& expected) {
    const int differing = picture.countDifferingPixels(expected, 64);
    if (differing <= 3) return testing::AssertionSuccess();
    return testing::AssertionFailure() << differing << " pixels differ";
}

struct LabelPlace {
    const char* name;
    Point by;
    Point offset;  // of the label from the middle of the shaft
    double degrees;
};

void PrintTo(const LabelPlace& place, std::ostream* out) { *out << place.name; }

class LabelOfAStraightArrow : public testing::TestWithParam<LabelPlace> {};

TEST_P(LabelOfAStraightArrow, StandsTenPixelsOffTheMiddleOfTheShaft) {
    const LabelPlace& place = GetParam();
    ArrowBetween scene(centre - 0.5 * place.by, centre + 0.5 * place.by);
    const std::string text = "2a b -> c ";
    const Picture expected = withTextAt(scene, text, centre + place.offset, place.degrees * M_PI / 180, true);
    const Picture without = scene.picture();
    scene.arrow.setLabel(text);
    EXPECT_TRUE(looksAlmostLike(scene.picture(), expected));
    EXPECT_GT(scene.picture().countDifferingPixels(without, 64), 100) << "the text is to be seen";
}

INSTANTIATE_TEST_SUITE_P(
    Directions, LabelOfAStraightArrow,
    testing::Values(LabelPlace{"TowardsTheRightAboveAndUpright", {200, 0}, {0, -10}, 0},
                    LabelPlace{"TowardsTheLeftAboveAndUpright", {-200, 0}, {0, -10}, 0},
                    LabelPlace{"DownwardsOnTheRightReadingDown", {0, 200}, {10, 0}, 90},
                    LabelPlace{"UpwardsOnTheLeftReadingUp", {0, -200}, {-10, 0}, -90},
                    LabelPlace{"DownToTheRightAboveTheSlope", {150, 150}, {10 * M_SQRT1_2, -10 * M_SQRT1_2}, 45},
                    LabelPlace{"UpToTheLeftAboveTheSlope", {-150, -150}, {10 * M_SQRT1_2, -10 * M_SQRT1_2}, 45},
                    LabelPlace{"UpToTheRightAboveTheSlope", {150, -150}, {-10 * M_SQRT1_2, -10 * M_SQRT1_2}, -45},
                    LabelPlace{"DownToTheLeftAboveTheSlope", {-150, 150}, {-10 * M_SQRT1_2, -10 * M_SQRT1_2}, -45}),
    [](const auto& row) { return row.param.name; });

TEST(LabelOfACurve, HangsFromTenPixelsAboveTheControlPointsUpright) {
    for (const double towards : {1.0, -1.0}) {
        SCOPED_TRACE(towards > 0 ? "to the right" : "to the left");
        ArrowsBothWays scene(centre - Point{towards * 100, 0}, centre + Point{towards * 100, 0});
        // L = 180, so the control points are 20 below the line towards the right and 20 above it towards the left.
        const Point top = centre + Point{0, towards * 20 - 10};
        const Picture expected = withTextAt(scene, "a -> b ", top, 0, false);
        scene.arrow.setLabel("a -> b ");
        EXPECT_TRUE(looksAlmostLike(scene.picture(), expected));
    }
}

TEST(LabelOfALoop, StandsBetweenTheControlPointsReadingAcross) {
    TestArea area;
    EGD::Arc shape(150, 150, 20, 360, 0);
    Arrow arrow(&shape, &shape);
    arrow.setLabel("");
    Picture expected = Picture::ofDrawing(area, arrow, 300, 300);
    const double c = 0.707106781;
    const Point p = centre + turned({(c * 100 + 100) / 2, c * 100 / 2}, -112.5 * M_PI / 180);
    EXPECT_NEAR(p.x, 150, 1e-6) << "straight above the shape";
    // Turned by minus 112.5 and by 112.5 degrees: upright.
    EGD::Text text("a -> b ", p.x, p.y, 15, "Monospace");
    text.draw(&area, expected.context());
    arrow.setLabel("a -> b ");
    EXPECT_TRUE(looksAlmostLike(Picture::ofDrawing(area, arrow, 300, 300), expected));
}

TEST(Label, IsCentredOnItsLineAgainOnceACurveIsStraight) {
    auto elsewhere = disc({150, 280});
    ArrowsBothWays scene(centre - Point{100, 0}, centre + Point{100, 0});
    scene.arrow.setLabel("a -> b ");
    scene.picture();
    scene.back.setEnd(&elsewhere);
    const Picture expected = withTextAt(scene, "a -> b ", centre + Point{0, -10}, 0, true);
    scene.arrow.setLabel("a -> b ");
    EXPECT_TRUE(looksAlmostLike(scene.picture(), expected));
}

TEST(Label, HangsFromALoopAsItHungFromTheCurve) {
    ArrowsBothWays scene(centre - Point{100, 0}, centre + Point{100, 0});
    scene.arrow.setLabel("a -> 2b ");
    scene.picture();
    scene.arrow.setEnd(&scene.begin);
    const double c = 0.707106781;
    const Point top = centre - Point{100, 0} + turned({(c * 100 + 100) / 2, c * 100 / 2}, -112.5 * M_PI / 180);
    const Picture expected = withTextAt(scene, "a -> 2b ", top, 0, false);
    scene.arrow.setLabel("a -> 2b ");
    EXPECT_TRUE(looksAlmostLike(scene.picture(), expected));
}

TEST(Label, IsOneTextThatChanges) {
    ArrowBetween scene({50, 100}, {250, 100});
    scene.arrow.setLabel("first");
    const Picture first = scene.picture();
    scene.arrow.setLabel("second");
    const Picture second = scene.picture();
    EXPECT_GT(first.countDifferingPixels(second, 64), 0);
    scene.arrow.setLabel("first");
    EXPECT_TRUE(looksLike(scene.picture(), first));
}

TEST(Label, IsGoneOnceItIsDeleted) {
    ArrowBetween scene({50, 100}, {250, 100});
    const Picture without = scene.picture();
    scene.arrow.deleteLabel();
    EXPECT_TRUE(looksLike(scene.picture(), without)) << "deleting a missing label does nothing";
    scene.arrow.setLabel("text");
    scene.arrow.deleteLabel();
    EXPECT_TRUE(looksLike(scene.picture(), without));
    scene.arrow.deleteLabel();
    scene.arrow.setLabel("text");
    EXPECT_FALSE(looksLike(scene.picture(), without));
}

TEST(Label, RequestsNoRedrawAndIsPaintedByTheArrowAlone) {
    ArrowBetween scene({50, 100}, {250, 100});
    scene.area.add(&scene.arrow);
    Count updates(scene.arrow.signal_updated());
    scene.arrow.setLabel("text");
    scene.arrow.deleteLabel();
    scene.arrow.setLabel("text");
    EXPECT_EQ(updates, 0);
    EXPECT_THAT(scene.area.underMouse(150, 100), testing::ElementsAre(&scene.arrow));
}

TEST(Label, StrokesTheShaftInItsOwnOpaqueBlackEvenIfTheArrowIsFaint) {
    ArrowBetween scene({50, 100.5}, {250, 100.5});
    scene.arrow.setColorFill(0, 0, 0, 100);
    const Picture faint = scene.picture();
    ASSERT_EQ(faint.at(120, 100), (Pixel{155, 155, 155}));
    scene.arrow.setLabel("x");
    const Picture labelled = scene.picture();
    EXPECT_EQ(labelled.at(120, 100), black);
    EXPECT_EQ(labelled.at(225, 95), faint.at(225, 95)) << "the head stays the arrow's";
    EXPECT_NE(labelled.at(225, 95), black);
}

TEST(Label, StrokesTheCurveToo) {
    ArrowsBothWays scene({50, 100}, {250, 100});
    scene.arrow.setColorFill(255, 0, 0, 255);
    const Point middle = scene.curve().at(0.25);
    const auto colour = [&] { return scene.picture().at(static_cast<int>(middle.x), static_cast<int>(middle.y)); };
    ASSERT_EQ(colour(), (Pixel{255, 0, 0}));
    scene.arrow.setLabel("");
    EXPECT_EQ(colour(), black);
}

TEST(Label, StrokesTheShaftInItsOwnWidth) {
    ArrowBetween scene({50, 100.5}, {250, 100.5});
    scene.arrow.setWidthLine(9);
    ASSERT_EQ(scene.picture().at(150, 97), black);
    ASSERT_TRUE(scene.isPickedAt({150, 104}));
    scene.arrow.setLabel("");
    EXPECT_EQ(scene.picture().at(150, 100), black);
    EXPECT_EQ(scene.picture().at(150, 97), white);
    EXPECT_FALSE(scene.isPickedAt({150, 104}));
    EXPECT_TRUE(scene.isPickedAt({225 + 2, 95 - 2})) << "the head keeps the arrow's width";
}

TEST(Label, LetsTheShaftPickTheArrowAndTheHeadToo) {
    ArrowBetween scene({50, 100}, {250, 100});
    scene.arrow.setLabel("rule");
    EXPECT_TRUE(scene.isPickedAt({150, 100}));
    EXPECT_TRUE(scene.isPickedAt({70.5, 101}));
    EXPECT_TRUE(scene.isPickedAt({225, 95}));
    EXPECT_FALSE(scene.isPickedAt({150, 103}));
    EXPECT_FALSE(scene.isPickedAt({150, 90})) << "the letters themselves pick nothing";
    EXPECT_FALSE(scene.isPickedAt({10, 10}));
}

TEST(Label, IsForgottenByThePickOfAnArrowThatIsNoLongerSeen) {
    ArrowBetween scene({50, 100}, {250, 100});
    scene.arrow.setLabel("rule");
    ASSERT_TRUE(scene.isPickedAt({150, 100}));
    scene.arrow.setVisible(false);
    EXPECT_FALSE(scene.isPickedAt({150, 100}));
    EXPECT_TRUE(scene.picture().isBlank());
    scene.arrow.setVisible(true);
    ASSERT_TRUE(scene.isPickedAt({150, 100}));
    scene.arrow.setColorFill(0, 0, 0, 0);
    EXPECT_FALSE(scene.isPickedAt({150, 100})) << "an arrow without colours builds no path, for its label neither";
    EXPECT_TRUE(scene.picture().isBlank());
}

TEST(Label, DoesNotKeepThePickOfTheArrowThatLosesIt) {
    ArrowBetween scene({50, 100}, {250, 100});
    scene.arrow.setLabel("rule");
    ASSERT_TRUE(scene.isPickedAt({150, 100}));
    ASSERT_FALSE(scene.arrow.Drawing::isPicked()) << "the shaft is the label's";
    scene.arrow.deleteLabel();
    EXPECT_FALSE(scene.arrow.isPicked());
    EXPECT_TRUE(scene.isPickedAt({150, 100}));
}

// -- missing ends

TEST(ArrowWithoutAnEnd, IsNeitherSeenNorPicked) {
    TestArea area;
    auto shape = disc({100, 100});
    for (const bool hasBegin : {true, false}) {
        Arrow arrow(hasBegin ? &shape : nullptr, hasBegin ? nullptr : &shape);
        arrow.setLabel("rule");
        EXPECT_TRUE(Picture::ofDrawing(area, arrow, 200, 200).isBlank());
        EXPECT_FALSE(isPickedAt(area, arrow, 100, 100));
    }
    Arrow nowhere(nullptr, nullptr);
    EXPECT_TRUE(Picture::ofDrawing(area, nowhere, 200, 200).isBlank());
}

TEST(ArrowWithoutAnEnd, IsDrawnOnceItHasOne) {
    TestArea area;
    auto a = disc({50, 100});
    auto b = disc({150, 100});
    Arrow arrow(&a, nullptr);
    arrow.setEnd(&b);
    EXPECT_TRUE(isPickedAt(area, arrow, 100, 100));
    arrow.setBegin(nullptr);
    EXPECT_FALSE(isPickedAt(area, arrow, 100, 100));
    EXPECT_FALSE(b.arrowInFrom(&a));
}

}  // namespace
