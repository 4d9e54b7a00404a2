// How close a repaint of a large model comes to the Cairo and Pango calls it cannot do without, and what a pick costs
// beside it. 1,000 nodes, 2,000 labelled arcs, an image surface of 1280 x 800 pixels.
#include <benchmark/benchmark.h>
#include <gtkmm.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "EGD/EasyDrawingArea.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"
#include "Vue/Arc.h"
#include "Vue/Dessin.h"
#include "Vue/Noeud.h"

namespace {

constexpr int nodeCount = 1000;
constexpr int arcCount = 2000;
constexpr int width = 1280;
constexpr int height = 800;

class Area : public EGD::EasyDrawingArea {
public:
    using EGD::EasyDrawingArea::on_draw;
};

struct Scene {
    Modele::KLV model;
    Area* area = new Area;
    Vue::Dessin drawing{area};
    std::vector<Vue::Noeud*> nodes;
    std::vector<Vue::Arc*> arcs;
    Cairo::RefPtr<Cairo::ImageSurface> surface = Cairo::ImageSurface::create(Cairo::FORMAT_ARGB32, width, height);

    Scene() {
        std::mt19937 random(1);
        std::uniform_int_distribution<int> x(20, width - 20);
        std::uniform_int_distribution<int> y(20, height - 20);
        std::uniform_int_distribution<std::size_t> pick(0, nodeCount - 1);
        for (int i = 0; i < nodeCount; ++i) nodes.push_back(drawing.addNoeud(model.addNoeud(), x(random), y(random)));
        for (int i = 0; i < arcCount; ++i) {
            Modele::Arc* arc = nodes[pick(random)]->getModele()->addArc(nodes[pick(random)]->getModele(), nullptr);
            arc->setRegle(std::to_string(i % 9 + 1) + "a b -> c");
            arcs.push_back(drawing.addArc(arc));
        }
    }
};

// The same calls as the drawing makes, on values prepared beforehand.

struct Label {
    PangoLayout* layout;
    int width;
    int height;
};

Label prepare(Scene& scene, const std::string& text) {
    Pango::FontDescription font;
    font.set_family("Monospace");
    font.set_weight(Pango::WEIGHT_BOLD);
    font.set_absolute_size(15 * Pango::SCALE);
    auto layout = scene.area->create_pango_layout(text);
    layout->set_font_description(font);
    Label label{layout->gobj_copy(), 0, 0};
    pango_layout_get_pixel_size(label.layout, &label.width, &label.height);
    return label;
}

bool stroke(cairo_t* cr, const Scene& scene) {
    cairo_set_line_width(cr, 3.0);
    cairo_set_source_rgba(cr, 0, 0, 0, 1);
    double x = scene.area->getPickX();
    double y = scene.area->getPickY();
    cairo_device_to_user(cr, &x, &y);
    const bool picked = cairo_in_stroke(cr, x, y) != 0;
    cairo_stroke(cr);
    return picked;
}

bool show(cairo_t* cr, const Scene& scene, const Label& label, bool centered) {
    cairo_save(cr);
    cairo_translate(cr, 0, 0);
    cairo_move_to(cr, -label.width / 2.0, centered ? -label.height / 2.0 : 0.0);
    pango_cairo_show_layout(cr, label.layout);
    const bool picked = stroke(cr, scene);
    cairo_restore(cr);
    return picked;
}

bool bareNode(cairo_t* cr, const Scene& scene, double px, double py, const Label& label) {
    cairo_save(cr);
    cairo_translate(cr, px, py);
    cairo_save(cr);
    cairo_translate(cr, 0, 0);
    cairo_arc(cr, 0, 0, 20, 0, 2 * std::numbers::pi);
    cairo_save(cr);
    cairo_set_source_rgba(cr, 1, 0, 0, 50 / 255.0);
    double x = scene.area->getPickX();
    double y = scene.area->getPickY();
    cairo_device_to_user(cr, &x, &y);
    bool picked = cairo_in_fill(cr, x, y) != 0;
    cairo_fill_preserve(cr);
    cairo_restore(cr);
    picked |= stroke(cr, scene);
    cairo_restore(cr);
    picked |= show(cr, scene, label, true);
    picked |= stroke(cr, scene);
    cairo_restore(cr);
    return picked;
}

struct BareArc {
    double bx;
    double by;
    double ex;
    double ey;
    double distance;
    double angle;
    bool loop;
    bool curved;
    Label label;
};

void head(cairo_t* cr, double tip) {
    cairo_move_to(cr, tip + 10, 10);
    cairo_line_to(cr, tip, 0);
    cairo_line_to(cr, tip + 10, -10);
}

bool bareArc(cairo_t* cr, const Scene& scene, const BareArc& arc) {
    constexpr double pi = std::numbers::pi;
    bool picked = false;
    cairo_save(cr);
    cairo_translate(cr, 0, 0);
    cairo_save(cr);
    cairo_translate(cr, 0, 0);
    if (arc.loop) {
        cairo_translate(cr, arc.bx, arc.by);
        cairo_rotate(cr, -3 * pi / 8);
        cairo_move_to(cr, 20, 0);
        cairo_rotate(cr, -pi / 4);
        cairo_curve_to(cr, 70.7, 70.7, 100, 0, 20, 0);
        head(cr, 20);
        cairo_translate(cr, 85.35, 35.35);
        cairo_rotate(cr, 5 * pi / 8);
        picked |= show(cr, scene, arc.label, true);
    } else if (arc.distance > 40) {
        const double tip = 20 - arc.distance;
        const double side = arc.curved ? (tip - 20) / 10 : 0;
        cairo_translate(cr, arc.bx, arc.by);
        cairo_rotate(cr, -arc.angle);
        cairo_move_to(cr, -20, 0);
        if (arc.curved) {
            cairo_curve_to(cr, (tip - 20) / 2, side, (tip - 20) / 2, side, tip, 0);
        } else {
            cairo_line_to(cr, tip, 0);
        }
        cairo_translate(cr, tip, 0);
        cairo_save(cr);
        cairo_translate(cr, arc.distance / 2 - 20, side);
        cairo_translate(cr, 0, arc.bx > arc.ex ? -10 : 10);
        if (arc.bx <= arc.ex) cairo_rotate(cr, pi);
        picked |= show(cr, scene, arc.label, !arc.curved);
        cairo_restore(cr);
        if (arc.curved) cairo_rotate(cr, -pi / 15);
        head(cr, 0);
    }
    picked |= stroke(cr, scene);
    cairo_restore(cr);
    picked |= stroke(cr, scene);
    cairo_restore(cr);
    return picked;
}

struct BareScene {
    std::vector<Label> names;
    std::vector<BareArc> arcs;

    explicit BareScene(Scene& scene) {
        for (Vue::Noeud* node : scene.nodes) names.push_back(prepare(scene, node->getModele()->getName()));
        for (Vue::Arc* view : scene.arcs) {
            Modele::Arc* arc = view->getModele();
            const auto* begin = scene.drawing.getNoeudVue(arc->getSource());
            const auto* end = scene.drawing.getNoeudVue(arc->getDestination());
            BareArc bare{begin->getPosX(),
                         begin->getPosY(),
                         end->getPosX(),
                         end->getPosY(),
                         0,
                         0,
                         begin == end,
                         begin->arrowInFrom(end),
                         prepare(scene, arc->getRegle()->toString())};
            bare.distance = std::hypot(bare.bx - bare.ex, bare.by - bare.ey);
            bare.angle = std::acos((bare.bx - bare.ex) / bare.distance);
            if (bare.by > bare.ey) bare.angle = -bare.angle;
            arcs.push_back(bare);
        }
    }

    bool paint(const Scene& scene) const {
        const auto context = Cairo::Context::create(scene.surface);
        cairo_t* cr = context->cobj();
        cairo_save(cr);
        cairo_set_source_rgb(cr, 1, 1, 1);
        cairo_paint(cr);
        cairo_restore(cr);
        bool picked = false;
        for (std::size_t i = 0; i < names.size(); ++i) {
            picked |= bareNode(cr, scene, scene.nodes[i]->getPosX(), scene.nodes[i]->getPosY(), names[i]);
        }
        for (const BareArc& arc : arcs) picked |= bareArc(cr, scene, arc);
        return picked;
    }
};

Scene& theScene() {
    static Scene scene;
    return scene;
}

void bareLoop(benchmark::State& state) {
    static const BareScene bare(theScene());
    for (auto _ : state) benchmark::DoNotOptimize(bare.paint(theScene()));
}

void repaint(benchmark::State& state) {
    for (auto _ : state) theScene().area->on_draw(Cairo::Context::create(theScene().surface));
}

void pick(benchmark::State& state) {
    for (auto _ : state) theScene().area->setPick(640, 400);
}

}  // namespace

BENCHMARK(bareLoop)->Unit(benchmark::kMillisecond);
BENCHMARK(repaint)->Unit(benchmark::kMillisecond);
BENCHMARK(pick)->Unit(benchmark::kMillisecond);
