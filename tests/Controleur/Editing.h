// An editor to work in with mouse and keyboard: a network on an area in a window of its own, and a main window for the
// dialogs.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtkmm/window.h>

#include <memory>
#include <optional>
#include <string>

#include "Vue/Arc.h"
#include "Window.h"
#include "common/Dialogs.h"
#include "common/Folder.h"
#include "common/MinimalDescription.h"
#include "common/Mouse.h"
#include "common/Network.h"
#include "common/Picture.h"
#include "common/TestArea.h"
#include "common/Toolkit.h"
#include "common/Traces.h"

inline constexpr std::optional<Content::Rule> noRule;

/// Starts with an empty model in SELECT mode. Nodes are circles of radius 20.
class Editing : public testing::Test {
protected:
    Editing() {
        _host.set_default_size(600, 400);
        _host.add(*area);
        _host.show_all();
        while (!area->get_mapped() || Gtk::Main::events_pending()) Gtk::Main::iteration();
        mouse.emplace(*area);
        mouse->moveTo(0, 0);
    }

    Vue::Noeud* node(const std::string& name, double x, double y) { return controleur->addNoeud(name, x, y); }

    /// @param rule as in a dialog; none when empty
    Vue::Arc* arc(Vue::Noeud* source, Vue::Noeud* destination, const std::string& rule = "") {
        Vue::Arc* const view = controleur->addArc(source->getModele(), destination->getModele(), nullptr);
        EXPECT_TRUE(view->getModele()->setRegle(rule));
        return view;
    }

    Content content() const { return contentOf(*model, *drawing); }

    std::optional<Modele::Multiset> markingOf(const std::string& name) const {
        return content().nodes.at(name).marking;
    }

    /// Of the only arc.
    std::optional<Content::Rule> rule() const {
        const Content now = content();
        EXPECT_EQ(now.arcs.size(), 1U);
        return std::get<2>(*now.arcs.begin());
    }

    Picture picture() const { return Picture::of(*area, 600, 400); }

    void key(guint keyval) {
        GdkEvent* const event = newEvent(_host, GDK_KEY_PRESS);
        event->key.keyval = keyval;
        EXPECT_FALSE(controleur->keyPressed(&event->key));
        gdk_event_free(event);
    }

    Traces traces;
    TestArea* const area = new TestArea;

private:
    Gtk::Window _host;
    Folder _folder;
    Window _window{_folder.write("IHM.glade", minimalDescription)};

protected:
    Modele::KLV* const model = new Modele::KLV;
    Vue::Dessin* const drawing = new Vue::Dessin(area);
    std::unique_ptr<Controleur> controleur = std::make_unique<Controleur>(&_window, model, drawing);
    std::optional<Mouse> mouse;
};

inline Content::Arc plainArc(const std::string& source, const std::string& destination) {
    return {source, destination, noRule};
}

/// Where a node stands that has no marking.
inline Content::Node plainNode(double x, double y) { return {x, y, std::nullopt}; }

inline constexpr Pixel faint{205, 205, 205};  // black at alpha 50 on white
inline constexpr Pixel nodeInside{255, 205, 205};
