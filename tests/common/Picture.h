// A picture off screen: what an area or a single drawing looks like, pixel by pixel, and how that compares with a
// picture kept from an earlier run.
#pragma once

#include <cairomm/context.h>
#include <cairomm/surface.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <string>

#include "EGD/Drawing.h"
#include "TestArea.h"

struct Pixel {
    int r;
    int g;
    int b;
    friend bool operator==(const Pixel&, const Pixel&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Pixel& p) {
        return out << "(" << p.r << ", " << p.g << ", " << p.b << ")";
    }
};

inline constexpr Pixel white{255, 255, 255};
inline constexpr Pixel black{0, 0, 0};

/// Starts white.
class Picture {
public:
    Picture(int width, int height)
        : _surface(Cairo::ImageSurface::create(Cairo::FORMAT_RGB24, width, height)),
          _context(Cairo::Context::create(_surface)) {
        _context->save();
        _context->set_source_rgb(1.0, 1.0, 1.0);
        _context->paint();
        _context->restore();
    }

    /// The area's whole stack on its background.
    static Picture of(TestArea& area, int width, int height) {
        Picture picture(width, height);
        area.on_draw(picture.context());
        return picture;
    }

    /// One drawing alone; `area` gives the pick point and the fonts.
    static Picture ofDrawing(EGD::EasyDrawingArea& area, EGD::Drawing& drawing, int width, int height) {
        Picture picture(width, height);
        drawing.draw(&area, picture.context());
        return picture;
    }

    static Picture read(const std::string& path) {
        Picture picture(0, 0);
        if (std::filesystem::exists(path)) picture._surface = Cairo::ImageSurface::create_from_png(path);
        return picture;
    }

    const Cairo::RefPtr<Cairo::Context>& context() const { return _context; }
    int width() const { return _surface->get_width(); }
    int height() const { return _surface->get_height(); }

    Pixel at(int x, int y) const {
        _surface->flush();
        const unsigned char* row = _surface->get_data() + y * _surface->get_stride();
        const std::uint32_t value = reinterpret_cast<const std::uint32_t*>(row)[x];
        return {static_cast<int>(value >> 16 & 0xFF), static_cast<int>(value >> 8 & 0xFF),
                static_cast<int>(value & 0xFF)};
    }

    /// True when nothing else than white is seen.
    bool isBlank() const { return countDifferingPixels(Picture(width(), height()), 0) == 0; }

    /// How many pixels differ from those of `other`, which has the same size, by more than `tolerance` of 255 in a
    /// colour.
    int countDifferingPixels(const Picture& other, int tolerance) const {
        int count = 0;
        for (int y = 0; y < height(); ++y) {
            for (int x = 0; x < width(); ++x) {
                const Pixel p = at(x, y);
                const Pixel q = other.at(x, y);
                const int difference = std::max({std::abs(p.r - q.r), std::abs(p.g - q.g), std::abs(p.b - q.b)});
                if (difference > tolerance) ++count;
            }
        }
        return count;
    }

    void write(const std::string& path) const { _surface->write_to_png(path); }

private:
    Cairo::RefPtr<Cairo::ImageSurface> _surface;
    Cairo::RefPtr<Cairo::Context> _context;
};

/// Same size and same pixels.
inline testing::AssertionResult looksLike(const Picture& picture, const Picture& expected) {
    if (picture.width() != expected.width() || picture.height() != expected.height()) {
        return testing::AssertionFailure() << "sizes differ";
    }
    const int differing = picture.countDifferingPixels(expected, 0);
    if (differing == 0) return testing::AssertionSuccess();
    return testing::AssertionFailure() << differing << " pixels differ";
}

/// The picture is the one kept as `folder`/reference/`name`.png. The grey of an edge may differ from machine to
/// machine: up to one pixel in a thousand may differ by more than a quarter of the scale, less than a missing stroke or
/// letter makes. A picture that does not match is left in the build folder, to be looked at and, when it is right, to
/// be kept.
inline testing::AssertionResult matchesReference(const Picture& picture, const std::string& folder,
                                                 const std::string& name) {
    const std::filesystem::path actual = std::filesystem::path(KLV_BINARY_DIR) / "pictures" / folder / (name + ".png");
    std::filesystem::create_directories(actual.parent_path());
    const Picture reference = Picture::read(KLV_SOURCE_DIR "/tests/" + folder + "/reference/" + name + ".png");

    testing::AssertionResult failure = testing::AssertionFailure();
    if (picture.width() != reference.width() || picture.height() != reference.height()) {
        failure << "no reference of this size";
    } else {
        const int differing = picture.countDifferingPixels(reference, 64);
        if (differing * 1000 <= picture.width() * picture.height()) return testing::AssertionSuccess();
        failure << differing << " pixels differ";
    }
    picture.write(actual.string());
    return failure << "; the picture is in " << actual;
}
