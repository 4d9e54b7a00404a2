// What is picked is what is painted. Random scenes are picked at random points; whether a drawing lies there is found
// out independently, by painting that drawing alone, enlarged, and looking at the pixels around the point. Points so
// close to an edge that the pixels differ say nothing and are left out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "EGD/Arc.h"
#include "EGD/Arrow.h"
#include "EGD/Line.h"
#include "EGD/Rectangle.h"
#include "Helpers.h"

namespace {

constexpr int width = 160;
constexpr int height = 120;
constexpr int enlargement = 6;
constexpr int margin = 2;  // enlarged pixels, a third of a pixel: more than the toolkit's rounding of curves

enum class Paint { none, all, unclear };

/// One drawing alone, enlarged, on nothing.
class Enlarged {
public:
    Enlarged(EGD::EasyDrawingArea& area, EGD::Drawing& drawing)
        : _surface(Cairo::ImageSurface::create(Cairo::FORMAT_ARGB32, width * enlargement, height * enlargement)) {
        const auto cr = Cairo::Context::create(_surface);
        cr->scale(enlargement, enlargement);
        drawing.draw(&area, cr);
        _surface->flush();
    }

    Paint around(double x, double y) const {
        int painted = 0;
        int seen = 0;
        for (int dy = -margin; dy <= margin; ++dy) {
            for (int dx = -margin; dx <= margin; ++dx) {
                ++seen;
                painted += isPainted(static_cast<int>(x * enlargement) + dx, static_cast<int>(y * enlargement) + dy);
            }
        }
        if (painted == 0) return Paint::none;
        return painted == seen ? Paint::all : Paint::unclear;
    }

private:
    int isPainted(int x, int y) const {
        const int i = std::clamp(x, 0, width * enlargement - 1);
        const int j = std::clamp(y, 0, height * enlargement - 1);
        return _surface->get_data()[j * _surface->get_stride() + 4 * i + 3] != 0 ? 1 : 0;
    }

    Cairo::RefPtr<Cairo::ImageSurface> _surface;
};

class RandomScene {
public:
    explicit RandomScene(unsigned int seed) : _random(seed) {
        for (int i = 0; i < 3; ++i)
            _shapes.push_back(add(new EGD::Arc(at(width), at(height), in(3, 30), turn(), turn())));
        _shapes.push_back(add(new EGD::Arc(at(width), at(height), in(5, 20), 360, 0)));
        add(new EGD::Rectangle(at(width), at(height), in(-60, 60), in(-60, 60), chance(2)));
        add(new EGD::Line(any(width), any(height), any(width), any(height)));
        for (int i = 0; i < 4; ++i) {
            auto* arrow = add(new EGD::Arrow(_shapes[pick(4)], _shapes[pick(4)]));
            if (chance(2)) arrow->setLabel(" ");  // letters are painted but pick nothing
        }
        area.add(drawings[pick(drawings.size())].get());  // one of them twice
    }

    std::pair<double, double> randomPoint() { return {at(width), at(height)}; }

    TestArea area;
    std::vector<std::unique_ptr<EGD::Drawing>> drawings;

private:
    template <class Shape>
    Shape* add(Shape* drawing) {
        drawings.emplace_back(drawing);
        const auto alpha = [this] { return static_cast<short>(chance(3) ? 0 : 1 + pick(255)); };
        drawing->setColorFill(0, 0, 0, alpha());
        drawing->setColorIn(255, 0, 0, alpha());
        drawing->setWidthLine(chance(10) ? 0 : in(1, 12));
        drawing->setVisible(!chance(8));
        if constexpr (std::is_same_v<Shape, EGD::Arrow>) drawing->holdByValue();
        area.add(drawing);
        return drawing;
    }

    std::size_t pick(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(_random); }
    bool chance(std::size_t n) { return pick(n) == 0; }
    double in(double from, double to) { return std::uniform_real_distribution<double>(from, to)(_random); }
    double at(int extent) { return in(1, extent - 1); }
    int any(int extent) { return static_cast<int>(pick(static_cast<std::size_t>(extent))); }
    double turn() { return in(-360, 360); }

    std::mt19937 _random;
    std::vector<EGD::Arc*> _shapes;
};

TEST(WhatIsPicked, IsWhatIsPainted) {
    int onPaint = 0;
    int offPaint = 0;
    for (unsigned int seed = 1; seed <= 15; ++seed) {
        SCOPED_TRACE(testing::Message() << "scene " << seed);
        RandomScene scene(seed);
        std::vector<Enlarged> enlarged;
        for (const auto& drawing : scene.drawings) enlarged.emplace_back(scene.area, *drawing);

        for (int i = 0; i < 400; ++i) {
            const auto [x, y] = scene.randomPoint();
            scene.area.setPick(x, y);
            for (std::size_t d = 0; d < enlarged.size(); ++d) {
                const Paint paint = enlarged[d].around(x, y);
                if (paint == Paint::unclear) continue;
                (paint == Paint::all ? onPaint : offPaint)++;
                ASSERT_EQ(scene.drawings[d]->isPicked(), paint == Paint::all)
                    << "drawing " << d << " at (" << x << ", " << y << ")";
            }
        }
    }
    EXPECT_GT(onPaint, 500) << "both answers must have been put to the test";
    EXPECT_GT(offPaint, 10000);
}

TEST(WhatIsPicked, IsTheSameInAnOrdinaryPaintAndInAPickOffScreen) {
    int picks = 0;
    for (unsigned int seed = 100; seed < 115; ++seed) {
        RandomScene scene(seed);
        for (int i = 0; i < 40; ++i) {
            const auto [x, y] = scene.randomPoint();
            const auto found = scene.area.underMouse(x, y);
            picks += static_cast<int>(found.size());
            Picture::of(scene.area, width, height);
            for (const auto& drawing : scene.drawings) {
                const bool wasFound = std::find(found.begin(), found.end(), drawing.get()) != found.end();
                ASSERT_EQ(drawing->isPicked(), wasFound) << "scene " << seed << " at (" << x << ", " << y << ")";
            }
        }
    }
    EXPECT_GT(picks, 100);
}

}  // namespace
