// Colours: given from 0 to 255, kept and painted from 0.0 to 1.0.
#include "EGD/Color.h"

#include <cairomm/surface.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

/// The colour that `color` makes the source of a context.
struct Source {
    explicit Source(const EGD::Color& color) {
        const auto cr = Cairo::Context::create(Cairo::ImageSurface::create(Cairo::FORMAT_ARGB32, 1, 1));
        color.draw(cr);
        Cairo::RefPtr<Cairo::SolidPattern>::cast_static(cr->get_source())->get_rgba(r, g, b, a);
    }

    double r = NAN;
    double g = NAN;
    double b = NAN;
    double a = NAN;
};

TEST(Color, BecomesTheSourceWithEachComponentDividedBy255) {
    const Source source(EGD::Color(255, 0, 51, 102));
    EXPECT_DOUBLE_EQ(source.r, 1.0);
    EXPECT_DOUBLE_EQ(source.g, 0.0);
    EXPECT_DOUBLE_EQ(source.b, 51 / 255.0);
    EXPECT_DOUBLE_EQ(source.a, 102 / 255.0);
}

TEST(Color, IsReplacedAsAWhole) {
    EGD::Color color(1, 2, 3, 4);
    color.set(0, 255, 128, 255);
    const Source source(color);
    EXPECT_DOUBLE_EQ(source.r, 0.0);
    EXPECT_DOUBLE_EQ(source.g, 1.0);
    EXPECT_DOUBLE_EQ(source.b, 128 / 255.0);
    EXPECT_DOUBLE_EQ(source.a, 1.0);
}

TEST(Color, IsVisibleExactlyWhenItsAlphaIsAboveZero) {
    EXPECT_FALSE(EGD::Color(255, 255, 255, 0).isVisible());
    EXPECT_TRUE(EGD::Color(0, 0, 0, 1).isVisible());
    EXPECT_TRUE(EGD::Color(0, 0, 0, 255).isVisible());
    EXPECT_FALSE(EGD::Color(0, 0, 0, -1).isVisible());
}

TEST(Color, DoesNotClampComponentsOutsideTheScale) {
    // An alpha beyond the scale stays visible, one below it does not; Cairo clamps only what it paints.
    EXPECT_TRUE(EGD::Color(300, -20, 0, 510).isVisible());
    const Source source(EGD::Color(300, -20, 0, 510));
    EXPECT_DOUBLE_EQ(source.r, 1.0);
    EXPECT_DOUBLE_EQ(source.g, 0.0);
    EXPECT_DOUBLE_EQ(source.a, 1.0);
}

}  // namespace
