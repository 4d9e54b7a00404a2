// Whole pictures of shapes and arrows, compared with those in reference/.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "EGD/Arc.h"
#include "EGD/Arrow.h"
#include "EGD/Line.h"
#include "EGD/Rectangle.h"
#include "EGD/Text.h"
#include "Helpers.h"

namespace {

/// An area that owns what is put on it.
class Sheet {
public:
    ~Sheet() { area.deleteAll(); }

    template <class Shape, class... Arguments>
    Shape* put(Arguments... arguments) {
        auto* shape = new Shape(arguments...);
        area.add(shape);
        return shape;
    }

    EGD::Arc* disc(double x, double y) { return put<EGD::Arc>(x, y, 20.0, 360.0, 0.0); }

    EGD::Arrow* arrow(EGD::Arrowable* from, EGD::Arrowable* to, const std::string& label = "") {
        auto* made = put<EGD::Arrow>(from, to);
        if (!label.empty()) made->setLabel(label);
        return made;
    }

    TestArea area;
};

TEST(Picture, OfShapesIsTheReference) {
    Sheet sheet;
    sheet.put<EGD::Line>(10, 10, 60, 40);
    sheet.put<EGD::Arc>(100.0, 30.0, 20.0, 360.0, 0.0);
    sheet.put<EGD::Arc>(150.0, 30.0, 20.0, 90.0, 0.0);
    sheet.put<EGD::Arc>(200.0, 30.0, 20.0, 0.0, 90.0)->setColorIn(0, 128, 0, 90);
    sheet.put<EGD::Rectangle>(10.0, 70.0, 40.0, 30.0, true);
    sheet.put<EGD::Rectangle>(65.0, 70.0, 40.0, 30.0, false)->setColorIn(255, 0, 0, 255)->setColorFill(0, 0, 255, 255);
    sheet.put<EGD::Rectangle>(120.0, 70.0, 40.0, 30.0, false)->setColorIn(255, 0, 0, 50)->setColorFill(0, 0, 0, 0);
    sheet.put<EGD::Rectangle>(175.0, 70.0, 40.0, 30.0, false)->setWidthLine(8);
    sheet.put<EGD::Text>("centred", 60.0, 125.0, 15, "Monospace");
    sheet.put<EGD::Text>("right", 120.0, 125.0, 15, "Monospace")->setHorizontalCenter(false);
    sheet.put<EGD::Text>("below", 205.0, 125.0, 15, "Monospace")->setVerticalCenter(false);
    EXPECT_TRUE(matchesReference(Picture::of(sheet.area, 240, 150), "EGD", "shapes"));
}

TEST(Picture, OfStraightArrowsWithLabelsAboveAndUprightIsTheReference) {
    Sheet sheet;
    auto* centre = sheet.disc(160, 150);
    const std::vector<std::pair<double, double>> around = {{290, 150}, {30, 150}, {160, 275}, {160, 25},
                                                           {270, 260}, {50, 40},  {50, 260},  {270, 40}};
    for (std::size_t i = 0; i < around.size(); ++i) {
        auto* disc = sheet.disc(around[i].first, around[i].second);
        if (i % 2 == 0) {
            sheet.arrow(centre, disc, "a -> b ");
        } else {
            sheet.arrow(disc, centre, "a -> b ");
        }
    }
    EXPECT_TRUE(matchesReference(Picture::of(sheet.area, 320, 300), "EGD", "straight-arrows"));
}

TEST(Picture, OfArrowsBothWaysIsTheReference) {
    Sheet sheet;
    auto* a = sheet.disc(30, 60);
    auto* b = sheet.disc(230, 60);
    auto* c = sheet.disc(130, 170);
    sheet.arrow(a, b, "2a -> b ");
    sheet.arrow(b, a, "c -> ");
    sheet.arrow(a, c);
    sheet.arrow(c, a);
    sheet.arrow(b, c, "x -> y ");
    sheet.arrow(c, b);
    EXPECT_TRUE(matchesReference(Picture::of(sheet.area, 260, 200), "EGD", "arrows-both-ways"));
}

TEST(Picture, OfLoopsIsTheReference) {
    Sheet sheet;
    auto* a = sheet.disc(60, 110);
    auto* b = sheet.disc(180, 110);
    sheet.arrow(a, a);
    sheet.arrow(b, b, "a -> 2b ");
    sheet.arrow(a, b);
    EXPECT_TRUE(matchesReference(Picture::of(sheet.area, 240, 140), "EGD", "loops"));
}

TEST(Picture, OfFaintArrowsShowsTheLabelledShaftOpaqueAsInTheReference) {
    Sheet sheet;
    auto* a = sheet.disc(30, 40);
    auto* b = sheet.disc(190, 40);
    auto* c = sheet.disc(30, 100);
    auto* d = sheet.disc(190, 100);
    sheet.arrow(a, b)->setColorFill(0, 0, 0, 50);
    sheet.arrow(c, d, "a -> b ")->setColorFill(0, 0, 0, 50);
    EXPECT_TRUE(matchesReference(Picture::of(sheet.area, 220, 130), "EGD", "faint-arrows"));
}

}  // namespace
