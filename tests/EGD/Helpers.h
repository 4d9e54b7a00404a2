// What the canvas's tests share: drawings that record what is done with them, and short looks at pictures.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "EGD/Drawing.h"
#include "EGD/EasyDrawingArea.h"
#include "common/Picture.h"
#include "common/TestArea.h"

/// A square of the given size around its position that counts its paints and records the presses it receives. What the
/// hooks hold, if anything, runs within the call.
class Square : public EGD::Drawing {
public:
    Square(double x, double y, double size) : EGD::Drawing(x, y), _half(size / 2) {}

    void buttonPressed(GdkEventButton* event) override {
        pressed.push_back(event);
        run(onPress);
    }

    void buttonReleased(GdkEventButton* event) override {
        released.push_back(event);
        run(onRelease);
    }

    int paints = 0;
    std::vector<GdkEventButton*> pressed;
    std::vector<GdkEventButton*> released;
    std::function<void()> onPaint;
    std::function<void()> onPress;
    std::function<void()> onRelease;

private:
    bool vDraw(EGD::EasyDrawingArea*, const Cairo::RefPtr<Cairo::Context>& cr) override {
        ++paints;
        cr->rectangle(-_half, -_half, 2 * _half, 2 * _half);
        run(onPaint);
        return true;
    }

    /// A copy is run: the call may destroy the drawing, and the hook with it.
    static void run(std::function<void()> hook) {
        if (hook) hook();
    }

    double _half;
};

/// A filled square, so that every point of it picks it.
inline Square* filled(Square* square) {
    square->setColorIn(0, 0, 255, 255);
    return square;
}

/// Whether the drawing, alone under the pointer of `area`, is picked at (x, y); it need not stand on the area.
inline bool isPickedAt(EGD::EasyDrawingArea& area, EGD::Drawing& drawing, double x, double y) {
    area.setPick(x, y);
    const auto nowhere = Cairo::ImageSurface::create(Cairo::FORMAT_ARGB32, 0, 0);
    drawing.draw(&area, Cairo::Context::create(nowhere));
    return drawing.isPicked();
}

/// How often a signal without arguments was emitted.
class Count {
public:
    explicit Count(sigc::signal<void> signal) : _connection(signal.connect([this] { ++_times; })) {}
    Count(const Count&) = delete;
    Count& operator=(const Count&) = delete;
    ~Count() { _connection.disconnect(); }

    operator int() const { return _times; }

private:
    int _times = 0;
    sigc::connection _connection;
};
